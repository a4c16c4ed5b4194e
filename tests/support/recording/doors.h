#pragma once

// The three ways to an object: its C++ class, its slots, its names. A test that goes through each
// door states that a caller sees the same behaviour through all of them.

#include <memory>
#include <ostream>
#include <tuple>

#include "platform/interfaces/call.h"
#include "platform/interfaces/hosted.h"
#include "platform/interfaces/late_call.h"
#include "tests/support/clear_text.h"

namespace orvo {

enum class Door { direct, slots, names };
inline constexpr Door every_door[] = {Door::direct, Door::slots, Door::names};

inline std::ostream& operator<<(std::ostream& out, Door door) {
    constexpr const char* names[] = {"called directly", "called by slot", "called by name"};
    return out << names[static_cast<int>(door)];
}

// A new object of class C, to be called through one door.
template <class C>
class Behind {
public:
    explicit Behind(Door door) : door_(door) {
        if (door == Door::direct)
            direct_ = std::make_unique<C>();
        else
            ref_ = make<C>();
    }

    // Calls a member; in-out arguments are variables of the parameter's own type.
    template <auto M, class... A>
    auto call(A&&... arguments) {
        switch (door_) {
            case Door::direct:
                return ((*direct_).*M)(arguments...);
            case Door::slots:
                return orvo::call<M>(ref_, arguments...);
            default:
                return Late<M>::call(ref_.object(), arguments...);
        }
    }

private:
    template <auto M, class S = std::remove_cv_t<decltype(M)>>
    struct Late;
    template <auto M, class I, class R, class... P>
    struct Late<M, R (I::*)(P...)> {
        static R call(const Object& object, P... arguments) {
            std::array<Variant, sizeof...(P)> values{detail::to_late(arguments)...};
            std::size_t index = 0;
            // What the member made of its arguments is handed back also when it failed.
            try {
                Variant result = late::call_by_reference(object, name(), values);
                (take_back(arguments, values[index++]), ...);
                if constexpr (!std::is_void_v<R>) return natural_of<R>(result);
            } catch (const Failure&) {
                index = 0;
                (take_back(arguments, values[index++]), ...);
                throw;
            }
        }

    private:
        static Text name() { return from_utf8(detail::place_of<M>::row().name); }
        template <class T>
        static T natural_of(const Variant& value) {
            if constexpr (std::is_same_v<T, Variant>)
                return value;
            else
                return crossing<T>::from_late(value);
        }
        template <class T>
        static void take_back(T& argument, const Variant& value) {
            if constexpr (!std::is_const_v<T>) argument = natural_of<T>(value);
        }
    };

    Door door_;
    std::unique_ptr<C> direct_;
    Ref<typename detail::description_of<C>::first> ref_;
};

}  // namespace orvo
