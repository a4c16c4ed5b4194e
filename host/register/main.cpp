// orvo-register: makes component modules known to the system, or takes them out again.

#include <iostream>
#include <string_view>
#include <vector>

#include "platform/linux/self_registration.h"
#include "platform/values/failure.h"

namespace {

constexpr std::string_view usage =
    "usage: orvo-register [--unregister] MODULE...\n"
    "Registers component modules (.so files) for this user, or takes them out again.\n"
    "With ORVO_COMPONENTS set, in the first of its folders instead of the user's.\n";

struct Request {
    bool unregister = false;
    std::vector<std::string_view> modules;
};

bool read_arguments(const std::vector<std::string_view>& arguments, Request& request) {
    for (std::string_view argument : arguments) {
        if (argument == "--unregister")
            request.unregister = true;
        else if (argument.starts_with('-'))
            return false;
        else
            request.modules.push_back(argument);
    }
    return !request.modules.empty();
}

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
    std::vector<std::string_view> arguments(words + 1, words + count);
    if (arguments == std::vector<std::string_view>{"--help"}) {
        std::cout << usage;
        return 0;
    }
    Request request;
    if (!read_arguments(arguments, request)) {
        std::cerr << usage;
        return 2;
    }
    bool all_done = true;
    for (std::string_view module : request.modules)
        all_done = carry_out(module, request.unregister) && all_done;
    return all_done ? 0 : 1;
}
