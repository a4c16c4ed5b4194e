#include "suite/directory/schema/equality.h"

#include <unordered_map>

#include "suite/directory/filters/matching_rule.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

bool is_of_object_identifiers(std::string_view rule) {
    return rule == "2.5.13.0" || ascii::equal_ignoring_case(rule, "objectIdentifierMatch");
}

std::string named_number(const Schema& schema, std::string_view value) {
    if (const ObjectClass* described = schema.classes.find(value)) return described->oid;
    if (const AttributeType* type = schema.types.find(value)) return type->oid;
    return ascii::lower(value);
}

}  // namespace

std::string equality_key(const Schema& schema, const AttributeType& type, std::string_view value) {
    if (type.equality.empty()) return std::string(value);
    if (is_of_object_identifiers(type.equality)) return named_number(schema, value);
    const MatchingRule rule =
        try_matching_rule(type.equality).value_or(matching_rule_of(type.syntax));
    return matching_key(rule, value).value_or(std::string(value));
}

std::optional<std::size_t> find_value(const Schema& schema, const AttributeType& type,
                                      std::span<const std::string> values, std::string_view value) {
    const std::string key = equality_key(schema, type, value);
    for (std::size_t index = 0; index < values.size(); ++index)
        if (equality_key(schema, type, values[index]) == key) return index;
    return std::nullopt;
}

std::optional<std::size_t> find_repeated(const Schema& schema, const AttributeType& type,
                                         std::span<const std::string> values) {
    if (values.size() < 2) return std::nullopt;
    std::unordered_map<std::string, std::size_t> seen;
    for (std::size_t index = 0; index < values.size(); ++index) {
        const auto [found, is_new] =
            seen.try_emplace(equality_key(schema, type, values[index]), index);
        if (!is_new) return found->second;
    }
    return std::nullopt;
}

}  // namespace orvo::directory
