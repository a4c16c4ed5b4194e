#include "suite/audit/audit_call.h"

#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"

namespace orvo::audit {

Ref<Audit> try_audit() {
    Object object;
    try {
        object = create_object(audit_progid);
    } catch (const Failure& failure) {
        if (failure.number != runtime_error::cannot_create_object) throw;
        return {};
    }
    auto audit = Ref<Audit>::from(object);
    return call<&Audit::IsOn>(audit) ? audit : Ref<Audit>();
}

Text failed(std::int32_t number) { return u"failed (0x" + hexadecimal(number) + u")"; }

}  // namespace orvo::audit
