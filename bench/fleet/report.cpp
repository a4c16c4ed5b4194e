#include "bench/fleet/report.h"

#include <cstdio>

#include "bench/table.h"

namespace orvo::fleet {
namespace {

constexpr std::size_t examples = 5;

std::string seconds(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

void print_noticed(const ChaosOutcome& outcome, const Verdict& verdict, std::ostream& out) {
    out << "What users noticed: how often something was wanted, how many tries for it failed, how\n"
           "many browsers went without for a while (a try failed, or it took more than a second),\n"
           "how often one of them did, and the longest time in seconds.\n\n";
    Table table({"fault", "lasted", "wanted", "failed", "without", "of one", "longest", "allowed",
                 "logins lost"});
    for (std::size_t i = 0; i < outcome.slots.size(); ++i) {
        const Slot& slot = outcome.slots[i];
        const Noticed& noticed = verdict.noticed[i];
        table.add({slot.name,
                   seconds(std::chrono::duration<double>(slot.healed - slot.begin).count()),
                   std::to_string(noticed.wishes), std::to_string(noticed.failures),
                   std::to_string(noticed.browsers_without), std::to_string(noticed.most_of_one),
                   seconds(noticed.longest), noticed.allowed ? seconds(*noticed.allowed) : "-",
                   std::to_string(noticed.lost_logins)});
    }
    table.print(out);
}

void print_breaches(const Verdict& verdict, Breach breach, const std::string& what,
                    std::ostream& out) {
    const auto& sentences = verdict.of(breach);
    out << "  " << what << ": " << sentences.size() << '\n';
    for (std::size_t i = 0; i < std::min(sentences.size(), examples); ++i)
        out << "    " << sentences[i] << '\n';
    if (sentences.size() > examples)
        out << "    … and " << sentences.size() - examples << " more\n";
}

}  // namespace

void print(const ChaosOutcome& outcome, const Verdict& verdict, std::ostream& out) {
    print_noticed(outcome, verdict, out);
    out << "\nFailed tries:" << (verdict.failures.empty() ? " none" : "") << '\n';
    for (const auto& [what, count] : verdict.failures)
        out << "  " << count << " x " << what << '\n';
    out << "\nOf " << verdict.requests << " requests, " << verdict.asked_without_right
        << " of them without the right to what they asked for, and " << verdict.asked_after_end
        << " after\nthe end of their login (" << verdict.unanswered_after_end
        << " of these at a node that did not answer):\n";
    print_breaches(verdict, Breach::wrong, "wrong answers", out);
    print_breaches(verdict, Breach::mixed, "mixed-up sessions", out);
    print_breaches(verdict, Breach::outlived, "logins that outlived their end", out);
    print_breaches(verdict, Breach::let_in, "let in without right", out);
    out << "  older values than the last, while a directory server had a fault: " << verdict.stale
        << "\n  older values that a node with a fault has read just before the change: "
        << verdict.remembered << "\n  values that were written late: " << verdict.late
        << "\n\nGoals\n";
    for (const Goal& goal : verdict.goals)
        out << (goal.is_met ? "  met     " : "  MISSED  ") << goal.what << '\n';
}

}  // namespace orvo::fleet
