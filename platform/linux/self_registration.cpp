#include "platform/linux/self_registration.h"

#include <dlfcn.h>

#include <memory>
#include <string>

#include "platform/system/automation.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace orvo::runtime {

namespace {

using abi::BSTR;
using abi::HRESULT;
using abi::IUnknown;

[[noreturn]] void refuse(HRESULT number, const std::string& module, const Text& reason) {
    throw Failure(number, {}, from_utf8(module) + u": " + reason);
}

// What the module says of its failure; without that, the result code.
Text reason_of(HRESULT outcome) {
    IUnknown* error = nullptr;
    abi::GetErrorInfo(0, &error);
    Text reason;
    if (error) {
        BSTR text = nullptr;
        abi::call_slot<HRESULT, BSTR*>(error, abi::slot_error_get_description, &text);
        reason.assign(text ? text : u"", abi::SysStringLen(text));
        abi::SysFreeString(text);
        abi::release(error);
    }
    return reason.empty() ? u"it answers 0x" + hexadecimal(outcome) : reason;
}

void call_export(const std::filesystem::path& file, const char* name) {
    std::string module = std::filesystem::absolute(file).string();
    std::unique_ptr<void, int (*)(void*)> handle(dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL),
                                                 dlclose);
    if (!handle) refuse(abi::co_e_dllnotfound, module, from_utf8(dlerror()));
    auto entry = reinterpret_cast<HRESULT (*)()>(dlsym(handle.get(), name));
    if (!entry) refuse(abi::co_e_errorindll, module, u"it does not export " + from_utf8(name));
    abi::SetErrorInfo(0, nullptr);
    HRESULT outcome = entry();
    if (abi::failed(outcome)) refuse(outcome, module, reason_of(outcome));
}

}  // namespace

void register_module_file(const std::filesystem::path& module) {
    call_export(module, "DllRegisterServer");
}

void unregister_module_file(const std::filesystem::path& module) {
    call_export(module, "DllUnregisterServer");
}

}  // namespace orvo::runtime
