// orvo: the administrator's program.

#include <csignal>
#include <iostream>

#include "host/admin/commands.h"
#include "host/admin/common/exit_codes.h"
#include "host/admin/common/output.h"
#include "host/admin/common/texts.h"

int main(int count, char** words) {
    // A reader who goes away is a failure to write.
    std::signal(SIGPIPE, SIG_IGN);
    orvo::admin::Commands commands;
    if (const std::optional<int> code = commands.read(count, words)) return *code;
    try {
        const int code = commands.run();
        orvo::admin::flush_output();
        return code;
    } catch (const orvo::admin::Misuse& mistake) {
        std::cerr << "orvo: " << orvo::admin::told(mistake) << "; see " << commands.words_read()
                  << " --help\n";
        return orvo::misused;
    } catch (const std::exception& failure) {
        std::cerr << "orvo: " << orvo::admin::told(failure) << '\n';
        return orvo::admin::not_done;
    }
}
