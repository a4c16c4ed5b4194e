#include "host/web/named_values.h"

#include <algorithm>
#include <thread>

#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "platform/values/values.h"

namespace orvo::web {
namespace {

auto by_name(TextView name) {
    return [name](const auto& entry) { return equal_ignoring_case(entry.first, name); };
}

// An object says itself whether it serves other threads: it answers a call from one.
bool serves_any_thread(const Object& object) {
    bool serves = true;
    std::thread([&] {
        try {
            late::value_of(object);
        } catch (const Failure& failure) {
            // Any other failure shows that the call arrived.
            serves = failure.number != wrong_thread;
        }
    }).join();
    return serves;
}

bool is_keepable(const Variant& value) {
    if (value.is_array()) {
        if (value.try_bytes()) return true;
        const Values elements = value.to<Values>();
        return std::ranges::all_of(elements, is_keepable);
    }
    if (!value.is_object()) return true;
    const Object object = value.to<Object>();
    return !object || serves_any_thread(object);
}

std::size_t size_of(const Variant& value) {
    if (value.is_text()) return value.text_view().size() * 2 + 24;
    if (const auto bytes = value.try_bytes()) return bytes->size() + 24;
    if (!value.is_array()) return 24;
    std::size_t size = 24;
    for (const Variant& element : value.to<Values>()) size += size_of(element);
    return size;
}

}  // namespace

Variant NamedValues::get(TextView name) const {
    const auto found = std::ranges::find_if(entries_, by_name(name));
    return found == entries_.end() ? Variant() : found->second;
}

void NamedValues::put(TextView name, Variant value) {
    const auto found = std::ranges::find_if(entries_, by_name(name));
    if (found == entries_.end())
        entries_.emplace_back(name, std::move(value));
    else
        found->second = std::move(value);
}

void NamedValues::remove(TextView name) { std::erase_if(entries_, by_name(name)); }

std::vector<Text> NamedValues::names() const {
    std::vector<Text> names;
    for (const auto& [name, value] : entries_) names.push_back(name);
    return names;
}

std::size_t NamedValues::size() const {
    std::size_t size = 0;
    for (const auto& [name, value] : entries_) size += name.size() * 2 + size_of(value);
    return size;
}

void require_keepable(const Variant& value, TextView holder, TextView name) {
    if (is_keepable(value)) return;
    throw Failure(runtime_error::invalid_call, {},
                  Text(holder) + u"(\"" + Text(name) +
                      u"\") cannot keep this object: it belongs to the page that made it. Keep "
                      u"texts, numbers, dates or arrays of these, and make the object anew on each "
                      u"page.");
}

Variant keepable(const Variant& value, TextView holder, TextView name) {
    if (!value.is_object() || is_keepable(value)) {
        require_keepable(value, holder, name);
        return value;
    }
    Variant plain = value;
    try {
        plain = late::value_of(value.to<Object>());
    } catch (const Failure&) {
        // It has no default value; the refusal says more than that.
    }
    require_keepable(plain, holder, name);
    return plain;
}

}  // namespace orvo::web
