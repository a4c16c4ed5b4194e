#include "bench/fleet/verdict.h"

#include <algorithm>

namespace orvo::fleet {
namespace {

using Seconds = std::chrono::duration<double>;

// The directory provider's own limit, as it is without settings.
constexpr Seconds answer_limit{3}, tolerance{1};
// A wish that took longer is an outage, even if nothing failed.
constexpr Seconds slow{1};
// Within this time what one directory server has taken is at the other; and this long after a fault
// nodes may prefer different servers (FailbackAfter, and the pause between two probes).
constexpr Seconds replication{5}, failback{30};
// For so long a node may show again what it has read of an entry.
constexpr Seconds remembered{0.25};

double overlap(const Slot& slot, const Wish& wish) {
    return Seconds(std::min(slot.end, wish.end) - std::max(slot.begin, wish.begin)).count();
}

std::size_t slot_of(const ChaosOutcome& outcome, const Wish& wish) {
    const auto& slots = outcome.slots;
    const auto most = std::max_element(
        slots.begin(), slots.end(),
        [&](const Slot& a, const Slot& b) { return overlap(a, wish) < overlap(b, wish); });
    return static_cast<std::size_t>(most - slots.begin());
}

std::size_t slot_of(const ChaosOutcome& outcome, Clock::time_point when) {
    return slot_of(outcome, Wish{{}, when, when});
}

std::optional<double> allowed(const Slot& slot) {
    if (slot.part == Part::directory) return Seconds(answer_limit + tolerance).count();
    if (slot.part == Part::store || slot.part == Part::balancer)
        return Seconds(slot.healed - slot.begin + tolerance).count();
    return std::nullopt;
}

std::string milliseconds_between(Clock::time_point one, Clock::time_point other) {
    return std::to_string(
        std::chrono::duration_cast<std::chrono::milliseconds>(other - one).count());
}

bool is_of_directory(const Slot& slot) { return slot.part == Part::directory; }

// Whether a replicated directory may answer so.
bool is_stale(const ChaosOutcome& outcome, const OldValue& old) {
    return std::any_of(outcome.slots.begin(), outcome.slots.end(), [&](const Slot& slot) {
        if (!is_of_directory(slot) || old.read_end < slot.begin) return false;
        const bool is_new = old.read_begin < old.expected_since + replication;
        return old.read_begin < slot.healed + replication ||
               (is_new && old.read_begin < slot.healed + failback);
    });
}

// Whether a node that goes on after a fault may answer so: what it was asked before, and others
// have answered meanwhile, it reads now, and remembers it.
bool is_remembered(const ChaosOutcome& outcome, const OldValue& old) {
    const Slot& slot = outcome.slots[slot_of(outcome, old.read_end)];
    return slot.part == Part::node && old.read_begin < old.expected_since + remembered;
}

// Whether the value is one whose write nobody acknowledged because a server had a fault.
bool is_late(const ChaosOutcome& outcome, const OldValue& old) {
    return old.was_unacknowledged &&
           std::any_of(outcome.slots.begin(), outcome.slots.end(), [&](const Slot& slot) {
               return is_of_directory(slot) && old.written >= slot.begin - answer_limit &&
                      old.written < slot.healed + replication;
           });
}

void count_wishes(const ChaosOutcome& outcome, Verdict& verdict) {
    for (const Ledger& ledger : outcome.ledgers) {
        std::vector<std::size_t> outages(outcome.slots.size());
        for (const Wish& wish : ledger.wishes) {
            const std::size_t slot = slot_of(outcome, wish);
            Noticed& noticed = verdict.noticed[slot];
            const Seconds lasted = wish.end - wish.begin;
            ++noticed.wishes;
            noticed.longest = std::max(noticed.longest, lasted.count());
            if (wish.failures > 0 || lasted > slow) ++outages[slot];
        }
        for (std::size_t slot = 0; slot < outages.size(); ++slot) {
            Noticed& noticed = verdict.noticed[slot];
            noticed.browsers_without += outages[slot] > 0;
            noticed.most_of_one = std::max(noticed.most_of_one, outages[slot]);
        }
        for (const Failed& failed : ledger.failed) {
            const std::size_t slot = slot_of(outcome, failed.when);
            ++verdict.noticed[slot].failures;
            ++verdict.failures[outcome.slots[slot].name + ", " + name_of(failed.aim) + ": " +
                               failed.reason];
        }
        for (const auto when : ledger.lost_logins)
            ++verdict.noticed[slot_of(outcome, when)].lost_logins;
    }
}

void count_findings(const ChaosOutcome& outcome, Verdict& verdict) {
    const auto of = [&](Breach breach) -> std::vector<std::string>& {
        return verdict.breaches[static_cast<std::size_t>(breach)];
    };
    for (const Ledger& ledger : outcome.ledgers) {
        verdict.requests += ledger.requests;
        verdict.asked_without_right += ledger.asked_without_right;
        verdict.asked_after_end += ledger.asked_after_end;
        verdict.unanswered_after_end += ledger.unanswered_after_end;
        for (const Finding& finding : ledger.findings)
            of(finding.breach)
                .push_back(outcome.slots[slot_of(outcome, finding.when)].name + ": " +
                           finding.sentence);
        for (const OldValue& old : ledger.old_values) {
            if (is_late(outcome, old))
                ++verdict.late;
            else if (is_stale(outcome, old))
                ++verdict.stale;
            else if (is_remembered(outcome, old))
                ++verdict.remembered;
            else
                of(Breach::wrong)
                    .push_back(outcome.slots[slot_of(outcome, old.read_end)].name + ": " +
                               old.user + " is shown '" + old.value + "' and not '" + old.expected +
                               "', " + milliseconds_between(old.expected_since, old.read_begin) +
                               " ms after that was acknowledged");
        }
    }
    for (const std::string& lost : outcome.lost_writes) of(Breach::wrong).push_back(lost);
}

// The sums of a figure over the slots of which `counts` holds.
template <class Counts>
std::size_t sum(const ChaosOutcome& outcome, const Verdict& verdict, std::size_t Noticed::*figure,
                Counts counts) {
    std::size_t total = 0;
    for (std::size_t i = 0; i < outcome.slots.size(); ++i)
        if (counts(outcome.slots[i])) total += verdict.noticed[i].*figure;
    return total;
}

void set_goals(const ChaosOutcome& outcome, Judged judged, Verdict& verdict) {
    auto& goals = verdict.goals;
    goals.push_back({"no wrong answer", verdict.of(Breach::wrong).empty()});
    goals.push_back({"no mixed-up session", verdict.of(Breach::mixed).empty()});
    goals.push_back({"no login outlives its end", verdict.of(Breach::outlived).empty()});
    goals.push_back({"nobody is let in without right", verdict.of(Breach::let_in).empty()});
    goals.push_back({"both directory servers agree in the end", outcome.has_settled});
    goals.push_back({"a fault of a node or of the balancer costs no login",
                     sum(outcome, verdict, &Noticed::lost_logins, [](const Slot& slot) {
                         return slot.part == Part::node || slot.part == Part::all_nodes ||
                                slot.part == Part::balancer;
                     }) == 0});
    goals.push_back({"a rolling restart: nothing fails",
                     sum(outcome, verdict, &Noticed::failures,
                         [](const Slot& slot) { return slot.part == Part::all_nodes; }) == 0});
    if (judged == Judged::counts_alone) return;
    for (std::size_t i = 0; i < outcome.slots.size(); ++i) {
        const Noticed& noticed = verdict.noticed[i];
        if (!noticed.allowed) continue;
        const bool is_once = outcome.slots[i].part != Part::directory || noticed.most_of_one <= 1;
        goals.push_back({outcome.slots[i].name + ": not longer than allowed" +
                             (outcome.slots[i].part == Part::directory ? ", and once" : ""),
                         noticed.longest <= *noticed.allowed && is_once});
    }
}

}  // namespace

bool Verdict::is_good() const {
    return std::all_of(goals.begin(), goals.end(), [](const Goal& goal) { return goal.is_met; });
}

Verdict judge(const ChaosOutcome& outcome, Judged judged) {
    Verdict verdict;
    for (const Slot& slot : outcome.slots) {
        verdict.noticed.emplace_back();
        verdict.noticed.back().allowed = allowed(slot);
    }
    count_wishes(outcome, verdict);
    count_findings(outcome, verdict);
    set_goals(outcome, judged, verdict);
    return verdict;
}

}  // namespace orvo::fleet
