// orvo: the administrator's program.

#include <iostream>

#include "host/admin/commands.h"
#include "host/admin/texts.h"

int main(int count, char** words) {
    orvo::admin::Commands commands;
    if (const std::optional<int> code = commands.read(count, words)) return *code;
    try {
        const int code = commands.run();
        if (!std::cout.flush()) throw std::runtime_error("standard output cannot be written");
        return code;
    } catch (const std::exception& failure) {
        std::cerr << "orvo: " << orvo::admin::told(failure) << '\n';
        return 1;
    }
}
