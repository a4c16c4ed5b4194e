// The four exports of every module. Linked into each module as it stands.

#include <deque>
#include <vector>

#include "platform/abi/border.h"
#include "platform/abi/module.h"
#include "platform/abi/type_library.h"

namespace orvo::detail {
long module_locks();

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

}  // namespace
}  // namespace orvo::detail

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
    return orvo::detail::reported([] {
        orvo::runtime::register_module(orvo::from_utf8(orvo::this_module().name),
                                       orvo::detail::class_entries());
        orvo::detail::register_type_library(orvo::this_module().classes);
    });
}

orvo::abi::HRESULT DllUnregisterServer() {
    return orvo::detail::reported([] {
        orvo::detail::unregister_type_library();
        orvo::runtime::unregister_module(orvo::from_utf8(orvo::this_module().name));
    });
}

}  // extern "C"
#ifndef _WIN32
#pragma GCC visibility pop
#endif
