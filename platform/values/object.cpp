#include "platform/values/object.h"

#include "platform/system/automation.h"

namespace orvo {
namespace {

// An object's identity: the pointer it answers for IUnknown. Compared only, never called through.
const void* identity_of(abi::IUnknown* object) {
    void* identity = nullptr;
    if (abi::failed(abi::query_interface(object, abi::iid_unknown, &identity))) return object;
    abi::release(static_cast<abi::IUnknown*>(identity));
    return identity;
}

}  // namespace

Object::Object(const Object& other) : pointer_(other.pointer_) {
    if (pointer_) abi::add_ref(pointer_);
}

Object::~Object() {
    if (pointer_) abi::release(pointer_);
}

bool Object::operator==(const Object& other) const {
    if (pointer_ == other.pointer_) return true;
    if (!pointer_ || !other.pointer_) return false;
    return identity_of(pointer_) == identity_of(other.pointer_);
}

abi::IUnknown** Object::put() {
    *this = Object();
    return &pointer_;
}

Object Object::attach(abi::IUnknown* pointer) {
    Object object;
    object.pointer_ = pointer;
    return object;
}

Object Object::share(abi::IUnknown* pointer) {
    if (pointer) abi::add_ref(pointer);
    return attach(pointer);
}

}  // namespace orvo
