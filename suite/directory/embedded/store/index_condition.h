#pragma once

// What the index can say of a filter.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/embedded/store/attribute_names.h"
#include "suite/directory/embedded/store/sqlite.h"
#include "suite/directory/filters/filter.h"

namespace orvo::directory::embedded {

// Entries that have a value of the attribute with a key in a range of the index.
struct IndexRange {
    AttributeNumber attribute = 0;
    bool is_one_key = false;
    std::string from = {};                 // the key, or the first one
    std::optional<std::string> past = {};  // where a range ends; nothing: with the attribute
    std::vector<std::string> pieces = {};  // that the key has (piece_keys); empty: no matter

    // Whether all values of the attribute are looked at, to find the few that have the pieces.
    bool is_scan() const { return !pieces.empty() && from.empty(); }
    const std::string& longest_piece() const;
};

// The filter as far as the index knows it: it is true of no other entries than those that the
// condition covers. The value of ">=" and "<=" in the order of lists is for the walk, and not here.
class IndexCondition {
public:
    static IndexCondition of(const Filter& filter, const AttributeNames& names,
                             const AttributeTypes& types);

    enum class Scans { left_out, included };

    // The entries it covers, ascending, each once; nothing where more index rows than `most` would
    // have to be read, or the index does not know. Of conditions that all have to hold the one with
    // the fewest rows decides.
    std::optional<std::vector<std::int64_t>> try_entries(Database& database, std::size_t most,
                                                         Scans scans) const;

    bool knows() const { return kind_ != Kind::anything; }
    bool has_scan() const;
    // Every range in it.
    std::vector<const IndexRange*> ranges() const;
    // The statement that reads a range.
    static const char* statement_of(const IndexRange& range);

private:
    enum class Kind { anything, range, all_of, any_of };

    static IndexCondition of_item(const Filter& item, const AttributeNames& names,
                                  const AttributeTypes& types);
    static IndexCondition of_range(IndexRange range);
    static IndexCondition nothing() { return {Kind::any_of}; }

    IndexCondition(Kind kind) : kind_(kind) {}
    bool append_entries(Database& database, std::size_t most, Scans scans,
                        std::vector<std::int64_t>& entries) const;
    bool append_range(Database& database, std::size_t most,
                      std::vector<std::int64_t>& entries) const;

    Kind kind_;
    IndexRange range_;
    std::vector<IndexCondition> parts_;
};

}  // namespace orvo::directory::embedded
