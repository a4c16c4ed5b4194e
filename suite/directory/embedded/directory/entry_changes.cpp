#include "suite/directory/embedded/directory/entry_changes.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/failures.h"

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
    std::array<unsigned char, 16> octets;
    if (::getentropy(octets.data(), octets.size()) != 0)
        raise_code(result_code::other, "The system gives no random numbers.");
    octets[6] = (octets[6] & 0x0F) | 0x40;
    octets[8] = (octets[8] & 0x3F) | 0x80;
    std::string uuid;
    for (std::size_t at = 0; at < octets.size(); ++at) {
        constexpr char digits[] = "0123456789abcdef";
        if (at == 4 || at == 6 || at == 8 || at == 10) uuid += '-';
        uuid += digits[octets[at] >> 4];
        uuid += digits[octets[at] & 15];
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
