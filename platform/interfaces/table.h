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
//
// Tables are constants: any thread reads them, and a mistake in one does not compile.

#include <array>
#include <cstddef>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "platform/values/guid.h"

namespace orvo {

enum class Shape : unsigned char {
    method,
    get,
    put,
    put_reference,
    // Returns its value itself instead of a result code (a few of the platform's own interfaces).
    bare,
    // Slots that nobody calls.
    reserved,
};

struct Parameter {
    const char* name = "";
    bool may_be_missing = false;
    int otherwise = 0;
    constexpr Parameter() = default;
    constexpr Parameter(const char* name) : name(name) {}
    constexpr Parameter(const char* name, int otherwise)
        : name(name), may_be_missing(true), otherwise(otherwise) {}
};

// A parameter that callers may leave out; the method then receives a missing variant, the number
// `otherwise`, or the empty value of any other type.
constexpr Parameter optional(const char* name, int otherwise = 0) { return {name, otherwise}; }

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
inline constexpr std::size_t most_parameters = 8;

}  // namespace detail

// What a row says, apart from the member itself.
struct RowData {
    Shape shape = Shape::reserved;
    const char* name = "";
    std::array<Parameter, detail::most_parameters> parameters = {};
    std::size_t arity = 0;
    abi::DISPID dispid = detail::automatic_id;
    bool is_hidden = false;
    // What an object browser says of the member.
    const char* help = "";
    // Of reserved slots: their numbers among the interface's own operations, counted from 1.
    int first_reserved = 0;
    int last_reserved = 0;
};

// One row: the member pointer is part of its type. M is nullptr for reserved slots.
template <auto M>
struct Row {
    RowData data;

    // The number by which late-bound callers know the member, where outsiders rely on it.
    constexpr Row id(abi::DISPID number) const {
        Row row = *this;
        row.data.dispid = number;
        return row;
    }
    // What a caller gets who names no member.
    constexpr Row as_default() const { return id(abi::DISPID_VALUE); }
    constexpr Row hidden() const {
        Row row = *this;
        row.data.is_hidden = true;
        return row;
    }
    // One sentence for people; a setter that follows its getter has the getter's.
    constexpr Row help(const char* text) const {
        Row row = *this;
        row.data.help = text;
        return row;
    }
};

// Rows that are made together, to stand among others.
template <auto... M>
struct RowGroup {
    std::array<RowData, sizeof...(M)> data;
};
template <auto... M>
constexpr RowGroup<M...> group(const Row<M>&... rows) {
    return {{rows.data...}};
}

// What an object browser says of the whole interface: one sentence, in front of the rows.
struct About {
    const char* text;
};
constexpr About about(const char* text) { return {text}; }

// Slots `first` to `last`, counted among the interface's own operations from 1, that nobody calls.
constexpr Row<nullptr> reserved(int first, int last) {
    Row<nullptr> row;
    row.data.first_reserved = first;
    row.data.last_reserved = last;
    return row;
}
constexpr Row<nullptr> reserved(int only) { return reserved(only, only); }

