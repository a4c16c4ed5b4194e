// A fleet on this machine: directory servers that replicate, nodes that serve the sample shop, and
// a balancer. scripts/fleet runs it; docs/fleet.md says how to read what it prints.
//
//   fleet [serve]
//   fleet chaos [--minutes N | --brief] [--browsers N] [--only WORDS]
//   fleet throughput [--brief]

#include <charconv>
#include <cstring>
#include <iostream>
#include <stdexcept>

#include "bench/fleet/report.h"
#include "bench/fleet/throughput.h"

namespace orvo::fleet {
namespace {

constexpr const char* usage =
    "usage: fleet [serve] | chaos [--minutes 1..60 | --brief] [--browsers 1..256] "
    "[--only WORDS] | throughput [--brief]";

int number(const std::string& text, int least, int most) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < least || value > most)
        throw std::invalid_argument(usage);
    return value;
}

int serve() {
    Fleet fleet;
    std::cout << "The shop is at " << fleet.address() << ", its nodes at";
    for (const int port : fleet.node_ports()) std::cout << " http://127.0.0.1:" << port << '/';
    std::cout << ".\n  jsmith   shop-sample   a buyer\n  admin    shop-sample   an administrator\n"
                 "It is served until you press Ctrl-C."
              << std::endl;
    wait_for_interruption();
}

int chaos(const std::vector<std::string>& arguments) {
    ChaosOptions options;
    Judged judged = Judged::everything;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto next = [&] { return ++i < arguments.size() ? arguments[i] : std::string(); };
        if (arguments[i] == "--minutes") {
            options.duration = std::chrono::minutes(number(next(), 1, 60));
        } else if (arguments[i] == "--browsers") {
            options.browsers = static_cast<std::size_t>(number(next(), 1, 256));
        } else if (arguments[i] == "--only") {
            // The faults with these words in their names.
            const std::string words = next();
            std::erase_if(options.faults, [&](const Fault& fault) {
                return fault.name.find(words) == std::string::npos;
            });
        } else if (arguments[i] == "--brief") {
            options.faults = brief_faults();
            options.duration = std::chrono::seconds(25);
            options.browsers = 12;
            judged = Judged::counts_alone;
        } else {
            throw std::invalid_argument(usage);
        }
    }
    Fleet fleet;
    const ChaosOutcome outcome = run(fleet, options);
    const Verdict verdict = judge(outcome, judged);
    print(outcome, verdict, std::cout);
    return verdict.is_good() ? 0 : 1;
}

int throughput(const std::vector<std::string>& arguments) {
    ThroughputOptions options;
    if (arguments == std::vector<std::string>{"--brief"})
        options = {.browsers = 8, .each = std::chrono::seconds(1), .rounds = 1, .logins = 100};
    else if (!arguments.empty())
        throw std::invalid_argument(usage);
    measure_throughput(options, std::cout);
    return 0;
}

int main(std::vector<std::string> arguments) {
    catch_interruptions();
    if (arguments.empty()) return serve();
    const std::string command = arguments.front();
    arguments.erase(arguments.begin());
    if (command == "serve" && arguments.empty()) return serve();
    if (command == "chaos") return chaos(arguments);
    if (command == "throughput") return throughput(arguments);
    throw std::invalid_argument(usage);
}

}  // namespace
}  // namespace orvo::fleet

int main(int argc, char** argv) {
    try {
        return orvo::fleet::main({argv + 1, argv + argc});
    } catch (const orvo::fleet::Interrupted&) {
        return 130;
    } catch (const std::exception& error) {
        std::cerr << "fleet: " << error.what() << '\n';
        return 2;
    }
}
