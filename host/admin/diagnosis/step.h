#pragma once

// A diagnosis is a table of steps, each of which looks at one thing:
//
//     constexpr Step<Server> steps[] = {
//         {"name", nullptr, resolve},
//         {"connection", "name", connect},
//     };
//     const std::vector<Examined> report = examine<Server>(steps, server);

#include <algorithm>
#include <cstring>
#include <exception>
#include <span>
#include <string>
#include <vector>

#include "host/admin/common/texts.h"

namespace orvo::admin {

enum class Outcome {
    ok,
    failed,
    not_known,  // there is no way to find out here
    skipped,    // a step that it needs was not ok
};

struct Finding {
    Outcome outcome = Outcome::ok;
    std::string text;         // what was seen, without a full stop where it is no sentence
    std::string advice = {};  // what to do about it; empty: nothing
};

inline Finding found(std::string text, std::string advice = {}) {
    return {Outcome::ok, std::move(text), std::move(advice)};
}
inline Finding failed(std::string text, std::string advice = {}) {
    return {Outcome::failed, std::move(text), std::move(advice)};
}
inline Finding unknown(std::string text, std::string advice = {}) {
    return {Outcome::not_known, std::move(text), std::move(advice)};
}

template <class Patient>
struct Step {
    const char* name;
    const char* needs;  // a step further up; null: none
    // What it raises is told as a failure.
    Finding (*run)(Patient& patient);
};

struct Examined {
    std::string step;
    Finding finding;
};

template <class Patient>
std::vector<Examined> examine(std::span<const Step<Patient>> steps, Patient& patient) {
    std::vector<Examined> report;
    for (const Step<Patient>& step : steps) {
        const auto needed = std::ranges::find_if(report, [&](const Examined& examined) {
            return step.needs && examined.step == step.needs;
        });
        if (needed != report.end() && needed->finding.outcome != Outcome::ok) {
            report.push_back({step.name, {Outcome::skipped, "needs " + needed->step}});
            continue;
        }
        try {
            report.push_back({step.name, step.run(patient)});
        } catch (const std::exception& failure) {
            report.push_back({step.name, failed(told(failure))});
        }
    }
    return report;
}

}  // namespace orvo::admin
