// The exports of every module: the four standard ones and, on Windows, one for a user's own
// registration. Linked into each module as it stands.

#include <deque>
#include <vector>

#include "platform/interfaces/border.h"
#include "platform/module/class_factory.h"
#include "platform/module/module.h"
#include "platform/system/registration.h"
#include "platform/system/type_library.h"

namespace orvo::detail {
namespace {

// The class objects, in the order of the module's classes.
std::deque<ClassFactory> make_factories() {
    std::deque<ClassFactory> factories;
    for (const ModuleClass& offered : this_module().classes)
        factories.emplace_back(offered.progid, offered.create);
    return factories;
}

ClassFactory* find_factory(const abi::CLSID& clsid) {
    static std::deque<ClassFactory> factories = make_factories();
    const auto classes = this_module().classes;
    for (std::size_t i = 0; i < classes.size(); ++i)
        if (classes[i].clsid == clsid) return &factories[i];
    return nullptr;
}

template <class Body>
abi::HRESULT reported(Body body) noexcept {
    try {
        body();
        return abi::s_ok;
    } catch (...) {
        return report_current_exception({}, this_module().name);
    }
}

std::vector<runtime::ClassEntry> class_entries() {
    std::vector<runtime::ClassEntry> entries;
    for (const ModuleClass& offered : this_module().classes)
        entries.push_back({offered.clsid, from_utf8(offered.progid)});
    return entries;
}

void register_all(runtime::Scope scope) {
    const ModuleDescription& module = this_module();
    const std::vector<runtime::ClassEntry> classes = class_entries();
    const Text name = from_utf8(module.name);
    runtime::register_module(name, classes, scope);
    if (module.app_id != abi::GUID{})
        runtime::register_surrogate(module.app_id, name, classes, scope);
    runtime::register_type_libraries(classes, scope);
}

void unregister_all(runtime::Scope scope) {
    runtime::unregister_type_libraries(scope);
    runtime::unregister_module(from_utf8(this_module().name), scope);
}

}  // namespace
}  // namespace orvo::detail

using orvo::runtime::Scope;

#ifndef _WIN32  // there, a definition file names the exports
#pragma GCC visibility push(default)
#endif
extern "C" {

orvo::abi::HRESULT DllGetClassObject(const orvo::abi::CLSID& clsid, const orvo::abi::IID& iid,
                                     void** out) {
    if (out == nullptr) return orvo::abi::e_pointer;
    *out = nullptr;
    orvo::detail::ClassFactory* factory = orvo::detail::find_factory(clsid);
    if (factory == nullptr) return orvo::abi::class_e_classnotavailable;
    return orvo::abi::query_interface(factory->get(), iid, out);
}

orvo::abi::HRESULT DllCanUnloadNow() {
    return orvo::detail::module_locks() == 0 ? orvo::abi::s_ok : orvo::abi::s_false;
}

orvo::abi::HRESULT DllRegisterServer() {
    return orvo::detail::reported([] { orvo::detail::register_all(Scope::machine); });
}

orvo::abi::HRESULT DllUnregisterServer() {
    return orvo::detail::reported([] { orvo::detail::unregister_all(Scope::machine); });
}

#ifdef _WIN32
// `regsvr32 /n /i:user`, and with /u: the same for the calling user alone.
orvo::abi::HRESULT DllInstall(std::int32_t install, const char16_t* command) {
    return orvo::detail::reported([&] {
        if (command == nullptr || !orvo::equal_ignoring_case(command, u"user"))
            throw orvo::Failure(orvo::abi::e_invalidarg, {}, u"The only command is \"user\"");
        if (install)
            orvo::detail::register_all(Scope::user);
        else
            orvo::detail::unregister_all(Scope::user);
    });
}
#endif

}  // extern "C"
#ifndef _WIN32
#pragma GCC visibility pop
#endif
