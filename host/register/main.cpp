// orvo-register: makes component modules known to the system, or takes them out again.

#include <iostream>
#include <string_view>

#include "host/register/options.h"
#include "platform/linux/self_registration.h"
#include "platform/values/failure.h"

namespace {

bool carry_out(std::string_view module, bool unregister) {
    try {
        if (unregister)
            orvo::runtime::unregister_module_file(module);
        else
            orvo::runtime::register_module_file(module);
        std::cout << module << (unregister ? ": unregistered\n" : ": registered\n");
        return true;
    } catch (const std::exception& failure) {
        std::cerr << "orvo-register: " << failure.what() << '\n';
        return false;
    }
}

}  // namespace

int main(int count, char** words) {
    orvo::RegisterCommandLine line;
    if (const std::optional<int> code = line.read(count, words)) return *code;
    bool all_done = true;
    for (const std::string& module : line.modules)
        all_done = carry_out(module, line.unregister) && all_done;
    return all_done ? 0 : 1;
}
