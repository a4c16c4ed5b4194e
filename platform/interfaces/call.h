#pragma once

// The caller's side: calls a method of an object that somebody else made, through its slot, with
// the natural types of the contract.
//
//   call<&DirectoryEntry::Bind>(entry, server, container, name, user, password, attributes);
//
// Called on the object's own thread. Arguments stay the caller's; the result is the caller's own.
// The call holds a reference of its own to the object, so that the one it was made through, a
// field perhaps, may change meanwhile.
//
// Raises 91 (object not set) on an empty reference, and what the callee raised: its number, source,
// description and help as the error object carries them.

#include "platform/interfaces/border.h"
#include "platform/interfaces/crossing.h"

namespace orvo {
namespace detail {

// One argument on its way out; what an in-out argument brought back is in place afterwards.
template <class P>
class outgoing {
    using C = crossing<natural<P>>;

public:
    explicit outgoing(const natural<P>& value) : raw_(C::lend(value)) {}
    ~outgoing() { C::drop(raw_); }
    outgoing(const outgoing&) = delete;
    outgoing& operator=(const outgoing&) = delete;

    raw_argument<P> pass() { return raw_; }

private:
    typename C::raw raw_;
};

template <class P>
requires is_in_out<P>
class outgoing<P> {
public:
    explicit outgoing(natural<P>& value) : variable_(value) {}

    raw_argument<P> pass() { return variable_.pass(); }

private:
    typename crossing<natural<P>>::variable variable_;
};

template <auto M, class S = std::remove_cv_t<decltype(M)>>
struct caller;

template <auto M, class I, class R, class... P>
struct caller<M, R (I::*)(P...)> {
    static R call(Ref<I> target, P... arguments) {
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
