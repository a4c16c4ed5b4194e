#pragma once

// The caller's side: calls a method of an object that somebody else made, through its slot, with
// the natural types of the contract.
//
//   call<&DirectoryEntry::Bind>(entry, server, container, name, user, password, attributes);
//
// Raises 91 (object not set) on an empty reference, and what the callee raised: its number, source,
// description and help as the error object carries them.

#include "platform/interfaces/border.h"
#include "platform/interfaces/crossing.h"

namespace orvo {
namespace detail {

// One argument on its way out; what an in-out argument brought back is in place afterwards. An
// in-out variant is lent where it stands, so that one variable may be passed for two arguments.
template <class P>
class outgoing {
    using T = natural<P>;
    using C = crossing<T>;

public:
    explicit outgoing(const T& value) requires(!is_in_out<P>) {
        if constexpr (std::is_same_v<T, Text>)
            raw_ = C::give(value);
        else if constexpr (std::is_same_v<T, Variant>)
            raw_ = *value.get();
        else if constexpr (requires { value.get(); })
            raw_ = value.get();
        else
            raw_ = C::give(value);
    }
    explicit outgoing(T& value) requires(is_in_out<P>) : value_(&value) {
        if constexpr (std::is_same_v<T, Text>)
            raw_ = C::give(value);
        else if constexpr (!std::is_same_v<T, Variant>)
            raw_ = C::give(std::move(value));
    }
    ~outgoing() {
        if constexpr (!is_in_out<P>) {
            if constexpr (requires { C::drop(raw_); }) C::drop(raw_);
        } else if constexpr (std::is_same_v<T, Text>) {
            if (C::view(raw_) != *value_) *value_ = C::view(raw_);
            abi::SysFreeString(raw_);
        } else if constexpr (std::is_same_v<T, Variant>) {
            // A callee has no business leaving a by-reference value: what that refers to is taken.
            abi::VARIANT& left = *value_->lend();
            if (!(left.vt & abi::VT_BYREF)) return;
            const abi::VARIANT reference = std::exchange(left, {});
            abi::VariantCopyInd(&left, &reference);
        } else {
            *value_ = C::take(raw_);
        }
    }
    outgoing(const outgoing&) = delete;
    outgoing& operator=(const outgoing&) = delete;

    raw_argument<P> pass() {
        if constexpr (is_in_out<P> && std::is_same_v<T, Variant>)
            return value_->lend();
        else if constexpr (is_in_out<P>)
            return &raw_;
        else
            return raw_;
    }

private:
    typename C::raw raw_ = C::none;
    T* value_ = nullptr;
};

template <auto M, class S = std::remove_cv_t<decltype(M)>>
struct caller;

template <auto M, class I, class R, class... P>
struct caller<M, R (I::*)(P...)> {
    static R call(const Ref<I>& target, P... arguments) {
        if (!target) raise_runtime_error(runtime_error::object_not_set);
        return std::apply(
            [&](auto&&... argument) -> R {
                if constexpr (place_of<M>::row().shape == Shape::bare) {
                    return bare_call(target, argument.pass()...);
                } else if constexpr (std::is_void_v<R>) {
                    check(target, abi::call_slot<abi::HRESULT, raw_argument<P>...>(
                                      target.get(), slot_of<M>, argument.pass()...));
                } else {
                    typename crossing<natural<R>>::raw result = crossing<natural<R>>::none;
                    check(target,
                          abi::call_slot<abi::HRESULT, raw_argument<P>..., decltype(result)*>(
                              target.get(), slot_of<M>, argument.pass()..., &result));
                    return crossing<natural<R>>::take(result);
                }
            },
            std::tuple<outgoing<P>...>(arguments...));
    }

private:
    static void check(const Ref<I>& target, abi::HRESULT code) {
        if (abi::failed(code)) raise_call_failure(code, target.get(), table_of<I>.iid);
    }
    static R bare_call(const Ref<I>& target, raw_argument<P>... raw) {
        if constexpr (std::is_void_v<R>)
            abi::call_slot<void, raw_argument<P>...>(target.get(), slot_of<M>, raw...);
        else  // a BOOL, the only value that bare members return
            return abi::call_slot<std::int32_t, raw_argument<P>...>(target.get(), slot_of<M>,
                                                                    raw...) != 0;
    }
};
template <auto M, class I, class R, class... P>
struct caller<M, R (I::*)(P...) const> : caller<M, R (I::*)(P...)> {};

}  // namespace detail

template <auto M>
inline constexpr auto call = &detail::caller<M>::call;

}  // namespace orvo
