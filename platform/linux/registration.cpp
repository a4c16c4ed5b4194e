#include "platform/system/registration.h"

#include <vector>

#include "platform/linux/failure_reason.h"
#include "platform/linux/runtime_calls.h"
#include "platform/values/failure.h"

namespace orvo::runtime {

namespace {

void require(abi::HRESULT outcome) {
    if (abi::failed(outcome)) throw Failure(outcome, {}, failure_reason(outcome));
}

}  // namespace

void register_module(const std::u16string& module_name, std::span<const ClassEntry> classes,
                     Scope) {
    std::vector<OrvoModuleClass> entries;
    for (const ClassEntry& entry : classes) entries.push_back({entry.progid.c_str(), entry.clsid});
    // This function is linked into the module; so its address lies in the module's file.
    require(OrvoRegisterModule(reinterpret_cast<const void*>(&register_module), module_name.c_str(),
                               entries.data(), static_cast<std::uint32_t>(entries.size())));
}

void register_surrogate(const abi::GUID&, const std::u16string&, std::span<const ClassEntry>,
                        Scope) {}

void unregister_module(const std::u16string& module_name, Scope) {
    require(OrvoUnregisterModule(module_name.c_str()));
}

}  // namespace orvo::runtime
