#include "suite/directory/ldap/entry_order.h"

#include <algorithm>
#include <utility>

#include "suite/directory/common/ascii.h"
#include "suite/directory/common/matching_rule.h"

namespace orvo::directory::ldap {
namespace {

// The value behind the first "=", without its escapes (RFC 4514).
std::string naming_value(std::string_view name) {
    name.remove_prefix(std::min(name.find('='), name.size() - 1) + 1);
    const std::size_t plain = name.find_first_of("\\,+");
    std::string value(name.substr(0, plain));
    for (std::size_t at = value.size(); at < name.size() && name[at] != ',' && name[at] != '+';) {
        if (name[at] != '\\' || at + 1 == name.size()) {
            value += name[at++];
        } else if (at + 2 < name.size() && ascii::is_hexadecimal(name[at + 1]) &&
                   ascii::is_hexadecimal(name[at + 2])) {
            value += static_cast<char>(ascii::digit_value(name[at + 1]) * 16 +
                                       ascii::digit_value(name[at + 2]));
            at += 3;
        } else {
            value += name[at + 1];
            at += 2;
        }
    }
    return value;
}

}  // namespace

std::string order_key(std::string_view name) {
    if (name.empty()) return {};
    std::string value = naming_value(name);
    // A value that is no text comes in the order of its octets.
    return matching_key(MatchingRule::case_ignore, value).value_or(std::move(value));
}

void FirstRows::add(EntryData&& entry) {
    Kept added{order_key(entry.name), std::move(entry.name), {}};
    const bool is_full = kept_.size() == wanted_;
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

std::vector<FirstRows::Kept*> FirstRows::in_order() {
    std::vector<Kept*> ordered;
    ordered.reserve(kept_.size());
    for (Kept& kept : kept_) ordered.push_back(&kept);
    std::sort(ordered.begin(), ordered.end(),
              [](const Kept* one, const Kept* other) { return *one < *other; });
    return ordered;
}

}  // namespace orvo::directory::ldap
