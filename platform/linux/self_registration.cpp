#include "platform/linux/self_registration.h"

#include <dlfcn.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/failure_reason.h"
#include "platform/linux/runtime_calls.h"
#include "platform/values/failure.h"
#include "platform/values/guid.h"
#include "platform/values/text.h"

namespace orvo::runtime {

namespace {

using abi::HRESULT;

[[noreturn]] void refuse(HRESULT number, const std::string& module, const Text& reason) {
    throw Failure(number, {}, from_utf8(module) + u": " + reason);
}

class LoadedModule {
public:
    explicit LoadedModule(const std::filesystem::path& file)
        : name_(std::filesystem::absolute(file).string()),
          handle_(dlopen(name_.c_str(), RTLD_NOW | RTLD_LOCAL), dlclose) {
        if (!handle_) refuse(abi::co_e_dllnotfound, name_, from_utf8(dlerror()));
        abi::SetErrorInfo(0, nullptr);
    }

    template <class Function>
    Function* exported(const char* name) const {
        auto* entry = reinterpret_cast<Function*>(dlsym(handle_.get(), name));
        if (!entry) refuse(abi::co_e_errorindll, name_, u"it does not export " + from_utf8(name));
        return entry;
    }
    void require(HRESULT outcome) const {
        if (abi::failed(outcome)) refuse(outcome, name_, failure_reason(outcome));
    }
    const std::string& name() const { return name_; }

private:
    std::string name_;
    std::unique_ptr<void, int (*)(void*)> handle_;
};

void call_export(const std::filesystem::path& file, const char* name) {
    const LoadedModule module(file);
    module.require(module.exported<HRESULT()>(name)());
}

Text manifest_name(const std::filesystem::path& module) {
    return from_utf8(module.stem().string());
}

// Whether there was one.
bool remove_manifest_of(const std::filesystem::path& module) {
    abi::SetErrorInfo(0, nullptr);
    const HRESULT outcome = OrvoUnregisterModule(manifest_name(module).c_str());
    if (abi::failed(outcome)) refuse(outcome, module.string(), failure_reason(outcome));
    return outcome == abi::s_ok;
}

}  // namespace

void register_module_file(const std::filesystem::path& module) {
    call_export(module, "DllRegisterServer");
}

void unregister_module_file(const std::filesystem::path& module) {
    try {
        call_export(module, "DllUnregisterServer");
    } catch (const Failure&) {
        // Of a file that is gone or cannot be loaded, and of one that was registered by its
        // classes, the manifest is all that there is to take out.
        if (!remove_manifest_of(module)) throw;
    }
}

void register_module_classes(const std::filesystem::path& file,
                             std::span<const ManifestClass> classes) {
    const LoadedModule module(file);
    using GetClassObject = HRESULT(const abi::CLSID*, const abi::IID*, void**);
    auto* get = module.exported<GetClassObject>("DllGetClassObject");
    std::vector<OrvoModuleClass> entries;
    for (const ManifestClass& one : classes) {
        void* factory = nullptr;
        if (const HRESULT outcome = get(&one.clsid, &abi::iid_class_factory, &factory);
            abi::failed(outcome))
            refuse(outcome, module.name(), u"it has no class " + from_utf8(braced(one.clsid)));
        abi::release(static_cast<abi::IUnknown*>(factory));
        entries.push_back({one.progid.c_str(), one.clsid});
    }
    module.require(OrvoRegisterModule(reinterpret_cast<const void*>(get),
                                      manifest_name(file).c_str(), entries.data(),
                                      static_cast<std::uint32_t>(entries.size())));
}

void unregister_module_classes(const std::filesystem::path& file) { remove_manifest_of(file); }

}  // namespace orvo::runtime
