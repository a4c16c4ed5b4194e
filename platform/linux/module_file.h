#pragma once

// Modules: shared objects that export DllGetClassObject. Failures are results with a reason;
// nothing is raised but for want of memory.

#include <atomic>
#include <filesystem>
#include <mutex>
#include <string>
#include <utility>

#include "platform/system/automation.h"

namespace orvo::runtime {

// A module, loaded when a class of it is first asked for. Any thread.
//
// Whoever calls into the module is counted while the call lasts (ModuleCall), so that the module is
// not taken away under it; objects are counted by the module itself (DllCanUnloadNow). A thread
// must not be inside the last release of an object of the module while another thread asks for
// unused modules to be unloaded: the module can no longer tell.
class ModuleFile {
public:
    explicit ModuleFile(std::filesystem::path path) : path_(std::move(path)) {}
    ModuleFile(const ModuleFile&) = delete;
    ModuleFile& operator=(const ModuleFile&) = delete;

    // Loads the module if it is not; the caller is inside a ModuleCall. `reason` tells why a module
    // could not be loaded (CO_E_DLLNOTFOUND) or is no component (CO_E_ERRORINDLL); other results
    // are the module's own.
    abi::HRESULT get_class_object(const abi::CLSID& clsid, const abi::IID& iid, void** out,
                                  std::string& reason);

    // Unloads the module if it says that nobody needs it. One that does not export DllCanUnloadNow
    // stays.
    void unload_if_unused();

private:
    friend class ModuleCall;
    using GetClassObject = abi::HRESULT (*)(const abi::CLSID*, const abi::IID*, void**);
    using CanUnloadNow = abi::HRESULT (*)();

    abi::HRESULT load(GetClassObject& entry, std::string& reason);
    void* take_unused();

    const std::filesystem::path path_;
    std::atomic<GetClassObject> entry_{nullptr};  // not null while the module is loaded
    std::atomic<int> calls_{0};
    std::mutex loading_;
    void* handle_ = nullptr;
    CanUnloadNow can_unload_now_ = nullptr;
};

// A call into a module, from asking it for a class object until that is no longer used.
class ModuleCall {
public:
    ModuleCall() = default;
    ~ModuleCall() { leave(); }
    ModuleCall(const ModuleCall&) = delete;
    ModuleCall& operator=(const ModuleCall&) = delete;

    void enter(ModuleFile& module) {
        leave();
        module.calls_.fetch_add(1);
        module_ = &module;
    }
    void leave() {
        if (ModuleFile* module = std::exchange(module_, nullptr)) module->calls_.fetch_sub(1);
    }

private:
    ModuleFile* module_ = nullptr;
};

// The module of that file, always the same object; it lives as long as the process.
ModuleFile& module_at(const std::filesystem::path& path);

void unload_unused_modules();

}  // namespace orvo::runtime
