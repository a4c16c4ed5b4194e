#pragma once

// References that know their interface. Threads and ownership are those of Object.

#include "platform/system/automation.h"
#include "platform/values/failure.h"
#include "platform/values/object.h"

namespace orvo {

template <class I>
const abi::IID& iid_of();

// A counted reference to somebody's interface I, of which table_of<I> tells the slots; empty is
// "nothing". Methods are called with call<&I::Method>(reference, …).
template <class I>
class Ref {
public:
    Ref() = default;
    Ref(std::nullptr_t) {}

    // The interface of an object; empty stays empty. Raises 13 (type mismatch) when the object does
    // not have it.
    static Ref from(const Object& object) {
        Ref reference;
        if (object &&
            abi::failed(abi::query_interface(object.get(), iid_of<I>(),
                                             reinterpret_cast<void**>(reference.object_.put()))))
            raise_runtime_error(runtime_error::type_mismatch);
        return reference;
    }

    // The same, empty for an object that does not have it.
    static Ref try_from(const Object& object) {
        Ref reference;
        if (object)
            abi::query_interface(object.get(), iid_of<I>(),
                                 reinterpret_cast<void**>(reference.object_.put()));
        return reference;
    }

    explicit operator bool() const { return static_cast<bool>(object_); }
    bool operator==(const Ref& other) const { return object_ == other.object_; }

    // The same object as a reference without a type.
    const Object& object() const { return object_; }

    // The border's own verbs; see Object.
    abi::IUnknown* get() const { return object_.get(); }
    static Ref attach(abi::IUnknown* pointer) { return Ref(Object::attach(pointer)); }
    static Ref share(abi::IUnknown* pointer) { return Ref(Object::share(pointer)); }
    abi::IUnknown* detach() { return object_.detach(); }

private:
    explicit Ref(Object object) : object_(std::move(object)) {}
    Object object_;
};

}  // namespace orvo
