// A module that registers itself, for the tests of registration.

#include <array>

#include "platform/system/automation.h"
#include "platform/system/registration.h"
#include "platform/values/failure.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

using orvo::abi::HRESULT;

const std::array<orvo::runtime::ClassEntry, 2> classes{{
    {{0x33CC820F, 0x121F, 0x4221, {0xB4, 0x8E, 0x57, 0xEB, 0xB1, 0x1C, 0x69, 0x55}}, u"Sample.One"},
    {{0x33CC8210, 0x121F, 0x4221, {0xB4, 0x8E, 0x57, 0xEB, 0xB1, 0x1C, 0x69, 0x55}}, u"Sample.Two"},
}};

template <class Body>
HRESULT reported(Body body) {
    try {
        body();
        return orvo::abi::s_ok;
    } catch (const orvo::Failure& failure) {
        orvo::abi::IUnknown* create = nullptr;
        orvo::abi::CreateErrorInfo(&create);
        orvo::abi::call_slot<HRESULT, const char16_t*>(
            create, orvo::abi::slot_error_set_description, failure.description.c_str());
        void* error = nullptr;
        orvo::abi::query_interface(create, orvo::abi::iid_error_info, &error);
        orvo::abi::SetErrorInfo(0, static_cast<orvo::abi::IUnknown*>(error));
        orvo::abi::release(static_cast<orvo::abi::IUnknown*>(error));
        orvo::abi::release(create);
        return failure.number;
    }
}

}  // namespace

EXPORTED HRESULT DllGetClassObject(const orvo::abi::CLSID*, const orvo::abi::IID*, void** out) {
    *out = nullptr;
    return orvo::abi::class_e_classnotavailable;
}
EXPORTED HRESULT DllCanUnloadNow() { return orvo::abi::s_ok; }
EXPORTED HRESULT DllRegisterServer() {
    return reported([] { orvo::runtime::register_module(u"SampleModule", classes); });
}
EXPORTED HRESULT DllUnregisterServer() {
    return reported([] { orvo::runtime::unregister_module(u"SampleModule"); });
}
