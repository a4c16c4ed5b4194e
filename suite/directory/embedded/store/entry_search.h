#pragma once

// One search: which way it goes, and what it finds.
//
// There are two ways. The walk reads a scope's entries in the order of lists until enough are
// taken; its cost goes by how many it reads. The index gives the entries that a filter may be true
// of, without an order; its cost goes by how many they are. So a handful of index rows is looked at
// first, then comes the walk, and where that has cost as much as asking the index for more would,
// the index is asked: what it gives, if that is not too much, is put in order, or tells the walk
// what it need not read.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "suite/directory/embedded/store/entry_form.h"
#include "suite/directory/embedded/store/index_condition.h"
#include "suite/directory/embedded/store/listing_walk.h"
#include "suite/directory/embedded/store/selection.h"

namespace orvo::directory::embedded {

struct Connection;

// In a transaction of the connection's.
class EntrySearch {
public:
    using Take = std::function<bool(EntryData&&)>;

    EntrySearch(Connection& connection, const Selection& selection);

    void run(const Take& take);
    std::vector<std::string> plan();

private:
    // An entry's place in the order.
    struct Place {
        std::string listing;
        std::string name;
        std::int64_t entry;

        auto operator<=>(const Place&) const = default;
    };

    ListingRanges listing_ranges(const Filter& filter) const;
    bool walk(ListingWalk& walk, std::size_t most, const Take& take);
    std::optional<std::vector<std::int64_t>> try_few() const;
    std::size_t all_entries() const;
    // In order, those in the scope and after `last_`.
    std::vector<Place> places(const std::vector<std::int64_t>& entries);
    bool is_in_scope(std::int64_t entry, std::int64_t parent);
    bool hand_over(std::int64_t entry, const Take& take);
    std::string name_of(std::int64_t entry);

    Connection& connection_;
    Scope scope_;
    std::optional<ScopeBase> base_;
    ListingRanges ranges_;
    IndexCondition condition_;
    Wanted attributes_;
    std::size_t wanted_;
    Query entry_;  // by its number
    std::unordered_map<std::int64_t, bool> parents_in_scope_;
    std::optional<std::vector<bool>> only_;  // by their numbers: what the walk reads; nothing: all
    Place last_;                             // the last one that was handed over
};

}  // namespace orvo::directory::embedded
