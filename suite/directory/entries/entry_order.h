#pragma once

// The order of a search's rows.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/values/variant.h"
#include "suite/directory/entries/entry_data.h"

namespace orvo::directory {

// The attribute at the front of an entry's own relative name, which is a part of `name`, and its
// value without the escapes. `name` is a distinguished name as servers write them.
struct NamingPart {
    std::string_view attribute;
    std::string value;
};
NamingPart naming_part(std::string_view name);

// What entries are ordered by: the value of the naming part, in the order of lists (listing_key).
std::string order_key(std::string_view name);

// Of the entries added, keeps the rows of those that come first: ordered by order_key, and by the
// whole name among equals. No more are ever held than are wanted.
class FirstRows {
public:
    using Row = std::vector<Variant>;
    using Decode = std::function<Row(const EntryData&)>;
    static constexpr std::size_t all = static_cast<std::size_t>(-1);

    // `decode` makes the row of an entry as soon as it is kept, so while the server still sends,
    // though an entry that comes later may push it out again.
    FirstRows(std::size_t wanted, Decode decode) : wanted_(wanted), decode_(std::move(decode)) {}

    // Whether an entry of this name would be kept.
    bool wants(const std::string& name) const;
    void add(EntryData&& entry);
    void clear() { kept_.clear(); }
    std::size_t size() const { return kept_.size(); }

    // Hands the rows over in their order; none are left.
    template <class Take>
    void take_each(Take take) {
        for (const Place& place : in_order()) take(std::move(place.kept->row));
        kept_.clear();
    }

private:
    struct Kept {
        std::string key;
        std::string name;
        Row row;

        bool operator<(const Kept& other) const;
    };
    struct Place {
        std::uint64_t first_octets;  // of the key
        Kept* kept;
    };

    std::vector<Place> in_order();

    std::size_t wanted_;
    Decode decode_;
    std::vector<Kept> kept_;  // once full, a heap with the last in order on top
};

}  // namespace orvo::directory
