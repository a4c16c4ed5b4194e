#pragma once

#include <optional>
#include <string>

#include "component/provider/directory_contract.h"
#include "platform/interfaces/hosted.h"
#include "suite/directory/embedded/directory/login.h"
#include "suite/directory/entries/failure_note.h"

namespace orvo {
namespace directory::embedded {

// A search below one container of a directory in a file. Used by one thread.
class EmbeddedSearch final : public DirectorySearch {
public:
    // Authenticates, as a Bind of an entry does; the container itself is not looked at before the
    // first search. After any failure the object is unconnected.
    void Connect(Text& server, Text& container, Text& user, Secret& password) override;

    // The container's own entry and all below it that match, as a read-only record set, on its
    // first row. The filter is read as Filter::parse says; what of it goes by the order of lists,
    // split_by_order. Columns are named and ordered as `attributes`, an array of names or a single
    // name; see RowDecoder for what is in them. An attribute that the directory does not know, or
    // this user may not see, is a column of Empty.
    //
    // Rows are ordered by the naming attribute (order_key), and of more matching entries than
    // `maximum` those are returned that come first in this order. A maximum of 0 is no limit;
    // neither is a negative one.
    //
    // Raises 91 before Connect, 0x8007203E for a filter that cannot be read, 0x8007203F for names
    // that cannot be columns (column_names), 0x80072030 for a container that is not there.
    Object Execute(Text& filter, Variant& attributes, std::int32_t maximum) override;

    void failed(const char* operation, const Failure& failure) const noexcept {
        note_failure(operation, base_, failure);
    }

private:
    std::optional<Login> login_;  // set while connected
    std::string base_;
};

}  // namespace directory::embedded

template <>
inline constexpr auto class_of<directory::embedded::EmbeddedSearch> =
    describe_class<DirectorySearch>("OrvoDirectory.Embedded");

}  // namespace orvo
