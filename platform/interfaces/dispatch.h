#pragma once

// Late binding: GetIDsOfNames and Invoke over an interface's table. What is read from a table is
// made once, never changes and may be read by any thread; calls are answered on the object's own
// thread. The slots answer result codes and raise nothing; all else raises Failure.

#include <vector>

#include "platform/interfaces/by_reference.h"
#include "platform/interfaces/crossing.h"
#include "platform/interfaces/face.h"

namespace orvo::detail {

// Where the conversion of arguments stands, so that a failure can name the argument.
struct LateArguments {
    std::span<abi::VARIANT* const> values;  // in the order of the parameters; null where left out
    const RowData& row;
    int converting = -1;  // the parameter being converted
};

// One member, as late binding sees it.
struct LateMember {
    abi::DISPID id;
    const RowData* row;
    // Calls the member; raises Failure.
    Variant (*invoke)(void* target, LateArguments& arguments);
    bool answers_object = false;
};

struct InterfaceInfo {
    const abi::IID* iid;
    bool is_dual = false;
    std::vector<LateMember> members;  // in slot order

    void add(const RowData& row, Variant (*invoke)(void*, LateArguments&), bool answers_object);
    // After the last member: those below find them.
    void finish();
    // By name in any case.
    abi::DISPID id_of(TextView name) const;
    const LateMember* find(abi::DISPID id, Shape shape) const;
    // The place of a parameter of a member, by its name in any case; not of the value that a setter
    // takes.
    abi::DISPID parameter_of(abi::DISPID id, TextView name) const;

    // Every object of the class asks here for each call that a script makes: what is compared
    // stands together, and the members themselves are looked at only where it agrees.
    struct Key {
        std::uint32_t value;   // an id, or what name_key makes of a name
        std::uint32_t member;  // its place among the members
    };
    std::vector<Key> by_name = {};  // sorted
    std::vector<Key> by_id = {};    // sorted, of one id in slot order
};

// One argument of a late-bound call; what the method did to an in-out argument is in the caller's
// variable afterwards, where the caller passed one.
template <class P, std::size_t index>
class late_argument {
    using T = natural<P>;
    using C = crossing<T>;

public:
    explicit late_argument(LateArguments& all) {
        abi::VARIANT* passed = all.values[index];
        all.converting = static_cast<int>(index);
        if (passed == nullptr) {
            value_ = C::left_out(all.row.parameters[index].otherwise);
            return;
        }
        if constexpr (is_in_out<P>) {
            if (T* found = C::in_place(*passed)) {
                seen_ = found;
                return;
            }
        }
        Variant followed;
        value_ = C::from_late(follow_reference(*passed, followed));
        C::discard(std::move(followed));
        if constexpr (is_in_out<P>) {
            if (!(passed->vt & abi::VT_BYREF)) return;
            reference_ = passed;
            before_ = C::remembered(value_);
        }
    }
    ~late_argument() {
        if constexpr (is_in_out<P>) {
            if (reference_ != nullptr && !C::is_unchanged(value_, before_)) {
                Variant changed = to_late(std::move(value_));
                C::discard(store_through_reference(*reference_, changed));
                C::discard(std::move(changed));
            }
            C::forget(before_);
        }
        C::forget(value_);
    }
    late_argument(const late_argument&) = delete;
    late_argument& operator=(const late_argument&) = delete;

    T& value() { return *seen_; }

private:
    struct nothing {};
    T value_{};
    T* seen_ = &value_;
    [[no_unique_address]] std::conditional_t<is_in_out<P>, T, nothing> before_{};
    abi::VARIANT* reference_ = nullptr;
};

template <auto M, class S = std::remove_cv_t<decltype(M)>>
struct late_thunk;

template <auto M, class I, class R, class... P>
struct late_thunk<M, R (I::*)(P...)> {
    static Variant invoke(void* target, LateArguments& arguments) {
        return [&]<std::size_t... i>(std::index_sequence<i...>)->Variant {
            std::tuple<late_argument<P, i>...> held{((void)i, arguments)...};
            arguments.converting = -1;
            I& self = *static_cast<I*>(target);
            if constexpr (std::is_void_v<R>) {
                (self.*M)(pass<P>(std::get<i>(held).value())...);
                return {};
            } else {
                return to_late((self.*M)(pass<P>(std::get<i>(held).value())...));
            }
        }
        (std::index_sequence_for<P...>{});
    }
};
template <auto M, class I, class R, class... P>
struct late_thunk<M, R (I::*)(P...) const> : late_thunk<M, R (I::*)(P...)> {};

template <class R>
inline constexpr bool answers_object = crossing<natural<R>>::answers_object;
template <>
inline constexpr bool answers_object<void> = false;

template <class I>
const InterfaceInfo& callee<I>::info() {
    static const InterfaceInfo all = [] {
        InterfaceInfo made;
        made.iid = &table_of<I>.iid;
        made.is_dual = table_of<I>.dispatch;
        if (!made.is_dual) return made;
        table_of<I>.for_each([&]<auto M>(std::size_t index) {
            if constexpr (!std::is_null_pointer_v<std::remove_cv_t<decltype(M)>>)
                made.add(table_of<I>.rows[index], &late_thunk<M>::invoke,
                         answers_object<typename signature_of<M>::result>);
        });
        made.finish();
        return made;
    }();
    return all;
}

// IDispatch's own four slots.
abi::HRESULT get_type_info_count(Face* face, std::uint32_t* count) noexcept;
abi::HRESULT get_type_info(Face* face, std::uint32_t index, abi::LCID locale,
                           abi::IUnknown** out) noexcept;
abi::HRESULT get_ids_of_names(Face* face, const abi::IID* reserved, const char16_t** names,
                              std::uint32_t count, abi::LCID locale, abi::DISPID* ids) noexcept;
abi::HRESULT invoke(Face* face, abi::DISPID id, const abi::IID* reserved, abi::LCID locale,
                    std::uint16_t flags, abi::DISPPARAMS* arguments, abi::VARIANT* result,
                    abi::EXCEPINFO* failure, std::uint32_t* bad_argument) noexcept;

}  // namespace orvo::detail
