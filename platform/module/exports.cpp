// The four exports of every module. Linked into each module as it stands.

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
        orvo::runtime::register_type_library(orvo::detail::class_entries());
    });
}

orvo::abi::HRESULT DllUnregisterServer() {
    return orvo::detail::reported([] {
        orvo::runtime::unregister_type_library();
        orvo::runtime::unregister_module(orvo::from_utf8(orvo::this_module().name));
    });
}

}  // extern "C"
#ifndef _WIN32
#pragma GCC visibility pop
#endif
