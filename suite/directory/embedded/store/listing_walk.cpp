#include "suite/directory/embedded/store/listing_walk.h"

#include <algorithm>
#include <utility>

namespace orvo::directory::embedded {
namespace {

ListingRange range_of(AttributeNumber attribute, const ListingRanges& ranges) {
    const auto found = ranges.find(attribute);
    return found == ranges.end() ? ListingRange{} : found->second;
}

}  // namespace

std::optional<ScopeBase> try_base(Database& database, const DistinguishedName& name) {
    if (name.depth() == 0) return ScopeBase{};
    Query query = database.query("SELECT id, name FROM entry WHERE key = ?", name.key());
    if (!query.step()) return std::nullopt;
    return ScopeBase{query.integer(0), query.text(1)};
}

ListingWalk::ListingWalk(Database& database, AttributeNames& names, const ScopeBase& base,
                         Scope scope, const ListingRanges& ranges)
    : database_(database), names_(names), ranges_(ranges) {
    if (scope != Scope::one_level && base.entry != 0) add_entry(base.entry, base.name);
    if (scope == Scope::base) return;
    add_children(base.entry, scope);
    if (scope == Scope::one_level || base.entry != 0) return;
    // Below the root only the entries at the top are listed.
    Query tops = database.query("SELECT entry FROM below WHERE ancestor = 0");
    while (tops.step()) add_children(tops.integer(0), scope);
}

void ListingWalk::add_entry(std::int64_t entry, std::string_view name) {
    ListedName listed = listed_name(name, names_);
    if (range_of(listed.attribute, ranges_).holds(listed.listing))
        streams_.push_back({std::nullopt, std::move(listed.listing), entry, 0, 0});
}

void ListingWalk::add_children(std::int64_t ancestor, Scope scope) {
    const auto kind_after = [&](std::int64_t kind) {
        return database_.number(
            "SELECT kind FROM below WHERE ancestor = ? AND kind > ? ORDER BY kind LIMIT 1", 0,
            ancestor, kind);
    };
    for (std::int64_t kind = kind_after(0); kind != 0; kind = kind_after(kind)) {
        if (scope == Scope::one_level && !is_kind_of_children(kind)) continue;
        const ListingRange range = range_of(attribute_of_kind(kind), ranges_);
        Stream stream{database_.query(statement, ancestor, kind, range.first, range.past),
                      {},
                      0,
                      ancestor,
                      kind};
        if (advance(stream)) streams_.push_back(std::move(stream));
    }
}

bool ListingWalk::advance(Stream& stream) {
    if (!stream.query || !stream.query->step()) return false;
    stream.listing = stream.query->octets(0);
    stream.entry = stream.query->integer(1);
    return true;
}

const std::vector<std::int64_t>& ListingWalk::next() {
    found_.clear();
    if (streams_.empty()) return found_;
    listing_ = std::ranges::min_element(streams_, {}, &Stream::listing)->listing;
    std::erase_if(streams_, [&](Stream& stream) {
        while (stream.listing == listing_) {
            found_.push_back(stream.entry);
            if (!advance(stream)) return true;
        }
        return false;
    });
    return found_;
}

std::vector<std::string> ListingWalk::plan() const {
    std::vector<std::string> lines;
    for (const Stream& stream : streams_) {
        if (!stream.query) {
            lines.push_back("entry " + std::to_string(stream.entry));
            continue;
        }
        const AttributeNumber attribute = attribute_of_kind(stream.kind);
        lines.push_back("walk below entry " + std::to_string(stream.ancestor) + ": " +
                        names_[attribute].name +
                        (ranges_.contains(attribute) ? ", from the bound" : ""));
    }
    return lines;
}

}  // namespace orvo::directory::embedded
