#pragma once

// Objects: a C++ class becomes an object that others can hold and call.
//
//   template <> inline constexpr auto class_of<LdapAccess> =
//       describe_class<LdapAccess, ObjectControl>("OrvoMembership.LdapAccess", "clsid …");
//   Ref<LdapAccess> entry = make<LdapAccess>();
//
// The class itself knows nothing of it: no base class, no counting. Its first interface may be the
// class itself (its public methods, with a table of their own) or a contract that it derives from.
//
// A class that wants to know of each failure with which one of its members answers a caller has a
//
//   void failed(const char* member, const Failure& failure) const noexcept;
//
// It is called while no error object is set yet, on the caller's thread.
//
// An object belongs to the thread that made it: any other is answered RPC_E_WRONG_THREAD, unless
// the class is described as shared(). It owns its C++ object and ends with its last reference.

#include "platform/interfaces/dispatch.h"
#include "platform/interfaces/thunk.h"

namespace orvo {

// What is known of a class: its interfaces, its name, its identifier.
template <class... Interfaces>
struct ClassDescription {
    static_assert(sizeof...(Interfaces) > 0, "a class has at least its own interface");
    using first = std::tuple_element_t<0, std::tuple<Interfaces...>>;

    const char* progid;  // also the source of failures that carry none
    abi::CLSID clsid;    // all zeros: not creatable by others
    bool is_shared = false;

    // Objects of this class may be used by any thread; the class does its own locking.
    constexpr ClassDescription shared() const {
        ClassDescription description = *this;
        description.is_shared = true;
        return description;
    }
};

template <class... Interfaces>
consteval ClassDescription<Interfaces...> describe_class(const char* progid,
                                                         std::string_view clsid) {
    return {progid, guid(clsid)};
}
// A class whose objects only this module makes.
template <class... Interfaces>
consteval ClassDescription<Interfaces...> describe_class(const char* name) {
    return {name, {}};
}

// The description of class C; every class specialises it.
template <class C>
inline constexpr auto class_of = nullptr;

namespace detail {

const InterfaceInfo& support_error_info();
const abi::Slot* support_error_info_slots();

template <class C, class Description>
class Hosted;

template <class C, class... Interfaces>
class Hosted<C, ClassDescription<Interfaces...>> final : public ObjectCore {
public:
    template <class... A>
    explicit Hosted(A&&... arguments)
        : ObjectCore(class_of<C>.progid, class_of<C>.is_shared),
          object_(std::forward<A>(arguments)...),
          faces_{Face{callee<Interfaces>::slots(), this, static_cast<Interfaces*>(&object_),
                      &callee<Interfaces>::info()}...,
                 Face{support_error_info_slots(), this, this, &support_error_info()}} {}

    std::span<Face> faces() override { return faces_; }
    void failed(const char* member, const Failure& failure) const noexcept override {
        if constexpr (requires { object_.failed(member, failure); })
            object_.failed(member, failure);
    }
    C& object() { return object_; }

private:
    C object_;
    std::array<Face, sizeof...(Interfaces) + 1> faces_;
};

template <class C>
using description_of = std::remove_cvref_t<decltype(class_of<C>)>;

}  // namespace detail

// A new object of class C, as a reference to its first interface. What its constructor raises is
// passed on.
template <class C, class... A>
auto make(A&&... arguments) {
    using First = typename detail::description_of<C>::first;
    auto* object = new detail::Hosted<C, detail::description_of<C>>(std::forward<A>(arguments)...);
    return Ref<First>::attach(reinterpret_cast<abi::IUnknown*>(&object->faces().front()));
}

}  // namespace orvo
