#pragma once

// One table per interface: its members in slot order. The table is written once; vtables, late
// binding, caller side and IDL text are read from it.
//
//   template <> inline constexpr auto table_of<Log> = describe<Log>(
//       "IQuendraLog", "0621d2f8-6009-4f66-a855-2f8d3a15d601",
//       reserved(1, 4),
//       method<&Log::LogMessage>("LogMessage", "source", "message", "level"), …);
//
// Direction and type of each argument come from the C++ signature: `Text&` is in-out, `Text` and
// `const Text&` are in, the result is the return value. A row names the parameters, once each.

#include <array>
#include <cstddef>
#include <tuple>
#include <type_traits>

#include "platform/abi/guid.h"

namespace orvo {

enum class Shape : unsigned char {
    method,
    get,
    put,
    put_reference,
    // Returns its value itself instead of a result code (a few of the platform's own interfaces).
    bare,
};

struct Parameter {
    const char* name;
    bool may_be_missing = false;
    constexpr Parameter(const char* name) : name(name) {}
    constexpr Parameter(const char* name, bool optional) : name(name), may_be_missing(optional) {}
};

// A parameter that callers may leave out; the method then receives a missing variant, or the empty
// value of any other type.
constexpr Parameter optional(const char* name) { return {name, true}; }

namespace detail {

template <class M>
struct signature;
template <class C, class R, class... P>
struct signature<R (C::*)(P...)> {
    using owner = C;
    using result = R;
    using parameters = std::tuple<P...>;
    static constexpr std::size_t arity = sizeof...(P);
};
template <class C, class R, class... P>
struct signature<R (C::*)(P...) const> : signature<R (C::*)(P...)> {};

template <auto M>
using signature_of = signature<std::remove_cv_t<decltype(M)>>;

inline constexpr abi::DISPID automatic_id = -1000000;

}  // namespace detail

template <auto M>
struct Row {
    static constexpr auto member = M;
    static constexpr std::size_t arity = detail::signature_of<M>::arity;

    Shape shape;
    const char* name;
    std::array<Parameter, arity> parameters;
    abi::DISPID dispid = detail::automatic_id;
    bool is_hidden = false;

    // The number by which late-bound callers know the member, where outsiders rely on it.
    constexpr Row id(abi::DISPID number) const {
        Row row = *this;
        row.dispid = number;
        return row;
    }
    // What a caller gets who names no member.
    constexpr Row as_default() const { return id(abi::DISPID_VALUE); }
    constexpr Row hidden() const {
        Row row = *this;
        row.is_hidden = true;
        return row;
    }
};

// Slots `first` to `last`, counted among the interface's own operations from 1, that nobody calls.
struct Reserved {
    int first;
    int last;
};
constexpr Reserved reserved(int first, int last) { return {first, last}; }
constexpr Reserved reserved(int only) { return {only, only}; }

namespace detail {
template <auto M, class... Names>
constexpr Row<M> make_row(Shape shape, const char* name, Names... names) {
    static_assert(sizeof...(Names) == signature_of<M>::arity,
                  "name every parameter of the method, once");
    return Row<M>{shape, name, {Parameter(names)...}};
}
}  // namespace detail

template <auto M, class... Names>
constexpr auto method(const char* name, Names... names) {
    return detail::make_row<M>(Shape::method, name, names...);
}
template <auto M, class... Names>
constexpr auto get(const char* name, Names... names) {
    return detail::make_row<M>(Shape::get, name, names...);
}
// The last parameter is the new value; the ones before it are indices.
template <auto M, class... Names>
constexpr auto put(const char* name, Names... names) {
    return detail::make_row<M>(Shape::put, name, names...);
}
template <auto M, class... Names>
constexpr auto put_reference(const char* name, Names... names) {
    return detail::make_row<M>(Shape::put_reference, name, names...);
}
template <auto M, class... Names>
constexpr auto bare(const char* name, Names... names) {
    return detail::make_row<M>(Shape::bare, name, names...);
}

template <class I, class... Rows>
struct Table {
    using interface_type = I;
    static constexpr std::size_t size = sizeof...(Rows);

    const char* name;
    abi::IID iid;
    bool dispatch;  // whether IDispatch's four slots stand before the own ones
    std::tuple<Rows...> rows;
    std::array<std::size_t, sizeof...(Rows)> slots;  // of each row's first slot
    std::size_t slot_count;
};

// The table of interface I; every interface specialises it.
template <class I>
inline constexpr auto table_of = nullptr;

namespace detail {

template <class T>
struct is_row : std::false_type {};
template <auto M>
struct is_row<Row<M>> : std::true_type {};

// A group of rows made elsewhere (a tuple) may stand among the rows.
template <class T>
constexpr auto as_rows(const T& item) {
    if constexpr (is_row<T>::value || std::is_same_v<T, Reserved>)
        return std::tuple<T>(item);
    else
        return item;
}

template <class I, class... Rows>
consteval auto make_table(const char* name, abi::IID iid, bool dispatch,
                          const std::tuple<Rows...>& rows) {
    Table<I, Rows...> table{name, iid, dispatch, rows, {}, 0};
    const std::size_t first = dispatch ? 7 : 3;
    std::size_t next = first;
    std::size_t index = 0;
    auto place = [&](const auto& row) {
        table.slots[index++] = next;
        if constexpr (std::is_same_v<std::remove_cvref_t<decltype(row)>, Reserved>) {
            if (row.last < row.first || first + static_cast<std::size_t>(row.first) - 1 != next)
                throw "reserved slots stand at another place than their numbers say";
            next = first + static_cast<std::size_t>(row.last);
        } else {
            ++next;
        }
    };
    std::apply([&](const auto&... row) { (place(row), ...); }, rows);
    table.slot_count = next;
    return table;
}

}  // namespace detail

// An interface that can be called by slot and late bound (dual).
template <class I, class... Items>
consteval auto describe(const char* name, std::string_view iid, Items... items) {
    return detail::make_table<I>(name, guid(iid), true, std::tuple_cat(detail::as_rows(items)...));
}
// An interface that can be called by slot only.
template <class I, class... Items>
consteval auto describe_unknown(const char* name, std::string_view iid, Items... items) {
    return detail::make_table<I>(name, guid(iid), false, std::tuple_cat(detail::as_rows(items)...));
}

template <class I>
const abi::IID& iid_of() {
    return table_of<I>.iid;
}

namespace detail {

template <auto M>
struct member_tag {};

template <auto M, class RowType>
consteval bool is_member() {
    if constexpr (is_row<RowType>::value)
        return std::is_same_v<member_tag<M>, member_tag<RowType::member>>;
    else
        return false;
}

template <auto M>
struct place_of {
    using owner = typename signature_of<M>::owner;

    template <class... Rows>
    static consteval std::size_t find(const std::tuple<Rows...>*) {
        std::size_t index = 0;
        const bool found = ((is_member<M, Rows>() || (++index, false)) || ...);
        if (!found) throw "the interface's table has no row for this member";
        return index;
    }
    static constexpr std::size_t index =
        find(static_cast<const std::remove_cvref_t<decltype(table_of<owner>.rows)>*>(nullptr));
    static constexpr std::size_t slot = table_of<owner>.slots[index];
    static constexpr const auto& row() { return std::get<index>(table_of<owner>.rows); }
};

}  // namespace detail

// The slot of a member in its interface, counted from 0 (the three of IUnknown included).
template <auto M>
inline constexpr std::size_t slot_of = detail::place_of<M>::slot;

}  // namespace orvo
