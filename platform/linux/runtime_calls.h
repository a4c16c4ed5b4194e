#pragma once

// Calls of the runtime library beyond those of Automation, for platform/system/registration.h. Any
// thread; failures are results, nothing is raised.

#include <cstdint>

#include "platform/system/automation.h"

namespace orvo::runtime {

struct OrvoModuleClass {
    const char16_t* progid;
    abi::CLSID clsid;
};

#pragma GCC visibility push(default)
extern "C" {

// Write and remove a module's manifest; see register_module. `inside`: an address in the module.
// Removing answers S_FALSE where there is none. A failure leaves an error object with file and
// reason. Declared for others in compat/windows.h.
abi::HRESULT OrvoRegisterModule(const void* inside, const char16_t* name,
                                const OrvoModuleClass* classes, std::uint32_t count);
abi::HRESULT OrvoUnregisterModule(const char16_t* name);

// See ProcessRegistration. `cookie` is never 0.
abi::HRESULT OrvoRegisterProcessClass(const char16_t* progid, const abi::CLSID& clsid,
                                      abi::IUnknown* factory, std::uint32_t* cookie);
void OrvoRevokeProcessClass(std::uint32_t cookie);

// Manifests have been written or removed: what is known of them is read anew when it is next asked
// for.
void OrvoForgetManifests();

}  // extern "C"
#pragma GCC visibility pop

}  // namespace orvo::runtime
