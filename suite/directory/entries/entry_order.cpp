#include "suite/directory/entries/entry_order.h"

#include <algorithm>
#include <utility>

#include "suite/directory/names/listing_order.h"
#include "suite/directory/names/name_parts.h"

namespace orvo::directory {
namespace {

// In the order of the texts themselves, as far as it goes.
std::uint64_t first_octets(std::string_view text) {
    std::uint64_t number = 0;
    for (std::size_t at = 0; at < sizeof number; ++at)
        number = number << 8 | (at < text.size() ? static_cast<unsigned char>(text[at]) : 0);
    return number;
}

}  // namespace

NamingPart naming_part(std::string_view name) {
    const std::size_t sign = name.find('=');
    if (sign == std::string_view::npos) return {name, {}};
    std::size_t value = sign + 1;
    return {name.substr(0, sign), value_in_name(name, value)};
}

std::string order_key(std::string_view name) { return listing_key(naming_part(name).value); }

bool FirstRows::Kept::operator<(const Kept& other) const {
    const int order = key.compare(other.key);
    return order != 0 ? order < 0 : name < other.name;
}

bool FirstRows::wants(const std::string& name) const {
    if (kept_.size() != wanted_) return true;
    const Kept asked{order_key(name), name, {}};
    return asked < kept_.front();
}

void FirstRows::add(EntryData&& entry) {
    const bool is_full = kept_.size() == wanted_;
    std::string key = order_key(entry.name);
    if (is_full && key > kept_.front().key) return;
    Kept added{std::move(key), entry.name, {}};
    if (is_full && !(added < kept_.front())) return;
    added.row = decode_(entry);
    if (is_full) {
        std::pop_heap(kept_.begin(), kept_.end());
        kept_.back() = std::move(added);
        std::push_heap(kept_.begin(), kept_.end());
        return;
    }
    kept_.push_back(std::move(added));
    if (kept_.size() == wanted_) std::make_heap(kept_.begin(), kept_.end());
}

// Most names differ in their first letters, which are compared as one number.
std::vector<FirstRows::Place> FirstRows::in_order() {
    std::vector<Place> places;
    places.reserve(kept_.size());
    for (Kept& kept : kept_) places.push_back({first_octets(kept.key), &kept});
    std::sort(places.begin(), places.end(), [](const Place& one, const Place& other) {
        if (one.first_octets != other.first_octets) return one.first_octets < other.first_octets;
        return *one.kept < *other.kept;
    });
    return places;
}

}  // namespace orvo::directory
