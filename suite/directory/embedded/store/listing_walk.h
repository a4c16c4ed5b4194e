#pragma once

// Entries of a scope in the order of lists, read from the table `below` as far as somebody wants
// them: the first page costs what the last one does.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/embedded/store/index_rows.h"
#include "suite/directory/embedded/store/sqlite.h"
#include "suite/directory/entries/entry_data.h"
#include "suite/directory/names/distinguished_name.h"

namespace orvo::directory::embedded {

// Where a walk begins and ends, for the entries that an attribute names.
struct ListingRange {
    std::string first = {};
    std::string past = "\xFF";  // no key begins so

    bool holds(const std::string& listing) const { return listing >= first && listing < past; }
};
using ListingRanges = std::map<AttributeNumber, ListingRange>;

// What a search begins at; nothing where there is no such entry.
struct ScopeBase {
    std::int64_t entry = 0;  // 0: above all entries
    std::string name = {};
};
std::optional<ScopeBase> try_base(Database& database, const DistinguishedName& name);

class ListingWalk {
public:
    ListingWalk(Database& database, AttributeNames& names, const ScopeBase& base, Scope scope,
                const ListingRanges& ranges);

    // The next entries: those with one listing key, as a rule a single one. Empty: there are no
    // more.
    const std::vector<std::int64_t>& next();
    const std::string& listing() const { return listing_; }  // of them

    static constexpr const char* statement =
        "SELECT listing, entry FROM below WHERE ancestor = ? AND kind = ? AND listing >= ? "
        "AND listing < ? ORDER BY listing, entry";
    // A line for each of the ranges that are walked through.
    std::vector<std::string> plan() const;

private:
    // Entries below one ancestor that one attribute names, or one entry alone.
    struct Stream {
        std::optional<Query> query;
        std::string listing;
        std::int64_t entry;
        std::int64_t ancestor;
        std::int64_t kind;
    };

    void add_entry(std::int64_t entry, std::string_view name);
    void add_children(std::int64_t ancestor, Scope scope);
    static bool advance(Stream& stream);

    Database& database_;
    AttributeNames& names_;
    const ListingRanges& ranges_;
    std::vector<Stream> streams_;  // none is at its end
    std::vector<std::int64_t> found_;
    std::string listing_;
};

}  // namespace orvo::directory::embedded
