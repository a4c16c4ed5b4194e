#include "suite/directory/entries/failure_note.h"

#include "suite/audit/calling_page.h"
#include "suite/directory/policy/failures.h"
#include "suite/log/log_entry.h"
#include "suite/log/log_target.h"
#include "suite/log/tell_log.h"

namespace orvo::directory {
namespace {

thread_local bool is_noting = false;

class NotingScope {
public:
    NotingScope() { is_noting = true; }
    ~NotingScope() { is_noting = false; }
};

}  // namespace

void note_failure(const char* operation, std::string_view entry, const Failure& failure) noexcept {
    if (is_noting) return;
    const NotingScope scope;
    try {
        if (!log_notes_of_environment()) return;
        const std::string of_entry = entry.empty() ? "" : " of " + quoted_name(entry);
        const Text request = audit::request_of_calling_page();
        tell_log(failure.source,
                 from_utf8(operation + of_entry) + u" failed" +
                     (request.empty() ? Text() : u" (request " + request + u")") + u", 0x" +
                     hexadecimal(failure.number) + u": " + failure.description,
                 log_level_note);
    } catch (...) {
        // A note is not worth a failure: where it cannot be written it is dropped.
    }
}

}  // namespace orvo::directory
