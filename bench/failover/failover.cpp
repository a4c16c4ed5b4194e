// What callers notice when one of two directory servers fails: two servers that replicate, the
// preferred one with a fault from a quarter to half of the time, under threads that log in, read
// and write all the while. scripts/failover runs it and says how to read what it prints.
//
//   failover --seconds N FAULT...
//
// Ends with 1 where an answer was wrong, or a password counted, or a write done, twice, or lost.

#include <algorithm>
#include <atomic>
#include <barrier>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "bench/failover/report.h"
#include "bench/failover/worker.h"

namespace orvo::failover {
namespace {

constexpr std::size_t threads = 16;
constexpr std::size_t visitors_each = 4, mistaken_each = 10, changing_each = 3;
constexpr unsigned longest_pause_ms = 50;

std::vector<Plan> plans_for(const ShopPair& pair) {
    auto names = pair.users();
    if (names.size() < threads * (visitors_each + mistaken_each + changing_each))
        throw std::runtime_error("too few users in the shop");
    const auto store = pair.look_into(preferred);
    const auto take = [&](std::size_t count) {
        std::vector<KnownUser> users;
        for (; users.size() < count; names.pop_back()) {
            const std::string dn = pair.shop().user_dn(names.back());
            const auto value = [&](const char* attribute) {
                const auto values = store->values(dn, attribute);
                return values.empty() ? std::string() : values.front();
            };
            users.push_back({names.back(), value("sn"), value("ProfileCN"), value("PhoneNumber")});
        }
        return users;
    };
    std::vector<Plan> plans;
    for (std::size_t i = 0; i < threads; ++i)
        plans.push_back(
            {pair.site_ini(), take(visitors_each), take(mistaken_each), take(changing_each)});
    return plans;
}

Outcome run(Fault fault, int seconds) {
    Sightings sightings;
    ShopPair pair(sightings);
    const auto plans = plans_for(pair);

    Outcome outcome{};
    outcome.fault = fault;
    outcome.ledgers.resize(threads);
    std::atomic<bool> is_over = false;
    std::vector<std::exception_ptr> stopped_by(threads);
    std::barrier ready(threads + 1);
    std::vector<std::thread> crew;
    for (std::size_t i = 0; i < threads; ++i)
        crew.emplace_back([&, i] {
            bool has_arrived = false;
            try {
                Worker worker(plans[i], static_cast<unsigned>(i));
                has_arrived = true;
                ready.arrive_and_wait();
                std::minstd_rand pauses(static_cast<unsigned>(i + 1));
                while (!is_over) {
                    worker.work();
                    std::this_thread::sleep_for(
                        std::chrono::milliseconds(pauses() % longest_pause_ms));
                }
                outcome.ledgers[i] = std::move(worker).ledger();
            } catch (...) {
                stopped_by[i] = std::current_exception();
                if (!has_arrived) ready.arrive_and_drop();
            }
        });
    ready.arrive_and_wait();
    outcome.start = Clock::now();
    const auto part = std::chrono::milliseconds(seconds * 1000 / 4);
    std::this_thread::sleep_until(outcome.start + part);
    outcome.window.begin = Clock::now();
    pair.inject(fault);
    std::this_thread::sleep_until(outcome.start + 2 * part);
    pair.heal(fault);
    outcome.window.end = Clock::now();
    std::this_thread::sleep_until(outcome.start + 4 * part);
    is_over = true;
    for (std::thread& thread : crew) thread.join();
    for (const auto& reason : stopped_by)
        if (reason) std::rethrow_exception(reason);

    outcome.has_settled = pair.settle();
    outcome.verdict = judge(outcome.ledgers, sightings, outcome.window, pair);
    outcome.back = sightings.preferred_serves_after(outcome.window.end);
    return outcome;
}

int main(std::vector<std::string> arguments) {
    int seconds = 0;
    std::vector<Fault> wanted;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--seconds" && i + 1 < arguments.size()) {
            seconds = std::atoi(arguments[++i].c_str());
            continue;
        }
        const auto found = std::find_if(std::begin(faults), std::end(faults), [&](const auto& one) {
            return arguments[i] == one.second;
        });
        if (found == std::end(faults))
            throw std::invalid_argument("no such fault: " + arguments[i]);
        wanted.push_back(found->first);
    }
    if (seconds < 1 || seconds > 600 || wanted.empty())
        throw std::invalid_argument("usage: failover --seconds 1..600 FAULT...");
    std::vector<Outcome> outcomes;
    for (const Fault fault : wanted) {
        std::cerr << name_of(fault) << " …\n";
        outcomes.push_back(run(fault, seconds));
    }
    print(outcomes, std::cout);
    const bool is_clean = std::all_of(outcomes.begin(), outcomes.end(), [](const Outcome& outcome) {
        return outcome.verdict.is_clean() && outcome.has_settled;
    });
    return is_clean ? 0 : 1;
}

}  // namespace
}  // namespace orvo::failover

int main(int argc, char** argv) {
    try {
        return orvo::failover::main({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::cerr << "failover: " << error.what() << '\n';
        return 2;
    }
}