namespace detail {
template <auto M, class... Names>
constexpr Row<M> make_row(Shape shape, const char* name, Names... names) {
    static_assert(sizeof...(Names) == signature_of<M>::arity,
                  "name every parameter of the method, once");
    static_assert(sizeof...(Names) <= most_parameters);
    return Row<M>{RowData{.shape = shape,
                          .name = name,
                          .parameters = {Parameter(names)...},
                          .arity = sizeof...(Names)}};
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

template <class I, auto... M>
struct Table {
    const char* name;
    abi::IID iid;
    bool dispatch;  // whether IDispatch's four slots stand before the own ones
    std::array<RowData, sizeof...(M)> rows;
    std::array<std::size_t, sizeof...(M)> slots;  // of each row's first slot
    std::size_t slot_count;
    const char* about;

    // Calls visit.operator()<member>(index) for each row, in order.
    template <class Visit>
    static constexpr void for_each(Visit&& visit) {
        std::size_t index = 0;
        ((visit.template operator()<M>(index), ++index), ...);
    }
};

// The table of interface I; every interface specialises it.
template <class I>
inline constexpr auto table_of = nullptr;

namespace detail {

template <auto... M>
struct members {};
template <auto... A, auto... B>
members<A..., B...> operator+(members<A...>, members<B...>);
template <auto M>
members<M> members_in(const Row<M>&);
template <auto... M>
members<M...> members_in(const RowGroup<M...>&);
members<> members_in(const About&);

template <class I, auto... M, class... Items>
consteval auto make_table(const char* name, abi::IID iid, bool dispatch, members<M...>,
                          const Items&... items) {
    Table<I, M...> table{name, iid, dispatch, {}, {}, 0, ""};
    std::size_t index = 0;
    [[maybe_unused]] auto copy = [&](const auto& item) {
        if constexpr (requires { item.text; })
            table.about = item.text;
        else if constexpr (requires { item.data.shape; })
            table.rows[index++] = item.data;
        else
            for (const RowData& row : item.data) table.rows[index++] = row;
    };
    (copy(items), ...);
    for (std::size_t i = 1; i < table.rows.size(); ++i)
        if (*table.rows[i].help == '\0' &&
            std::string_view(table.rows[i].name) == table.rows[i - 1].name)
            table.rows[i].help = table.rows[i - 1].help;

    const std::size_t first = dispatch ? 7 : 3;
    std::size_t next = first;
    for (std::size_t i = 0; i < table.rows.size(); ++i) {
        const RowData& row = table.rows[i];
        table.slots[i] = next;
        if (row.shape != Shape::reserved) {
            ++next;
            continue;
        }
        if (row.last_reserved < row.first_reserved ||
            first + static_cast<std::size_t>(row.first_reserved) - 1 != next)
            throw "reserved slots stand at another place than their numbers say";
        next = first + static_cast<std::size_t>(row.last_reserved);
    }
    table.slot_count = next;
    return table;
}

}  // namespace detail

// An interface that can be called by slot and late bound (dual).
template <class I, class... Items>
consteval auto describe(const char* name, std::string_view iid, const Items&... items) {
    return detail::make_table<I>(
        name, guid(iid), true, decltype((detail::members<>{} + ... + detail::members_in(items))){},
        items...);
}
// An interface that can be called by slot only.
template <class I, class... Items>
consteval auto describe_unknown(const char* name, std::string_view iid, const Items&... items) {
    return detail::make_table<I>(
        name, guid(iid), false, decltype((detail::members<>{} + ... + detail::members_in(items))){},
        items...);
}

template <class I>
const abi::IID& iid_of() {
    return table_of<I>.iid;
}

namespace detail {

struct InterfaceInfo;

// What the callee's side reads from the table of I: functions for each row, which take a compiler
// long to make. A class with a table of its own has them made once, in one of its sources:
//
//   extern template struct detail::callee<Log>;  // in the header, below the table
//   template struct detail::callee<Log>;         // in the source
template <class I>
struct callee {
    static const abi::Slot* slots();     // the vtable; thunk.h
    static const InterfaceInfo& info();  // the members by name; dispatch.h
};

template <auto A, auto B>
inline constexpr bool same_member = false;
template <auto A>
inline constexpr bool same_member<A, A> = true;

template <auto M>
struct place_of {
    using owner = typename signature_of<M>::owner;

    template <auto... All>
    static consteval std::size_t find(const Table<owner, All...>&) {
        std::size_t index = 0;
        const bool found = ((same_member<M, All> || (++index, false)) || ...);
        if (!found) throw "the interface's table has no row for this member";
        return index;
    }
    static constexpr std::size_t index = find(table_of<owner>);
    static constexpr std::size_t slot = table_of<owner>.slots[index];
    static constexpr const RowData& row() { return table_of<owner>.rows[index]; }
};

}  // namespace detail

// The slot of a member in its interface, counted from 0 (the three of IUnknown included).
template <auto M>
inline constexpr std::size_t slot_of = detail::place_of<M>::slot;

}  // namespace orvo
