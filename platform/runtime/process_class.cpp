#include "platform/automation/failure.h"
#include "platform/runtime/registration.h"
#include "platform/runtime/runtime_calls.h"

namespace orvo::runtime {

ProcessClass::ProcessClass(const std::u16string& progid, const abi::CLSID& clsid,
                           abi::IUnknown* factory) {
    abi::HRESULT outcome = OrvoRegisterProcessClass(progid.c_str(), clsid, factory, &cookie_);
    if (abi::failed(outcome))
        throw Failure(outcome, {}, u"The class " + progid + u" cannot be registered.");
}

ProcessClass::~ProcessClass() { OrvoRevokeProcessClass(cookie_); }

}  // namespace orvo::runtime
