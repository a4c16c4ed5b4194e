#pragma once

// How the suite's other parts reach the audit, whatever module they are in.

#include "platform/interfaces/ref.h"
#include "suite/audit/audit_contract.h"

namespace orvo::audit {

// The audit; nothing where the site asks for none, and where there is no such component. Raises
// what Audit::IsOn does. Belongs to the calling thread.
Ref<Audit> try_audit();

// How an event ended.
inline constexpr TextView done = u"done";
Text failed(std::int32_t number);  // "failed (0x80072098)"

}  // namespace orvo::audit
