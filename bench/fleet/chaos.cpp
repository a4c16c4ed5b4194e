#include "bench/fleet/chaos.h"

#include <iostream>

#include "bench/fleet/crowd.h"
#include "bench/fleet/visitor.h"

namespace orvo::fleet {
namespace {

// A fault lasts at most so long, and at most a third of its slot: users need the rest to recover.
constexpr auto longest_fault = std::chrono::seconds(6);

Slot suffer(Fleet& fleet, const Fault& fault, Clock::duration length) {
    Slot slot{fault.name, fault.part, Clock::now(), {}, {}};
    fault.inject(fleet);
    if (!fault.is_brief)
        wait_until(slot.begin + std::min<Clock::duration>(longest_fault, length / 3));
    fault.heal(fleet);
    slot.healed = Clock::now();
    wait_until(slot.begin + length);
    slot.end = Clock::now();
    return slot;
}

// What a store has that users neither wrote last nor may have written after it.
std::vector<std::string> lost_writes(Fleet& fleet, const Users& users) {
    std::vector<std::string> lost;
    for (const int server : {0, 1}) {
        const auto store = fleet.directory().look_into(server);
        for (const ShopUser& user : users.all()) {
            if (user.attempts().size() < 2) continue;
            const auto values =
                store->values(fleet.directory()[server].user_dn(user.name()), "PhoneNumber");
            const std::string value = values.empty() ? "" : values.front();
            const ShopUser::Attempt* attempt = user.attempt_with(value);
            // One that nobody acknowledged may have been done late, and then it is the last.
            if (user.may_be(value) || (attempt && !attempt->is_acknowledged)) continue;
            lost.push_back(user.name() + ": directory " + std::to_string(server + 1) + " has '" +
                           value + "' and not '" + user.last_acknowledged().value + "'");
        }
    }
    return lost;
}

}  // namespace

ChaosOutcome run(Fleet& fleet, const ChaosOptions& options) {
    Users users(*fleet.directory().look_into(0));
    const ShopAddress shop{fleet.port(), fleet.node_ports()};
    ChaosOutcome outcome;
    outcome.ledgers.resize(options.browsers);
    const Clock::duration length =
        Clock::duration(options.duration) / static_cast<int>(options.faults.size() + 1);
    {
        Crowd crowd(options.browsers, [&](std::size_t i, const std::atomic<bool>& is_over) {
            Visitor visitor(shop, users, static_cast<unsigned>(i), is_over);
            // They do not all come at the same moment.
            visitor.think();
            while (!is_over) visitor.visit();
            outcome.ledgers[i] = std::move(visitor).ledger();
        });
        const auto begin = Clock::now();
        wait_until(begin + length);
        outcome.slots.push_back({"none", std::nullopt, begin, begin, Clock::now()});
        for (const Fault& fault : options.faults) {
            std::cerr << fault.name << " …\n";
            outcome.slots.push_back(suffer(fleet, fault, length));
        }
        crowd.end();
    }
    outcome.has_settled = fleet.directory().settle();
    outcome.lost_writes = lost_writes(fleet, users);
    return outcome;
}

}  // namespace orvo::fleet
