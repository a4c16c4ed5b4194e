#include <exception>
#include <new>
#include <string>

#include "platform/linux/installed_classes.h"
#include "platform/linux/module_file.h"
#include "platform/linux/process_classes.h"
#include "platform/linux/runtime_calls.h"
#include "platform/linux/thread_error.h"
#include "platform/system/automation.h"
#include "platform/values/text.h"

// From a name to an object: ProgID, class, class object, instance.

namespace orvo::abi {

namespace {

using namespace runtime;

// The edge of the library: no C++ exception leaves it.
template <class Body>
HRESULT guarded(Body body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        return e_outofmemory;
    } catch (const std::exception& error) {
        set_thread_error(error.what());
        return e_unexpected;
    }
}

// A lookup that missed: the folders are told, and a fault of a manifest, which may be the reason.
HRESULT missed(const InstalledClasses::Miss& miss, const std::string& what, HRESULT unknown) {
    if (miss.is_listed) {
        set_thread_error(what + " is listed in a manifest that cannot be used: " + miss.faults);
        return co_e_errorindll;
    }
    std::string text = what + " is not known in ";
    for (const std::filesystem::path& folder : miss.folders)
        text += (&folder == &miss.folders.front() ? "" : ", ") + folder.string();
    if (!miss.faults.empty()) text += ", and a manifest cannot be used: " + miss.faults;
    set_thread_error(text);
    return unknown;
}

HRESULT find_module(const CLSID& clsid, ModuleFile*& module) {
    InstalledClasses& installed = installed_classes();
    if (installed.find(clsid, module)) return s_ok;
    installed.refresh();
    if (installed.find(clsid, module)) return s_ok;
    return missed(installed.explain(clsid), "The class " + braced(clsid), regdb_e_classnotreg);
}

// `call` lasts longer than this function where the caller uses the class object at once.
HRESULT class_object_of_module(const CLSID& clsid, const IID& iid, void** out, ModuleCall& call) {
    ModuleFile* module = nullptr;
    HRESULT outcome = find_module(clsid, module);
    if (failed(outcome)) return outcome;
    std::string reason;
    call.enter(*module);
    outcome = module->get_class_object(clsid, iid, out, reason);
    if (reason.empty()) return outcome;
    // The module may have moved since its manifest was read.
    ModuleFile* tried = module;
    installed_classes().refresh();
    HRESULT found = find_module(clsid, module);
    if (failed(found)) return found;
    if (module != tried) {
        reason.clear();
        call.enter(*module);
        outcome = module->get_class_object(clsid, iid, out, reason);
    }
    if (!reason.empty()) set_thread_error(reason);
    return outcome;
}

HRESULT class_object(const CLSID& clsid, std::uint32_t context, const IID& iid, void** out,
                     ModuleCall& call) {
    if (!(context & CLSCTX_INPROC_SERVER)) return regdb_e_classnotreg;
    return guarded([&] {
        if (HeldFactory factory = process_classes().find(clsid))
            return query_interface(factory.get(), iid, out);
        return class_object_of_module(clsid, iid, out, call);
    });
}

}  // namespace

extern "C" {

HRESULT CLSIDFromProgID(const char16_t* progid, CLSID* out) {
    if (!progid || !out) return e_invalidarg;
    return guarded([&] {
        std::u16string_view name(progid);
        InstalledClasses& installed = installed_classes();
        if (process_classes().find(name, *out) || installed.find(name, *out)) return s_ok;
        *out = {};
        installed.refresh();
        if (installed.find(name, *out)) return s_ok;
        return missed(installed.explain(name), "The component \"" + to_utf8(name) + "\"",
                      co_e_classstring);
    });
}

HRESULT CoGetClassObject(const CLSID& clsid, std::uint32_t context, void*, const IID& iid,
                         void** out) {
    if (!out) return e_invalidarg;
    *out = nullptr;
    ModuleCall call;
    return class_object(clsid, context, iid, out, call);
}

HRESULT CoCreateInstance(const CLSID& clsid, IUnknown* outer, std::uint32_t context, const IID& iid,
                         void** out) {
    if (!out) return e_invalidarg;
    *out = nullptr;
    // Until the instance is counted by its module, the call is what keeps the module.
    ModuleCall call;
    void* found = nullptr;
    HRESULT outcome = class_object(clsid, context, iid_class_factory, &found, call);
    if (failed(outcome)) return outcome;
    auto* factory = static_cast<IUnknown*>(found);
    outcome = call_slot<HRESULT, IUnknown*, const IID*, void**>(
        factory, slot_factory_create_instance, outer, &iid, out);
    release(factory);
    return outcome;
}

void CoFreeUnusedLibraries() {
    // Without memory for the list of modules nothing is unloaded; the next call tries again.
    guarded([] {
        unload_unused_modules();
        return s_ok;
    });
}

}  // extern "C"

}  // namespace orvo::abi

namespace orvo::runtime {

extern "C" {

abi::HRESULT OrvoRegisterProcessClass(const char16_t* progid, const abi::CLSID& clsid,
                                      abi::IUnknown* factory, std::uint32_t* cookie) {
    if (!progid || !factory || !cookie) return abi::e_invalidarg;
    return abi::guarded([&] {
        *cookie = process_classes().add(progid, clsid, factory);
        return abi::s_ok;
    });
}

void OrvoRevokeProcessClass(std::uint32_t cookie) { process_classes().remove(cookie); }

void OrvoForgetManifests() { installed_classes().forget(); }

}  // extern "C"

}  // namespace orvo::runtime
