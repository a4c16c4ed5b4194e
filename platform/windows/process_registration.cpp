#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "platform/system/registration.h"
#include "platform/values/failure.h"
#include "platform/values/guid.h"
#include "platform/values/progid.h"
#include "platform/windows/registry.h"

extern "C" {
std::int32_t CoRegisterClassObject(const orvo::abi::CLSID& clsid, orvo::abi::IUnknown* factory,
                                   std::uint32_t context, std::uint32_t flags,
                                   std::uint32_t* cookie);
std::int32_t CoRevokeClassObject(std::uint32_t cookie);
}

namespace orvo::runtime {

namespace {

constexpr std::uint32_t multiple_use = 1;

// The system keeps class objects for a process, but no ProgIDs: those stand, until the program
// takes them away or the system restarts, in the registry.
struct Progids {
    std::mutex lock;
    std::map<std::uint32_t, std::vector<std::u16string>> by_cookie;
};

Progids& progids() {
    static Progids& table = *new Progids;
    return table;
}

void forget(const std::vector<std::u16string>& names) {
    for (const std::u16string& name : names) remove_class_key(name, Scope::machine);
}

// Answers the names that are new. One that is there for the same class already stays as it is.
std::vector<std::u16string> remember(const std::u16string& progid, const std::u16string& clsid) {
    std::u16string unversioned(version_independent(progid));
    std::vector<std::u16string> names;
    for (const std::u16string& name : {unversioned, unversioned + u".1"}) {
        std::optional<std::u16string> owner = visible_class_key(name + u"\\CLSID");
        if (!owner)
            names.push_back(name);
        else if (!equal_ignoring_case(*owner, clsid))
            throw Failure(abi::e_fail, {}, name + u" is registered for another class: " + *owner);
    }
    for (const std::u16string& name : names) {
        set_class_key(name, unversioned, Scope::machine, Life::until_restart);
        set_class_key(name + u"\\CLSID", clsid, Scope::machine, Life::until_restart);
    }
    return names;
}

}  // namespace

ProcessRegistration::ProcessRegistration(const std::u16string& progid, const abi::CLSID& clsid,
                                         abi::IUnknown* factory) {
    std::vector<std::u16string> names = remember(progid, from_utf8(braced(clsid)));
    abi::HRESULT outcome =
        CoRegisterClassObject(clsid, factory, abi::CLSCTX_INPROC_SERVER, multiple_use, &cookie_);
    if (abi::failed(outcome)) {
        forget(names);
        throw Failure(outcome, {}, u"The class " + progid + u" cannot be registered.");
    }
    std::lock_guard guard(progids().lock);
    progids().by_cookie.emplace(cookie_, std::move(names));
}

ProcessRegistration::~ProcessRegistration() {
    CoRevokeClassObject(cookie_);
    std::lock_guard guard(progids().lock);
    auto found = progids().by_cookie.find(cookie_);
    try {
        forget(found->second);
    } catch (const Failure&) {
        // A destructor has nobody to tell; the keys go at the system's next start.
    }
    progids().by_cookie.erase(found);
}

}  // namespace orvo::runtime
