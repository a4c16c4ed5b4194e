#include "platform/linux/self_registration.h"

#include <dlfcn.h>

#include <memory>
#include <string>

#include "platform/linux/failure_reason.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace orvo::runtime {

namespace {

using abi::HRESULT;

[[noreturn]] void refuse(HRESULT number, const std::string& module, const Text& reason) {
    throw Failure(number, {}, from_utf8(module) + u": " + reason);
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
    if (abi::failed(outcome)) refuse(outcome, module, failure_reason(outcome));
}

}  // namespace

void register_module_file(const std::filesystem::path& module) {
    call_export(module, "DllRegisterServer");
}

void unregister_module_file(const std::filesystem::path& module) {
    call_export(module, "DllUnregisterServer");
}

}  // namespace orvo::runtime
