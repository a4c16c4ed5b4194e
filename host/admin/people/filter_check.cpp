#include "host/admin/people/filter_check.h"

#include "host/admin/common/exit_codes.h"
#include "host/admin/common/texts.h"
#include "platform/values/failure.h"
#include "suite/directory/filters/filter.h"

namespace orvo::admin {

void require_filter(const std::string& condition) {
    const std::string whole = condition.starts_with('(') ? condition : "(" + condition + ")";
    try {
        directory::Filter::parse(from_utf8(whole));
    } catch (const Failure& failure) {
        std::string reason = told(failure);
        if (reason.ends_with('.')) reason.pop_back();
        throw Misuse("--filter: " + reason);
    }
}

}  // namespace orvo::admin
