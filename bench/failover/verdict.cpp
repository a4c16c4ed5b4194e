#include "bench/failover/verdict.h"

#include <algorithm>
#include <array>

namespace orvo::failover {
namespace {

// How long a process reads from the server that took its write (ReplicaLag).
constexpr auto own_writes_hold = std::chrono::seconds(5);

class Judge {
public:
    Judge(const Sightings& sightings, const Window& fault, const ShopPair& pair)
        : sightings_(sightings),
          fault_(fault),
          stores_{pair.look_into(preferred), pair.look_into(other)} {}

    void read(const Ledger& ledger) {
        for (const Reading& reading : ledger.readings)
            read_value(reading, ledger.attempts.at(reading.entry));
        for (const Creation& creation : ledger.creations)
            if (creation.was_missed) missed(creation);
    }
    void look_into_stores(const Ledger& ledger) {
        for (const auto& [name, attempts] : ledger.attempts) compare_value(name, attempts);
        for (const Creation& creation : ledger.creations) compare_creation(creation);
        for (const auto& [name, tried] : ledger.wrong_passwords)
            verdict.counted_twice += std::max(0, failures_kept(name) - tried);
    }

    Verdict verdict;

private:
    using Attempts = std::vector<Attempt>;

    static Attempts::const_iterator find(const Attempts& attempts, const std::string& value) {
        return std::find_if(attempts.begin(), attempts.end(),
                            [&](const Attempt& one) { return one.value == value; });
    }
    // The last one that was acknowledged before `time`; there is always one.
    static Attempts::const_iterator last_acknowledged(const Attempts& attempts,
                                                      Clock::time_point time) {
        return std::find_if(
                   attempts.rbegin(), attempts.rend(),
                   [&](const Attempt& one) { return one.is_acknowledged && one.end <= time; })
                   .base() -
               1;
    }
    // Whether the server that took a write had its fault between the write and `end`.
    bool had_failed(std::uint64_t mark, Clock::time_point begin, Clock::time_point end) const {
        return sightings_.server_of_write(mark) == preferred && begin <= fault_.end &&
               end >= fault_.begin;
    }

    void read_value(const Reading& reading, const Attempts& attempts) {
        const auto found = find(attempts, reading.value);
        const auto newest = last_acknowledged(attempts, reading.begin);
        if (found == attempts.end() || found->begin > reading.end) {
            verdict.wrong_answers.push_back(reading.entry + ": '" + reading.value +
                                            "' is read and was never written");
        } else if (found < newest) {
            const auto mark = mark_in(newest->value);
            // An attempt that failed may be done late; the server then has its value rightly.
            if (!found->is_acknowledged || reading.begin - newest->end > own_writes_hold ||
                had_failed(*mark, newest->begin, reading.end))
                ++verdict.stale;
            else
                verdict.wrong_answers.push_back(
                    reading.entry + ": '" + reading.value + "' is read " +
                    std::to_string(
                        std::chrono::duration<double>(reading.begin - newest->end).count()) +
                    " s after '" + newest->value + "' was written to the " +
                    (sightings_.server_of_write(*mark) == preferred ? "preferred" : "other") +
                    " server");
        }
    }
    void missed(const Creation& creation) {
        if (had_failed(creation.mark, creation.begin, creation.deletion_end))
            ++verdict.stale;
        else
            verdict.wrong_answers.push_back(text_of(creation.mark) +
                                            ": was created and is not found");
    }

    static std::string dn(const std::string& name) { return "cn=" + name + ",ou=Users,o=Shop"; }

    void compare_value(const std::string& name, const Attempts& attempts) {
        const auto newest = last_acknowledged(attempts, Clock::time_point::max());
        int outdated = 0;
        bool is_late = false;
        std::array<std::string, 2> values;
        for (const std::size_t store : {preferred, other}) {
            const auto found = stores_[store]->values(dn(name), "PhoneNumber");
            values[store] = found.empty() ? "" : found.front();
            const auto attempt = find(attempts, values[store]);
            if (attempt != attempts.end() && attempt >= newest) continue;
            if (attempt != attempts.end() && !attempt->is_acknowledged)
                is_late = true;
            else
                ++outdated;
        }
        verdict.differing += values[preferred] != values[other];
        verdict.late += is_late;
        if (outdated == 2)
            verdict.lost_writes.push_back(name + ": holds '" + values[preferred] + "' and not '" +
                                          newest->value + "'");
    }
    // A user whose creation or deletion failed may be there or not.
    void compare_creation(const Creation& creation) {
        if (!creation.is_acknowledged || creation.deletion == Creation::Deletion::failed) return;
        const bool is_wanted = creation.deletion == Creation::Deletion::none;
        const std::string name = text_of(creation.mark);
        int right = 0;
        for (const auto& store : stores_) {
            const bool is_there = !store->find(dn(name), "(userPassword=*)").empty();
            right += is_there == is_wanted;
        }
        verdict.differing += right == 1;
        if (right == 0)
            verdict.lost_writes.push_back(
                name + (is_wanted ? ": was created and is not there, or has no password"
                                  : ": was deleted and is there"));
    }
    int failures_kept(const std::string& name) {
        std::size_t most = 0;
        for (const auto& store : stores_)
            most = std::max(most, store->values(dn(name), "pwdFailureTime").size());
        return static_cast<int>(most);
    }

    const Sightings& sightings_;
    const Window fault_;
    const std::array<std::unique_ptr<LdapProbe>, 2> stores_;
};

}  // namespace

Verdict judge(const std::vector<Ledger>& ledgers, const Sightings& sightings, const Window& fault,
              const ShopPair& pair) {
    Judge judge(sightings, fault, pair);
    for (const Ledger& ledger : ledgers) {
        judge.verdict.wrong_answers.insert(judge.verdict.wrong_answers.end(),
                                           ledger.wrong_answers.begin(),
                                           ledger.wrong_answers.end());
        judge.read(ledger);
        judge.look_into_stores(ledger);
    }
    const auto repeated = sightings.repeated();
    judge.verdict.checks_sent_twice = repeated.binds;
    judge.verdict.writes_sent_twice = repeated.writes;
    return std::move(judge.verdict);
}

}  // namespace orvo::failover
