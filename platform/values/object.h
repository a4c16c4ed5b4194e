#pragma once

// References to objects. Different references may be used by different threads; whether the object
// itself may is the object's affair (see docs/house.md). Nothing here raises; an object that fails
// to say who it is counts as itself.

#include <cstddef>
#include <utility>

namespace orvo {

namespace abi {
struct IUnknown;
}

// A counted reference to any object that speaks IDispatch; empty is "nothing".
// Copies share the object. The last reference releases it.
class Object {
public:
    Object() = default;
    Object(std::nullptr_t) {}
    Object(const Object& other);
    Object(Object&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    Object& operator=(Object other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~Object();

    explicit operator bool() const { return pointer_ != nullptr; }

    // Identity: the same object, whichever of its interfaces either side holds.
    bool operator==(const Object& other) const;

    // The border's own verbs. get: borrowed; put: an empty slot to receive into; attach: takes a
    // reference over; detach: gives it away; share: adds a reference of its own.
    abi::IUnknown* get() const { return pointer_; }
    abi::IUnknown** put();
    static Object attach(abi::IUnknown* pointer);
    static Object share(abi::IUnknown* pointer);
    abi::IUnknown* detach() { return std::exchange(pointer_, nullptr); }

private:
    abi::IUnknown* pointer_ = nullptr;
};

}  // namespace orvo
