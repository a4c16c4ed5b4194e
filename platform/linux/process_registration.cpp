#include "platform/linux/runtime_calls.h"
#include "platform/system/registration.h"
#include "platform/values/failure.h"

namespace orvo::runtime {

ProcessRegistration::ProcessRegistration(const std::u16string& progid, const abi::CLSID& clsid,
                                         abi::IUnknown* factory) {
    abi::HRESULT outcome = OrvoRegisterProcessClass(progid.c_str(), clsid, factory, &cookie_);
    if (abi::failed(outcome))
        throw Failure(outcome, {}, u"The class " + progid + u" cannot be registered.");
}

ProcessRegistration::~ProcessRegistration() { OrvoRevokeProcessClass(cookie_); }

}  // namespace orvo::runtime
