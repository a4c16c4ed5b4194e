#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "host/admin/common/terminal.h"
#include "host/admin/diagnosis/step.h"

namespace orvo::admin {

// What was looked at: a server, a file, a user.
struct Examination {
    std::string subject;
    std::vector<Examined> steps;

    bool has_failed() const;
};

// Both raise std::runtime_error where `out` takes no more.

// For people: a line for each step and, below it, what to do. `failed`: the word for a step that
// has.
void write_text(std::ostream& out, const std::vector<Examination>& report, const char* failed,
                const Terminal& terminal);

// An array with an object for each step, "result" being the same word as for people:
//
//     {"subject": "ldap://dir01:389", "step": "clock", "result": "ok", "text": "…", "advice": null}
void write_json(std::ostream& out, const std::vector<Examination>& report, const char* failed);

}  // namespace orvo::admin
