#include "suite/directory/embedded/store/entry_search.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "suite/directory/embedded/store/store_file.h"
#include "suite/directory/entries/search_condition.h"
#include "suite/directory/names/listing_order.h"

namespace orvo::directory::embedded {
namespace {

// What things cost, in steps through an index: reading an entry, and finding out where one that the
// index gives stands in the order.
constexpr std::size_t reading_an_entry = 32;
constexpr std::size_t placing_an_entry = 10;

// Index rows that are looked at before anything else. They cost little; so do as many as there will
// be entries read in any case.
constexpr std::size_t handful = 50;

// How many of `all` entries a walk passes to find `wanted` of `matching`, spread evenly.
std::size_t passed(std::size_t wanted, std::size_t matching, std::size_t all) {
    return wanted == 0 || wanted >= matching ? all : wanted * all / matching;
}

// So many rows are worth to be read from the index, so that the walk need not read what it passes:
// k rows spare it wanted * all / k entries.
std::size_t most_from_index(std::size_t wanted, std::size_t all) {
    if (wanted == 0) return all;
    return static_cast<std::size_t>(
        std::sqrt(static_cast<double>(wanted) * static_cast<double>(all * reading_an_entry)));
}

}  // namespace

EntrySearch::EntrySearch(Connection& connection, const Selection& selection)
    : connection_(connection),
      scope_(selection.scope),
      base_(try_base(connection.database, selection.base)),
      ranges_(listing_ranges(selection.filter)),
      condition_(IndexCondition::of(selection.filter, connection.names, connection.schema.types)),
      wanted_(selection.wanted),
      entry_(connection.database.query("SELECT name, data FROM entry WHERE id = ?", 0)) {
    if (!selection.attributes.empty())
        attributes_ = connection.names.of_types(selection.attributes);
}

ListingRanges EntrySearch::listing_ranges(const Filter& filter) const {
    ListingRanges ranges;
    if (filter.kind == Filter::Kind::all_of) {
        for (const Filter& part : filter.parts)
            for (const auto& [attribute, range] : listing_ranges(part)) {
                ListingRange& whole = ranges[attribute];
                whole.first = std::max(whole.first, range.first);
                whole.past = std::min(whole.past, range.past);
            }
    } else if (filter.kind > Filter::Kind::negation &&
               split_by_order(filter, connection_.schema.types).kept) {
        const auto attribute = connection_.names.find(filter.attribute);
        const ListingBound bound(filter.value);
        if (attribute && filter.kind == Filter::Kind::at_least)
            ranges[*attribute].first = bound.first();
        else if (attribute)
            ranges[*attribute].past = bound.past();
    }
    return ranges;
}

void EntrySearch::run(const Take& take) {
    if (!base_) return;
    Database& database = connection_.database;
    if (scope_ == Scope::base) {
        if (base_->entry != 0) hand_over(base_->entry, take);
        return;
    }
    const auto by_index = [&](const std::vector<std::int64_t>& entries) {
        for (const Place& place : places(entries))
            if (!hand_over(place.entry, take)) return;
    };
    if (const auto few = try_few()) return by_index(*few);

    ListingWalk listing(database, connection_.names, *base_, scope_, ranges_);
    if (condition_.knows()) {
        const std::size_t all = all_entries();
        const std::size_t most = most_from_index(wanted_, all);
        const std::size_t rows = condition_.has_scan() ? all : most;
        if (wanted_ != 0 && walk(listing, wanted_ + rows / reading_an_entry, take)) return;
        if (const auto some =
                condition_.try_entries(database, most, IndexCondition::Scans::included)) {
            if (some->size() * placing_an_entry < passed(wanted_, some->size(), all))
                return by_index(*some);
            only_ = std::vector<bool>(all + 1);
            for (const std::int64_t entry : *some) (*only_)[static_cast<std::size_t>(entry)] = true;
        }
    }
    walk(listing, static_cast<std::size_t>(-1), take);
}

std::optional<std::vector<std::int64_t>> EntrySearch::try_few() const {
    constexpr auto scans = IndexCondition::Scans::left_out;
    auto few = condition_.try_entries(connection_.database, handful, scans);
    if (!few && wanted_ > handful)
        few = condition_.try_entries(connection_.database, wanted_, scans);
    return few;
}

// About: numbers of removed entries count as well.
std::size_t EntrySearch::all_entries() const {
    return static_cast<std::size_t>(connection_.database.number("SELECT max(id) FROM entry", 0));
}

// Whether that was all: there are no more, or no more are taken.
bool EntrySearch::walk(ListingWalk& walk, std::size_t most, const Take& take) {
    for (std::size_t count = 0; count < most;) {
        const std::vector<std::int64_t>& entries = walk.next();
        if (entries.empty()) return true;
        std::vector<Place> group;
        for (const std::int64_t entry : entries)
            if (!only_ || (*only_)[static_cast<std::size_t>(entry)])
                group.push_back({walk.listing(), entries.size() > 1 ? name_of(entry) : "", entry});
        if (group.size() > 1) std::ranges::sort(group);
        count += entries.size();
        for (Place& place : group) {
            if (!hand_over(place.entry, take)) return true;
            last_ = std::move(place);
        }
    }
    return false;
}

std::vector<EntrySearch::Place> EntrySearch::places(const std::vector<std::int64_t>& entries) {
    std::vector<Place> places;
    Query query = connection_.database.query("SELECT name, parent FROM entry WHERE id = ?");
    for (const std::int64_t entry : entries) {
        query.bind(entry);
        if (query.step() && is_in_scope(entry, query.integer(1))) {
            ListedName listed = listed_name(query.octets(0), connection_.names);
            const auto range = ranges_.find(listed.attribute);
            if ((range == ranges_.end() || range->second.holds(listed.listing)) &&
                listed.listing > last_.listing)
                places.push_back({std::move(listed.listing), query.text(0), entry});
        }
        query.reset();
    }
    std::ranges::sort(places);
    return places;
}

bool EntrySearch::is_in_scope(std::int64_t entry, std::int64_t parent) {
    if (scope_ == Scope::one_level) return parent == base_->entry;
    if (entry == base_->entry || parent == base_->entry) return true;
    if (parent == 0) return false;
    const auto known = parents_in_scope_.find(parent);
    if (known != parents_in_scope_.end()) return known->second;
    const bool is_in = is_in_scope(
        parent, connection_.database.number("SELECT parent FROM entry WHERE id = ?", 0, parent));
    parents_in_scope_[parent] = is_in;
    return is_in;
}

bool EntrySearch::hand_over(std::int64_t entry, const Take& take) {
    entry_.bind(entry);
    const bool is_there = entry_.step();
    EntryData data;
    if (is_there) {
        data.name = entry_.text(0);
        data.attributes = decode(entry_.octets(1), connection_.names, attributes_);
    }
    entry_.reset();
    return !is_there || take(std::move(data));
}

std::string EntrySearch::name_of(std::int64_t entry) {
    Query query = connection_.database.query("SELECT name FROM entry WHERE id = ?", entry);
    return query.step() ? query.text(0) : "";
}

std::vector<std::string> EntrySearch::plan() {
    if (!base_) return {"no entry: the base is not there"};
    if (scope_ == Scope::base) return {"the base alone"};
    Database& database = connection_.database;
    std::vector<std::string> lines;
    const auto append_plan_of = [&](const char* statement) {
        for (const std::string& line : database.plan_of(statement)) lines.push_back("  " + line);
    };
    for (const IndexRange* range : condition_.ranges()) {
        lines.push_back((range->is_scan() ? "all index rows of " : "index rows of ") +
                        connection_.names[range->attribute].name);
        append_plan_of(IndexCondition::statement_of(*range));
    }
    if (const auto few = try_few()) {
        lines.push_back("from the index: " + std::to_string(few->size()) + " entries");
        return lines;
    }
    for (std::string& line :
         ListingWalk(database, connection_.names, *base_, scope_, ranges_).plan())
        lines.push_back(std::move(line));
    append_plan_of(ListingWalk::statement);
    if (condition_.knows())
        lines.push_back("with the index, where it has at most " +
                        std::to_string(most_from_index(wanted_, all_entries())) + " rows");
    return lines;
}

}  // namespace orvo::directory::embedded
