#include "suite/audit/audit_call.h"

#include "platform/interfaces/call.h"
#include "platform/interfaces/optional_class.h"

namespace orvo::audit {

Ref<Audit> try_audit() {
    const Object object = create_object_if_known(audit_progid);
    if (!object) return {};
    auto audit = Ref<Audit>::from(object);
    return call<&Audit::IsOn>(audit) ? audit : Ref<Audit>();
}

Text failed(std::int32_t number) { return u"failed (0x" + hexadecimal(number) + u")"; }

}  // namespace orvo::audit
