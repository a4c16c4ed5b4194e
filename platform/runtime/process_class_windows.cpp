#include <cstdint>
#include <map>
#include <mutex>

#include "platform/automation/failure.h"
#include "platform/runtime/guid_form.h"
#include "platform/runtime/registration.h"
#include "platform/runtime/registry_windows.h"

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
// takes them away or the system restarts, among the user's classes.
struct Progids {
    std::mutex lock;
    std::map<std::uint32_t, std::u16string> by_cookie;
};

Progids& progids() {
    static Progids& table = *new Progids;
    return table;
}

void remember_progid(const std::u16string& progid, const std::u16string& clsid) {
    for (const std::u16string& name : {progid, progid + u".1"}) {
        std::optional<std::u16string> owner = class_key(Classes::user, name + u"\\CLSID");
        if (owner && !equal_ignoring_case(*owner, clsid))
            throw Failure(abi::e_fail, {},
                          u"The user has a class " + name + u" already: " + *owner);
    }
    for (const std::u16string& name : {progid, progid + u".1"}) {
        set_class_key(Classes::user, name, progid, Life::until_restart);
        set_class_key(Classes::user, name + u"\\CLSID", clsid, Life::until_restart);
    }
}

void forget_progid(const std::u16string& progid) {
    remove_class_key(Classes::user, progid);
    remove_class_key(Classes::user, progid + u".1");
}

}  // namespace

ProcessClass::ProcessClass(const std::u16string& progid, const abi::CLSID& clsid,
                           abi::IUnknown* factory) {
    remember_progid(progid, from_utf8(braced(clsid)));
    abi::HRESULT outcome =
        CoRegisterClassObject(clsid, factory, abi::CLSCTX_INPROC_SERVER, multiple_use, &cookie_);
    if (abi::failed(outcome)) {
        forget_progid(progid);
        throw Failure(outcome, {}, u"The class " + progid + u" cannot be registered.");
    }
    std::lock_guard guard(progids().lock);
    progids().by_cookie.emplace(cookie_, progid);
}

ProcessClass::~ProcessClass() {
    CoRevokeClassObject(cookie_);
    std::lock_guard guard(progids().lock);
    auto found = progids().by_cookie.find(cookie_);
    try {
        forget_progid(found->second);
    } catch (const Failure&) {
        // A destructor has nobody to tell; the keys go at the system's next start.
    }
    progids().by_cookie.erase(found);
}

}  // namespace orvo::runtime
