#include "host/web/sessions/named_values.h"

#include <algorithm>

#include "platform/interfaces/late_call.h"
#include "platform/interfaces/sharing.h"
#include "platform/values/failure.h"
#include "platform/values/value_bytes.h"
#include "platform/values/values.h"

namespace orvo::web {
namespace {

bool is_keepable(const Variant& value, Reach reach) {
    if (value.is_array()) {
        if (value.try_bytes()) return true;
        const Values elements = value.to<Values>();
        return std::ranges::all_of(
            elements, [&](const Variant& element) { return is_keepable(element, reach); });
    }
    if (!value.is_object()) return true;
    const Object object = value.to<Object>();
    return !object || (reach == Reach::process && serves_any_thread(object));
}

std::size_t size_of(const Variant& value) {
    if (value.is_text()) return value.text_view().size() * 2 + 24;
    if (const auto bytes = value.try_bytes()) return bytes->size() + 24;
    if (!value.is_array()) return 24;
    std::size_t size = 24;
    for (const Variant& element : value.to<Values>()) size += size_of(element);
    return size;
}

std::size_t size_of(const std::pair<Text, Variant>& entry) {
    constexpr std::size_t of_an_entry = 100;
    return of_an_entry + entry.first.size() * 4 + size_of(entry.second);
}

}  // namespace

Variant NamedValues::get(TextView name) const {
    const auto found = places_.find(lower(name));
    return found == places_.end() ? Variant() : entries_[found->second].second;
}

void NamedValues::put(TextView name, Variant value) {
    const auto [place, is_new] = places_.try_emplace(lower(name), entries_.size());
    if (is_new)
        entries_.emplace_back(name, Variant());
    else
        size_ -= size_of(entries_[place->second]);
    auto& entry = entries_[place->second];
    entry.second = std::move(value);
    size_ += size_of(entry);
}

void NamedValues::remove(TextView name) {
    const auto found = places_.find(lower(name));
    if (found == places_.end()) return;
    const std::size_t place = found->second;
    size_ -= size_of(entries_[place]);
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(place));
    places_.erase(found);
    for (auto& [other, other_place] : places_)
        if (other_place > place) --other_place;
}

std::vector<Text> NamedValues::names() const {
    std::vector<Text> names;
    for (const auto& [name, value] : entries_) names.push_back(name);
    return names;
}

void require_keepable(const Variant& value, TextView holder, TextView name, Reach reach) {
    if (!is_keepable(value, reach)) {
        const TextView reason = reach == Reach::fleet
                                    ? u"the site's store is shared, and an object cannot leave "
                                      u"the process that made it"
                                    : u"it belongs to the page that made it";
        throw Failure(runtime_error::invalid_call, {},
                      Text(holder) + u"(\"" + Text(name) + u"\") cannot keep this object: " +
                          Text(reason) +
                          u". Keep texts, numbers, dates or arrays of these, and make the object "
                          u"anew on each page.");
    }
    if (reach == Reach::process) return;
    std::string bytes;
    append_value(bytes, value);
}

Variant keepable(const Variant& value, TextView holder, TextView name, Reach reach) {
    if (!value.is_object() || is_keepable(value, reach)) {
        require_keepable(value, holder, name, reach);
        return value;
    }
    Variant plain = value;
    try {
        plain = late::value_of(value.to<Object>());
    } catch (const Failure&) {
        // It has no default value; the refusal says more than that.
    }
    require_keepable(plain, holder, name, reach);
    return plain;
}

}  // namespace orvo::web
