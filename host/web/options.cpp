#include "host/web/options.h"

#include <algorithm>
#include <stdexcept>

namespace orvo::web {
namespace {

int number(const std::string& option, const std::string& text, int least, int most) {
    const bool is_number = !text.empty() && text.size() < 7 &&
                           std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
    const int value = is_number ? std::stoi(text) : -1;
    if (value < least || value > most)
        throw std::invalid_argument(option + " is a number from " + std::to_string(least) + " to " +
                                    std::to_string(most) + ", not \"" + text + "\"");
    return value;
}

}  // namespace

Options read_options(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        auto value = [&]() -> const std::string& {
            if (i + 1 == arguments.size()) throw std::invalid_argument(argument + " needs a value");
            return arguments[++i];
        };
        if (argument == "--help") {
            options.wants_help = true;
            return options;
        }
        if (argument == "--address") {
            options.server.address = value();
        } else if (argument == "--port") {
            options.server.port = number(argument, value(), 0, 65535);
        } else if (argument == "--workers") {
            options.server.workers = number(argument, value(), 1, 256);
        } else if (argument == "--certificate") {
            options.server.certificate = value();
        } else if (argument == "--key") {
            options.server.key = value();
        } else if (argument == "--access-log") {
            options.access_log = value();
        } else if (argument == "--config") {
            options.config = value();
            if (options.config.empty()) throw std::invalid_argument("--config needs a value");
        } else if (argument == "--details") {
            options.shows_details = true;
        } else if (argument.starts_with('-')) {
            throw std::invalid_argument("there is no option " + argument);
        } else if (options.site.empty()) {
            options.site = argument;
        } else {
            throw std::invalid_argument("there is one site only, not also " + argument);
        }
    }
    if (options.site.empty()) throw std::invalid_argument("which site?");
    if (options.server.certificate.empty() != options.server.key.empty())
        throw std::invalid_argument("--certificate and --key go together");
    return options;
}

}  // namespace orvo::web
