#include "host/admin/diagnosis/report.h"

#include <algorithm>

#include "host/admin/common/output.h"
#include "host/admin/common/row_writer.h"

namespace orvo::admin {
namespace {

struct Words {
    const char* word;
    const char* colour;
};

Words words_of(Outcome outcome, const char* failed) {
    switch (outcome) {
        case Outcome::ok:
            return {"ok", "\x1B[32m"};
        case Outcome::failed:
            return {failed, "\x1B[31m"};
        case Outcome::not_known:
            return {"not known", "\x1B[33m"};
        case Outcome::skipped:
            break;
    }
    return {"skipped", "\x1B[2m"};
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

}  // namespace

bool Examination::has_failed() const {
    return std::ranges::any_of(steps, [](const Examined& examined) {
        return examined.finding.outcome == Outcome::failed;
    });
}

void write_text(std::ostream& out, const std::vector<Examination>& report, const char* failed,
                const Terminal& terminal) {
    constexpr std::size_t widest_word = 11;  // "not known" and two blanks
    std::size_t widest_step = 0;
    for (const Examination& examination : report)
        for (const Examined& examined : examination.steps)
            widest_step = std::max(widest_step, examined.step.size() + 2);
    const std::string below(2 + widest_word + widest_step, ' ');
    for (const Examination& examination : report) {
        if (&examination != &report.front()) put(out, "\n");
        put(out, bold(terminal, printable(examination.subject)) + '\n');
        for (const auto& [step, finding] : examination.steps) {
            const auto [word, colour] = words_of(finding.outcome, failed);
            std::string shown = padded(word, widest_word);
            if (terminal.has_colours) shown = colour + shown + "\x1B[0m";
            put(out, "  " + shown + padded(step, widest_step) + printable(finding.text) + '\n');
            if (!finding.advice.empty())
                put(out, below + "To do: " + printable(finding.advice) + '\n');
        }
    }
}

void write_json(std::ostream& out, const std::vector<Examination>& report, const char* failed) {
    const auto rows = make_row_writer(
        Format::json, out, {{"subject"}, {"step"}, {"result"}, {"text"}, {"advice"}}, {});
    for (const Examination& examination : report)
        for (const auto& [step, finding] : examination.steps)
            rows->write({{},
                         {{examination.subject},
                          {step},
                          {words_of(finding.outcome, failed).word},
                          {finding.text},
                          finding.advice.empty() ? std::vector<std::string>()
                                                 : std::vector{finding.advice}}});
    rows->finish();
}

}  // namespace orvo::admin
