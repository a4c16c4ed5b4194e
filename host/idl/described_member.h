#pragma once

// Interface tables as lists of members with everything that a page tells of them.

#include <string>
#include <vector>

#include "platform/interfaces/hosted.h"

namespace orvo {

struct DescribedParameter {
    std::string name;
    std::string idl;  // its type
    bool is_in_out;
    bool may_be_missing;
    int otherwise;  // of a number that is left out
};

// A method, or a property with what reads and writes it.
struct DescribedMember {
    std::string name;
    std::string help;
    std::size_t slot;
    bool is_property = false;
    bool can_be_read = false;
    bool can_be_written = false;
    bool is_default = false;
    std::vector<DescribedParameter> parameters = {};  // of a property: its indices
    std::string idl = {};  // the type of the property or of what a method answers; empty for none
};

namespace detail {

template <auto M>
DescribedMember described_row(const RowData& row, std::size_t slot) {
    using S = signature_of<M>;
    DescribedMember member{row.name, row.help, slot};
    std::size_t index = 0;
    const auto add = [&]<class P>(std::type_identity<P>) {
        const Parameter& named = row.parameters[index++];
        member.parameters.push_back({named.name, crossing<natural<P>>::idl(), is_in_out<P>,
                                     named.may_be_missing, named.otherwise});
    };
    [&]<class... P>(std::type_identity<std::tuple<P...>>) {
        (add(std::type_identity<P>{}), ...);
    }(std::type_identity<typename S::parameters>{});
    if constexpr (!std::is_void_v<typename S::result>)
        member.idl = crossing<natural<typename S::result>>::idl();
    member.is_default = row.dispid == abi::DISPID_VALUE;
    member.can_be_read = row.shape == Shape::get;
    member.can_be_written = row.shape == Shape::put || row.shape == Shape::put_reference;
    member.is_property = member.can_be_read || member.can_be_written;
    if (member.can_be_written) {
        member.idl = member.parameters.back().idl;
        member.parameters.pop_back();
    }
    return member;
}

}  // namespace detail

// The members of interface I in the order of their slots, each name once.
template <class I>
std::vector<DescribedMember> described_members() {
    std::vector<DescribedMember> members;
    table_of<I>.for_each([&]<auto M>(std::size_t index) {
        if constexpr (!std::is_null_pointer_v<std::remove_cv_t<decltype(M)>>) {
            DescribedMember member =
                detail::described_row<M>(table_of<I>.rows[index], table_of<I>.slots[index]);
            if (!members.empty() && members.back().name == member.name) {
                members.back().can_be_read |= member.can_be_read;
                members.back().can_be_written |= member.can_be_written;
            } else {
                members.push_back(std::move(member));
            }
        }
    });
    return members;
}

}  // namespace orvo
