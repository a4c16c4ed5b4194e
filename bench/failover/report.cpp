#include "bench/failover/report.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <utility>

#include "bench/table.h"

namespace orvo::failover {
namespace {

// From here on after the begin of the fault nobody should notice it any more.
constexpr auto noticed = std::chrono::seconds(4);
constexpr std::size_t examples = 5;

std::string seconds(std::optional<double> value) {
    if (!value) return "-";
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", *value);
    return text;
}

// Of the calls that begin within the window and that `counts` takes.
template <class Counts>
std::vector<double> times(const Outcome& outcome, Window window, Counts counts) {
    std::vector<double> found;
    for (const Ledger& ledger : outcome.ledgers)
        for (const Call& call : ledger.calls)
            if (counts(call) && call.begin >= window.begin && call.begin < window.end)
                found.push_back(call.seconds);
    std::sort(found.begin(), found.end());
    return found;
}

std::optional<double> longest(const std::vector<double>& sorted) {
    return sorted.empty() ? std::nullopt : std::optional(sorted.back());
}

// The value that 999 of 1,000 do not exceed.
std::optional<double> tail(const std::vector<double>& sorted) {
    if (sorted.empty()) return std::nullopt;
    return sorted[(sorted.size() * 999 + 999) / 1000 - 1];
}

const char* name_of(Kind kind) {
    switch (kind) {
        case Kind::check:
            return "check";
        case Kind::read:
            return "bind+read";
        case Kind::write:
            return "write";
    }
    return "";
}

void print_times(const std::vector<Outcome>& outcomes, std::ostream& out) {
    out << "Calls (seconds). Late ones began more than " << noticed.count()
        << " s after the fault did; the healthy tail is\nwhat 99.9 % of the calls before the fault "
           "took at most.\n\n";
    Table table({"fault, call", "calls", "failed", "longest", "late longest", "late failed",
                 "healthy tail"});
    for (const Outcome& outcome : outcomes)
        for (const Kind kind : kinds) {
            const Window all{outcome.start, Clock::time_point::max()};
            const Window healthy{outcome.start, outcome.window.begin};
            // The fault caught none of these.
            const auto ended_before = [&](const Call& call) {
                const std::chrono::duration<double> lasted(call.seconds);
                return call.kind == kind && call.begin + lasted < outcome.window.begin;
            };
            const Window late{outcome.window.begin + noticed, all.end};
            const auto of_kind = [&](const Call& call) { return call.kind == kind; };
            const auto failed = [&](const Call& call) {
                return call.kind == kind && !call.failure.empty();
            };
            const auto calls = times(outcome, all, of_kind);
            table.add({std::string(name_of(outcome.fault)) + ", " + name_of(kind),
                       std::to_string(calls.size()),
                       std::to_string(times(outcome, all, failed).size()), seconds(longest(calls)),
                       seconds(longest(times(outcome, late, of_kind))),
                       std::to_string(times(outcome, late, failed).size()),
                       seconds(tail(times(outcome, healthy, ended_before)))});
        }
    table.print(out);
}

void print_failures(const std::vector<Outcome>& outcomes, std::ostream& out) {
    out << "\nFailed calls:";
    bool is_first = true;
    for (const Outcome& outcome : outcomes) {
        std::map<std::pair<Kind, std::string>, int> counts;
        for (const Ledger& ledger : outcome.ledgers)
            for (const Call& call : ledger.calls)
                if (!call.failure.empty() && call.begin >= outcome.start)
                    ++counts[{call.kind, call.failure}];
        for (const auto& [what, count] : counts) {
            out << (std::exchange(is_first, false) ? "\n\n" : "") << name_of(outcome.fault) << ", "
                << name_of(what.first) << ": " << count << " x " << what.second << '\n';
        }
    }
    if (is_first) out << " none\n";
}

void print_examples(const std::string& what, const std::vector<std::string>& all,
                    std::ostream& out) {
    for (std::size_t i = 0; i < std::min(all.size(), examples); ++i)
        out << what << ": " << all[i] << '\n';
    if (all.size() > examples) out << what << ": … and " << all.size() - examples << " more\n";
}

void print_verdicts(const std::vector<Outcome>& outcomes, std::ostream& out) {
    out << "\nAnswers (the first five must be 0), and seconds until the preferred server serves "
           "again after\nhealing: its first request, and most of a second's requests.\n\n";
    Table table({"fault", "wrong", "counted twice", "checks sent twice", "writes sent twice",
                 "lost writes", "stale", "late", "differing", "serves", "serves most"});
    for (const Outcome& outcome : outcomes) {
        const Verdict& found = outcome.verdict;
        table.add({name_of(outcome.fault), std::to_string(found.wrong_answers.size()),
                   std::to_string(found.counted_twice), std::to_string(found.checks_sent_twice),
                   std::to_string(found.writes_sent_twice),
                   std::to_string(found.lost_writes.size()), std::to_string(found.stale),
                   std::to_string(found.late), std::to_string(found.differing),
                   seconds(outcome.back.first), seconds(outcome.back.most)});
    }
    table.print(out);
    for (const Outcome& outcome : outcomes) {
        const std::string fault = name_of(outcome.fault);
        print_examples(fault + ", wrong", outcome.verdict.wrong_answers, out);
        print_examples(fault + ", lost", outcome.verdict.lost_writes, out);
        if (!outcome.has_settled)
            out << fault << ": the two servers still differed 30 s after the end\n";
    }
}

}  // namespace

void print(const std::vector<Outcome>& outcomes, std::ostream& out) {
    print_times(outcomes, out);
    print_failures(outcomes, out);
    print_verdicts(outcomes, out);
}

}  // namespace orvo::failover
