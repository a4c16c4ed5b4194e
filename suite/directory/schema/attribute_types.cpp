#include "suite/directory/schema/attribute_types.h"

#include <algorithm>
#include <optional>

#include "suite/directory/names/ascii.h"
#include "suite/directory/schema/descriptions.h"

namespace orvo::directory {
namespace {

// Syntaxes whose values are not text (RFC 4517 and its predecessors).
struct SyntaxRow {
    std::string_view oid;
    Syntax syntax;
};
constexpr SyntaxRow syntaxes[] = {
    {"1.3.6.1.4.1.1466.115.121.1.4", Syntax::bytes},     // audio
    {"1.3.6.1.4.1.1466.115.121.1.5", Syntax::bytes},     // binary
    {"1.3.6.1.4.1.1466.115.121.1.7", Syntax::boolean},   // boolean
    {"1.3.6.1.4.1.1466.115.121.1.8", Syntax::bytes},     // certificate
    {"1.3.6.1.4.1.1466.115.121.1.9", Syntax::bytes},     // certificate list
    {"1.3.6.1.4.1.1466.115.121.1.10", Syntax::bytes},    // certificate pair
    {"1.3.6.1.4.1.1466.115.121.1.23", Syntax::bytes},    // fax
    {"1.3.6.1.4.1.1466.115.121.1.24", Syntax::time},     // generalized time
    {"1.3.6.1.4.1.1466.115.121.1.27", Syntax::integer},  // integer
    {"1.3.6.1.4.1.1466.115.121.1.28", Syntax::bytes},    // JPEG
    {"1.3.6.1.4.1.1466.115.121.1.40", Syntax::bytes},    // octet string
    {"1.3.6.1.4.1.1466.115.121.1.49", Syntax::bytes},    // supported algorithm
};

Syntax syntax_of(std::string_view oid) {
    for (const SyntaxRow& row : syntaxes)
        if (row.oid == oid) return row.syntax;
    return Syntax::text;
}

// A schema that names a type as its own superior, however indirectly, ends the walk here.
constexpr int deepest_inheritance = 32;

// Fills in what the type has not said itself.
void inherit(AttributeType& type, const AttributeType& superior) {
    if (type.syntax_oid.empty()) type.syntax_oid = superior.syntax_oid;
    if (type.equality.empty()) type.equality = superior.equality;
    if (type.ordering.empty()) type.ordering = superior.ordering;
    if (type.substrings.empty()) type.substrings = superior.substrings;
}

}  // namespace

AttributeDescription::AttributeDescription(std::string_view description) {
    std::size_t end = description.find(';');
    type = ascii::lower(description.substr(0, end));
    while (end != std::string_view::npos) {
        const std::size_t begin = end + 1;
        end = description.find(';', begin);
        std::string option = ascii::lower(
            description.substr(begin, end == std::string_view::npos ? end : end - begin));
        if (option != "binary") options.push_back(std::move(option));
    }
    std::sort(options.begin(), options.end());
}

AttributeTypes AttributeTypes::from_descriptions(std::span<const std::string> descriptions,
                                                 TimeForm times) {
    AttributeTypes result;
    std::unordered_map<std::string, TypeDescription> read;
    std::unordered_map<std::string, std::string> oid_of;
    for (const std::string& text : descriptions) {
        std::optional<TypeDescription> description = try_type_description(text);
        if (!description) continue;
        std::string oid = ascii::lower(description->type.oid);
        for (const std::string& name : description->type.names) oid_of[ascii::lower(name)] = oid;
        read.insert_or_assign(std::move(oid), std::move(*description));
    }
    auto find_read = [&](const std::string& name) -> const TypeDescription* {
        const auto named = oid_of.find(name);
        const auto found = read.find(named == oid_of.end() ? name : named->second);
        return found == read.end() ? nullptr : &found->second;
    };
    for (auto& [oid, description] : read) {
        AttributeType type = description.type;
        type.time_form = times;
        const TypeDescription* owner = &description;
        for (int depth = 0; owner && depth < deepest_inheritance; ++depth) {
            inherit(type, owner->type);
            owner = owner->superior.empty() ? nullptr : find_read(ascii::lower(owner->superior));
        }
        type.syntax = syntax_of(type.syntax_oid);
        result.add(type);
    }
    return result;
}

void AttributeTypes::add(const AttributeType& type) {
    const AttributeType* added = &types_.emplace_back(type);
    by_name_[ascii::lower(added->oid)] = added;
    for (const std::string& name : added->names) by_name_[name] = added;
}

AttributeTypes AttributeTypes::merged(const AttributeTypes& first, const AttributeTypes& others) {
    AttributeTypes result;
    TimeForm times = TimeForm::whole_seconds;
    for (const AttributeType& type : first.types_) {
        result.add(type);
        times = type.time_form;
    }
    for (AttributeType type : others.types_) {
        const bool is_known = result.find_type(type.oid) ||
                              std::ranges::any_of(type.names, [&](const std::string& name) {
                                  return result.find_type(name) != nullptr;
                              });
        type.time_form = times;
        if (!is_known) result.add(type);
    }
    return result;
}

const AttributeType* AttributeTypes::find_type(std::string_view name) const {
    const auto found = by_name_.find(name);
    return found == by_name_.end() ? nullptr : found->second;
}

const AttributeType* AttributeTypes::find(std::string_view description) const {
    return find_type(description.substr(0, description.find(';')));
}

bool AttributeTypes::same(std::string_view one, std::string_view other) const {
    if (ascii::equal_ignoring_case(one, other)) return true;
    const AttributeType* type = find(one);
    if (type ? type != find(other) : find(other) != nullptr) return false;
    if (one.find(';') == one.npos && other.find(';') == other.npos) return type != nullptr;
    const AttributeDescription a(one);
    const AttributeDescription b(other);
    return a.options == b.options && (type || a.type == b.type);
}

}  // namespace orvo::directory
