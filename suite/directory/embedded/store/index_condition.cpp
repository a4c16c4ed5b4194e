#include "suite/directory/embedded/store/index_condition.h"

#include <algorithm>
#include <utility>

#include "suite/directory/embedded/store/index_rows.h"
#include "suite/directory/entries/search_condition.h"

namespace orvo::directory::embedded {
namespace {

using FilterKind = Filter::Kind;

// What lies behind all keys that begin so; nothing where there is no such key.
std::optional<std::string> past_prefix(std::string prefix) {
    while (!prefix.empty() && prefix.back() == '\xFF') prefix.pop_back();
    if (prefix.empty()) return std::nullopt;
    prefix.back() = static_cast<char>(static_cast<unsigned char>(prefix.back()) + 1);
    return prefix;
}

std::string cut(std::string key) {
    if (key.size() > longest_index_key) key.resize(longest_index_key);
    return key;
}

std::string next_key(std::string key) { return key += '\0'; }

}  // namespace

const std::string& IndexRange::longest_piece() const {
    return *std::ranges::max_element(pieces, {}, &std::string::size);
}

IndexCondition IndexCondition::of_range(IndexRange range) {
    IndexCondition condition(Kind::range);
    condition.range_ = std::move(range);
    return condition;
}

IndexCondition IndexCondition::of(const Filter& filter, const AttributeNames& names,
                                  const AttributeTypes& types) {
    if (filter.kind > FilterKind::negation) return of_item(filter, names, types);
    if (filter.kind == FilterKind::negation) return Kind::anything;
    const bool is_all = filter.kind == FilterKind::all_of;
    IndexCondition condition(is_all ? Kind::all_of : Kind::any_of);
    for (const Filter& part : filter.parts) {
        IndexCondition known = of(part, names, types);
        if (known.knows())
            condition.parts_.push_back(std::move(known));
        else if (!is_all)
            return Kind::anything;
    }
    if (!is_all) return condition;
    if (condition.parts_.empty()) return Kind::anything;
    // Classes seldom tell much; as the last they are looked through no further than what the other
    // parts have left.
    const auto classes = names.find("objectClass");
    std::ranges::stable_partition(condition.parts_, [&](const IndexCondition& part) {
        return part.kind_ != Kind::range || part.range_.attribute != classes;
    });
    return condition;
}

IndexCondition IndexCondition::of_item(const Filter& item, const AttributeNames& names,
                                       const AttributeTypes& types) {
    if (item.attribute.empty() || item.of_name) return Kind::anything;
    const auto type = names.find(item.attribute.substr(0, item.attribute.find(';')));
    if (!type) return nothing();
    const std::optional<MatchingRule> rule = names[*type].indexed_by;
    if (!rule) return Kind::anything;

    const auto key = [&] { return matching_key(*rule, item.value); };
    switch (item.kind) {
        case FilterKind::presence:
            return of_range({.attribute = *type});
        case FilterKind::extensible:
            if (!item.rule.empty() && try_matching_rule(item.rule) != rule) return Kind::anything;
            [[fallthrough]];
        case FilterKind::equality:
        case FilterKind::similar:
            if (!key()) return nothing();
            return of_range({.attribute = *type, .is_one_key = true, .from = cut(*key())});
        case FilterKind::substrings: {
            if (!is_text(*rule)) return Kind::anything;
            auto pieces = piece_keys(*rule, item.pieces);
            if (!pieces) return nothing();
            std::string prefix = cut(pieces->front());
            auto past = past_prefix(prefix);
            return of_range({*type, false, std::move(prefix), std::move(past), std::move(*pieces)});
        }
        default:
            // Text that does not go by the order of lists may go by its rule, or by nothing.
            if (is_text(*rule) || !has_order(*rule) || split_by_order(item, types).kept)
                return Kind::anything;
            if (!key()) return nothing();
            if (item.kind == FilterKind::at_least)
                return of_range({.attribute = *type, .from = cut(*key())});
            return of_range({.attribute = *type, .past = next_key(cut(*key()))});
    }
}

std::optional<std::vector<std::int64_t>> IndexCondition::try_entries(Database& database,
                                                                     std::size_t most,
                                                                     Scans scans) const {
    std::vector<std::int64_t> entries;
    if (!append_entries(database, most, scans, entries)) return std::nullopt;
    std::ranges::sort(entries);
    const auto again = std::ranges::unique(entries);
    entries.erase(again.begin(), again.end());
    return entries;
}

bool IndexCondition::append_entries(Database& database, std::size_t most, Scans scans,
                                    std::vector<std::int64_t>& entries) const {
    if (kind_ == Kind::anything) return false;
    if (kind_ == Kind::range)
        return (scans == Scans::included || !range_.is_scan()) &&
               append_range(database, most, entries);
    const std::size_t before = entries.size();
    if (kind_ == Kind::any_of)
        return std::ranges::all_of(parts_, [&](const IndexCondition& part) {
            return part.append_entries(database, most - (entries.size() - before), scans, entries);
        });
    std::optional<std::vector<std::int64_t>> fewest;
    for (const IndexCondition& part : parts_) {
        std::vector<std::int64_t> found;
        if (!part.append_entries(database, fewest ? fewest->size() : most, scans, found)) continue;
        fewest = std::move(found);
        if (fewest->empty()) break;
    }
    if (!fewest) return false;
    entries.insert(entries.end(), fewest->begin(), fewest->end());
    return true;
}

const char* IndexCondition::statement_of(const IndexRange& range) {
    if (range.is_one_key) return "SELECT entry, key FROM value WHERE attribute = ? AND key = ?";
    if (range.past)
        return "SELECT entry, key FROM value WHERE attribute = ? AND key >= ? AND key < ?";
    if (range.is_scan())
        return "SELECT entry, key FROM value WHERE attribute = ? AND (instr(key, ?) > 0 "
               "OR length(key) = ?)";
    return "SELECT entry, key FROM value WHERE attribute = ? AND key >= ?";
}

// A key that is cut may have any pieces behind its end.
bool IndexCondition::append_range(Database& database, std::size_t most,
                                  std::vector<std::int64_t>& entries) const {
    Query query = database.query(statement_of(range_));
    if (range_.past)
        query.bind(range_.attribute, range_.from, *range_.past);
    else if (range_.is_scan())
        query.bind(range_.attribute, range_.longest_piece(), longest_index_key);
    else
        query.bind(range_.attribute, range_.from);
    const std::size_t full = entries.size() + most;
    while (query.step()) {
        if (!range_.pieces.empty()) {
            const std::string_view key = query.octets(1);
            if (key.size() < longest_index_key && !has_pieces(key, range_.pieces)) continue;
        }
        if (entries.size() == full) return false;
        entries.push_back(query.integer(0));
    }
    return true;
}

bool IndexCondition::has_scan() const {
    return std::ranges::any_of(ranges(), [](const IndexRange* range) { return range->is_scan(); });
}

std::vector<const IndexRange*> IndexCondition::ranges() const {
    std::vector<const IndexRange*> ranges;
    if (kind_ == Kind::range) ranges.push_back(&range_);
    for (const IndexCondition& part : parts_)
        for (const IndexRange* range : part.ranges()) ranges.push_back(range);
    return ranges;
}

}  // namespace orvo::directory::embedded
