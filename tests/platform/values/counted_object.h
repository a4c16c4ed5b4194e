#pragma once

#include "platform/system/automation.h"
#include "platform/values/variant.h"

namespace orvo {

// An object on the test's own stack that counts its references and has a default value. It has two
// interfaces at different addresses, as a real one has.
class CountedObject {
public:
    explicit CountedObject(Variant default_value = {}, bool speaks_dispatch = true);

    abi::IUnknown* unknown() { return &unknown_; }
    abi::IUnknown* dispatch() { return &dispatch_; }
    int references() const { return references_; }

private:
    struct Face : abi::IUnknown {
        CountedObject* owner;
    };
    static CountedObject& owner_of(abi::IUnknown* self) { return *static_cast<Face*>(self)->owner; }
    static abi::HRESULT query(abi::IUnknown* self, const abi::IID* iid, void** out);
    static std::uint32_t add(abi::IUnknown* self);
    static std::uint32_t drop(abi::IUnknown* self);
    static abi::HRESULT get_value(abi::IUnknown* self, abi::DISPID member, const abi::IID* iid,
                                  abi::LCID locale, std::uint16_t flags, abi::DISPPARAMS* arguments,
                                  abi::VARIANT* out, abi::EXCEPINFO* exception,
                                  std::uint32_t* argument);
    static const abi::Slot* slots();

    Face unknown_;
    Face dispatch_;
    Variant default_value_;
    bool speaks_dispatch_;
    int references_ = 0;
};

}  // namespace orvo
