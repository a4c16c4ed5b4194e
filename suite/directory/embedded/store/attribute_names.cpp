#include "suite/directory/embedded/store/attribute_names.h"

#include <algorithm>
#include <utility>

#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"

namespace orvo::directory::embedded {
namespace {

// Operational attributes are asked for with an entry, not searched for; not to index them spares
// every login that changes one the writing of index rows.
std::optional<MatchingRule> index_rule(const AttributeType* type) {
    if (!type || type->equality.empty() || type->is_operational) return std::nullopt;
    for (const std::string& name : type->names)
        if (is_secret(name)) return std::nullopt;
    return matching_rule_of(*type);
}

}  // namespace

void AttributeNames::refresh() {
    Query query = database_.query("SELECT id, name FROM attribute WHERE id > ? ORDER BY id", last_);
    while (query.step()) keep(query.integer(0), query.text(1));
}

void AttributeNames::forget_after(AttributeNumber last) {
    if (last_ == last) return;
    by_number_.erase(by_number_.upper_bound(last), by_number_.end());
    std::erase_if(by_name_, [&](const auto& item) { return item.second > last; });
    by_spelling_.clear();
    last_ = last;
}

std::string stored_name(std::string_view description, const AttributeTypes& types) {
    const AttributeDescription parts(description);
    const AttributeType* type = types.find(parts.type);
    std::string name = type && !type->names.empty()
                           ? type->names.front()
                           : std::string(description.substr(0, description.find(';')));
    for (const std::string& option : parts.options) (name += ';') += option;
    return name;
}

void AttributeNames::keep(AttributeNumber number, std::string name) {
    const std::size_t options = name.find(';');
    StoredAttribute attribute{name, number, std::nullopt};
    if (options != std::string::npos)
        attribute.type = by_name_.at(ascii::lower(std::string_view(name).substr(0, options)));
    attribute.indexed_by = index_rule(schema_.types.find(name));
    by_name_[ascii::lower(name)] = number;
    by_number_.insert_or_assign(number, std::move(attribute));
    last_ = number;
}

std::optional<AttributeNumber> AttributeNames::find(std::string_view description) const {
    std::string spelling(description);
    if (const auto known = by_spelling_.find(spelling); known != by_spelling_.end())
        return known->second;
    const auto found = by_name_.find(ascii::lower(stored_name(description, schema_.types)));
    if (found == by_name_.end()) return std::nullopt;
    by_spelling_.emplace(std::move(spelling), found->second);
    return found->second;
}

AttributeNumber AttributeNames::number_of(std::string_view description) {
    if (const auto known = find(description)) return *known;
    if (const std::size_t options = description.find(';'); options != std::string_view::npos)
        number_of(description.substr(0, options));
    if (const auto known = find(description)) return *known;  // without options that count
    std::string name = stored_name(description, schema_.types);
    const AttributeNumber number = last_ + 1;
    database_.run("INSERT INTO attribute (id, name) VALUES (?, ?)", number, AsText{name});
    keep(number, std::move(name));
    return number;
}

AttributeSelection AttributeNames::of_types(const std::vector<std::string>& descriptions) const {
    std::vector<AttributeNumber> types;
    for (const std::string& description : descriptions)
        if (const auto number = find(description.substr(0, description.find(';'))))
            types.push_back(*number);
    AttributeSelection selection;
    selection.held_.resize(static_cast<std::size_t>(last_) + 1);
    for (const auto& [number, attribute] : by_number_) {
        if (std::ranges::find(types, attribute.type) == types.end()) continue;
        selection.held_[static_cast<std::size_t>(number)] = true;
        ++selection.size_;
    }
    return selection;
}

const StoredAttribute& AttributeNames::operator[](AttributeNumber number) const {
    const auto found = by_number_.find(number);
    if (found == by_number_.end())
        raise_code(result_code::other, quoted_name(database_.file().string()) +
                                           ": no attribute has the number " +
                                           std::to_string(number) + ".");
    return found->second;
}

}  // namespace orvo::directory::embedded
