#pragma once

// The callee's side: vtables made from an interface's table. Every thunk has the same four steps:
// clear the out-slot, enter, call, turn any exception into a result code.

#include "platform/interfaces/border.h"
#include "platform/interfaces/by_reference.h"
#include "platform/interfaces/crossing.h"
#include "platform/interfaces/face.h"
#include "platform/interfaces/standard_slots.h"

namespace orvo::detail {

// One argument that came in by slot; what the method did to an in-out argument is in the caller's
// slot afterwards, also when the method failed. A caller may pass one variable for two arguments:
// a variant is therefore used where it stands, and a text is written back only when it changed.
template <class P>
class incoming {
    using T = natural<P>;
    using C = crossing<T>;

public:
    explicit incoming(typename C::raw value) requires(!is_in_out<P> && !std::is_same_v<T, Variant>)
        : value_(C::copy(value)) {}
    explicit incoming(const abi::VARIANT& value) requires(!is_in_out<P> &&
                                                          std::is_same_v<T, Variant>)
        : value_(C::copy(value)) {}
    explicit incoming(typename C::raw* slot) requires(is_in_out<P>) : slot_(slot) {
        if (slot == nullptr) return;
        if constexpr (std::is_same_v<T, Text>) {
            value_ = C::copy(*slot);
            before_ = *slot;
        } else if constexpr (std::is_same_v<T, Variant>) {
            if (slot->vt & abi::VT_BYREF)
                before_ = value_ = C::copy(*slot);
            else
                seen_ = in_place(*slot);
        } else {
            value_ = C::take(*slot);
        }
    }
    ~incoming() {
        if constexpr (is_in_out<P>) {
            if (slot_ == nullptr) return;
            if constexpr (std::is_same_v<T, Text>) {
                // A slot with another text in it was written as the slot of another argument.
                if (*slot_ != before_ || C::view(*slot_) == value_) return;
                *slot_ = C::give(value_);
                abi::SysFreeString(before_);
            } else if constexpr (std::is_same_v<T, Variant>) {
                if (seen_ == &value_ && !(value_ == before_))
                    store_through_reference(*slot_, value_);
            } else {
                *slot_ = C::give(std::move(value_));
            }
        }
    }
    incoming(const incoming&) = delete;
    incoming& operator=(const incoming&) = delete;

    bool is_null_slot() const {
        if constexpr (is_in_out<P>)
            return slot_ == nullptr;
        else
            return false;
    }
    void set_missing() {
        if constexpr (std::is_same_v<T, Variant>) value_ = Variant::missing();
    }
    T& value() { return *seen_; }

private:
    struct nothing {};
    using Before = std::conditional_t<
        !is_in_out<P>, nothing,
        std::conditional_t<std::is_same_v<T, Text>, abi::BSTR,
                           std::conditional_t<std::is_same_v<T, Variant>, Variant, nothing>>>;
    T value_{};
    T* seen_ = &value_;
    [[no_unique_address]] Before before_{};
    typename C::raw* slot_ = nullptr;
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
            (check_slot<i>(std::get<i>(held)), ...);
            return (target.*M)(pass<P>(std::get<i>(held).value())...);
        }
        (std::index_sequence_for<P...>{});
    }

    template <std::size_t i, class Held>
    static void check_slot(Held& held) {
        if (!held.is_null_slot()) return;
        constexpr const Parameter& parameter = table_of<I>.rows[row].parameters[i];
        if (!parameter.may_be_missing) raise_null_pointer(parameter.name);
        held.set_missing();
    }

    static abi::HRESULT without_result(Face* face, raw_argument<P>... raw) noexcept {
        if (!face->core->is_called_at_home()) return refused(abi::rpc_e_wrong_thread);
        try {
            run(*static_cast<I*>(face->target), raw...);
            return abi::s_ok;
        } catch (...) {
            return report_current_exception(table_of<I>.iid, *face->core, name);
        }
    }

    template <class Raw>
    static abi::HRESULT with_result(Face* face, raw_argument<P>... raw, Raw* result) noexcept {
        if (result == nullptr) return refused(abi::e_pointer);
        *result = crossing<natural<R>>::none;
        if (!face->core->is_called_at_home()) return refused(abi::rpc_e_wrong_thread);
        try {
            *result = crossing<natural<R>>::give(run(*static_cast<I*>(face->target), raw...));
            return abi::s_ok;
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
