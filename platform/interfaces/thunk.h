#pragma once

// The callee's side: vtables made from an interface's table. Every thunk has the same four steps:
// clear the out-slot, enter, call, turn any exception into a result code. A call from a thread to
// which the object does not belong is refused at the second. In-arguments stay the caller's,
// results become the caller's.

#include "platform/interfaces/border.h"
#include "platform/interfaces/crossing.h"
#include "platform/interfaces/face.h"
#include "platform/interfaces/standard_slots.h"

namespace orvo::detail {

// One argument that came in by slot; what the method did to an in-out argument is in the caller's
// slot afterwards, also when the method failed.
template <class P>
class incoming {
    using T = natural<P>;
    using C = crossing<T>;

public:
    explicit incoming(const typename C::raw& value) : value_(C::copy(value)) {}
    incoming(const incoming&) = delete;
    incoming& operator=(const incoming&) = delete;

    bool is_left_out() const { return false; }
    void leave_out(const Parameter&) {}
    T& value() { return value_; }

private:
    T value_;
};

template <class P>
requires is_in_out<P>
class incoming<P> {
    using T = natural<P>;
    using C = crossing<T>;

public:
    explicit incoming(typename C::raw* slot) {
        if (slot != nullptr) slot_.emplace(*slot);
    }
    incoming(const incoming&) = delete;
    incoming& operator=(const incoming&) = delete;

    bool is_left_out() const { return !slot_; }
    void leave_out(const Parameter& parameter) {
        if (!parameter.may_be_missing) raise_null_pointer(parameter.name);
        left_out_.emplace(C::left_out(parameter.otherwise));
    }
    T& value() { return slot_ ? slot_->value() : *left_out_; }

private:
    std::optional<typename C::slot> slot_;
    std::optional<T> left_out_;
};

// The function in the slot of one row; `row` counts in the table of I.
template <auto M, std::size_t row, class S = std::remove_cv_t<decltype(M)>>
struct vtable_thunk;

template <auto M, std::size_t row, class I, class R, class... P>
struct vtable_thunk<M, row, R (I::*)(P...)> {
    static constexpr bool is_bare = table_of<I>.rows[row].shape == Shape::bare;
    static constexpr bool has_result = !std::is_void_v<R> && !is_bare;
    static constexpr const char* name = table_of<I>.rows[row].name;

    static R run(I& target, raw_argument<P>... raw) {
        std::tuple<incoming<P>...> held{raw...};
        return [&]<std::size_t... i>(std::index_sequence<i...>)->R {
            (fill_in<i>(std::get<i>(held)), ...);
            return (target.*M)(pass<P>(std::get<i>(held).value())...);
        }
        (std::index_sequence_for<P...>{});
    }

    template <std::size_t i, class Held>
    static void fill_in(Held& held) {
        if (held.is_left_out()) held.leave_out(table_of<I>.rows[row].parameters[i]);
    }

    static abi::HRESULT without_result(Face* face, raw_argument<P>... raw) noexcept {
        if (!face->core->is_called_at_home()) return answered(abi::rpc_e_wrong_thread);
        try {
            run(*static_cast<I*>(face->target), raw...);
            return answered(abi::s_ok);
        } catch (...) {
            return report_current_exception(table_of<I>.iid, *face->core, name);
        }
    }

    template <class Raw>
    static abi::HRESULT with_result(Face* face, raw_argument<P>... raw, Raw* result) noexcept {
        if (result == nullptr) return answered(abi::e_pointer);
        *result = crossing<natural<R>>::none;
        if (!face->core->is_called_at_home()) return answered(abi::rpc_e_wrong_thread);
        try {
            *result = crossing<natural<R>>::give(run(*static_cast<I*>(face->target), raw...));
            return answered(abi::s_ok);
        } catch (...) {
            return report_current_exception(table_of<I>.iid, *face->core, name);
        }
    }

    // A bare member has no way to report a failure; its classes promise not to raise.
    static auto bare(Face* face, raw_argument<P>... raw) noexcept {
        I& target = *static_cast<I*>(face->target);
        if constexpr (std::is_void_v<R>)
            run(target, raw...);
        else
            return static_cast<std::int32_t>(run(target, raw...));
    }

    static abi::Slot slot() {
        if constexpr (is_bare)
            return reinterpret_cast<abi::Slot>(&bare);
        else if constexpr (has_result)
            return reinterpret_cast<abi::Slot>(&with_result<typename crossing<natural<R>>::raw>);
        else
            return reinterpret_cast<abi::Slot>(&without_result);
    }
};
template <auto M, std::size_t row, class I, class R, class... P>
struct vtable_thunk<M, row, R (I::*)(P...) const> : vtable_thunk<M, row, R (I::*)(P...)> {};

template <class I, auto... M, std::size_t... row>
void put_own_slots(abi::Slot* slots, const Table<I, M...>& table, std::index_sequence<row...>) {
    [[maybe_unused]] auto put = [&]<auto member, std::size_t index>() {
        if constexpr (!std::is_null_pointer_v<std::remove_cv_t<decltype(member)>>)
            slots[table.slots[index]] = vtable_thunk<member, index>::slot();
    };
    (put.template operator()<M, row>(), ...);
}

// The vtable of interface I, for objects whose faces point to an I.
template <class I>
const abi::Slot* callee<I>::slots() {
    static const auto all_slots = [] {
        std::array<abi::Slot, table_of<I>.slot_count> all;
        all.fill(reinterpret_cast<abi::Slot>(&reserved_slot));
        put_standard_slots(all.data(), table_of<I>.dispatch);
        put_own_slots(all.data(), table_of<I>, std::make_index_sequence<table_of<I>.rows.size()>());
        return all;
    }();
    return all_slots.data();
}

}  // namespace orvo::detail
