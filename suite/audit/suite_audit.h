#pragma once

// The suite's audit component.

#include "platform/interfaces/hosted.h"
#include "suite/audit/audit_contract.h"
#include "suite/audit/audit_event.h"

namespace orvo {
namespace audit {

// Writes events as lines (audit_event.h) to where the site's configuration says (audit_settings.h),
// as it is at each event. The objects of a process share one open file, so making one for a single
// event is cheap. One object belongs to one thread.
class SuiteAudit final : public Audit {
public:
    // Raises configuration_error's numbers for settings that are wrong: nobody logs in while nobody
    // knows whether that is to be recorded.
    Boolean IsOn() override;
    // With Sync raises 75, "<file>: the audit cannot be written (<reason>)". The log has such an
    // event at level error, as the line that is missing.
    void Record(const Text& event, const Text& result, const Text& user, const Text& by,
                const Text& server, const Text& what) override;
};

}  // namespace audit

template <>
inline constexpr auto class_of<audit::SuiteAudit> =
    describe_class<Audit>("OrvoSuite.Audit", "541ba06b-9aa9-45fa-8333-8463d6c28344");

}  // namespace orvo
