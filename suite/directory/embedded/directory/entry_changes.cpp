#include "suite/directory/embedded/directory/entry_changes.h"

#include <algorithm>
#include <random>
#include <utility>

#include "suite/directory/names/ascii.h"

namespace orvo::directory::embedded {
namespace {

void apply_one(const Replacement& change, std::vector<Attribute>& attributes) {
    auto held = std::ranges::find_if(attributes, [&](const Attribute& attribute) {
        return ascii::equal_ignoring_case(attribute.name, change.attribute);
    });
    if (held == attributes.end()) held = attributes.insert(held, Attribute{change.attribute, {}});
    std::vector<std::string>& values = held->values;
    const bool is_all = change.kind == Change::replace || change.values.empty();
    std::erase_if(values, [&](const std::string& value) {
        return is_all || std::ranges::find(change.values, value) != change.values.end();
    });
    if (change.kind != Change::remove)
        values.insert(values.end(), change.values.begin(), change.values.end());
    if (values.empty()) attributes.erase(held);
}

// A random identifier (RFC 4122, version 4).
std::string new_uuid() {
    constexpr char digits[] = "0123456789abcdef";
    std::random_device random;
    std::string uuid = "xxxxxxxx-xxxx-4xxx-vxxx-xxxxxxxxxxxx";
    for (char& place : uuid) {
        if (place == 'x') place = digits[random() % 16];
        if (place == 'v') place = digits[8 + random() % 4];
    }
    return uuid;
}

void put(EntryData& entry, const char* attribute, std::string value) {
    apply_one({attribute, {std::move(value)}}, entry.attributes);
}

}  // namespace

void carry_out(std::span<const Replacement> changes, EntryData& entry) {
    for (const Replacement& change : changes) apply_one(change, entry.attributes);
}

void stamp_new(EntryData& entry, const std::string& who, Moment now) {
    put(entry, "entryUUID", new_uuid());
    put(entry, "creatorsName", who);
    put(entry, "createTimestamp", time_in_seconds(now));
    stamp_changed(entry, who, now);
}

void stamp_changed(EntryData& entry, const std::string& who, Moment now) {
    put(entry, "modifiersName", who);
    put(entry, "modifyTimestamp", time_in_seconds(now));
}

}  // namespace orvo::directory::embedded
