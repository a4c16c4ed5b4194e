#include "suite/directory/schema/attribute_types.h"

#include <algorithm>
#include <optional>

#include "suite/directory/names/ascii.h"
#include "suite/directory/schema/schema_words.h"

namespace orvo::directory {
namespace {

using schema::read_values;
using schema::unquoted;
using schema::Words;

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

// A description as written: the superior is still a name.
struct Description {
    AttributeType type;
    std::string superior;  // in lower case
    bool has_syntax = false;
};

bool has_no_value(std::string_view keyword) {
    return keyword == "OBSOLETE" || keyword == "SINGLE-VALUE" || keyword == "COLLECTIVE" ||
           keyword == "NO-USER-MODIFICATION";
}

std::optional<Description> read_description(std::string_view text) {
    Words words(text);
    if (words.next() != "(") return std::nullopt;
    Description result;
    std::optional<std::string_view> word = words.next();
    if (!word || *word == "(" || *word == ")") return std::nullopt;
    result.type.oid = unquoted(*word);
    while ((word = words.next()) && *word != ")") {
        if (*word == "SINGLE-VALUE") result.type.single_value = true;
        if (*word == "NO-USER-MODIFICATION") result.type.no_user_modification = true;
        if (has_no_value(*word)) continue;
        std::vector<std::string> values;
        if (!read_values(words, values)) return std::nullopt;
        if (*word == "NAME") {
            result.type.names = std::move(values);
        } else if (*word == "SUP" && !values.empty()) {
            result.superior = ascii::lower(values.front());
        } else if (*word == "EQUALITY" && !values.empty()) {
            result.type.equality = values.front();
        } else if (*word == "ORDERING" && !values.empty()) {
            result.type.ordering = values.front();
        } else if (*word == "SUBSTR" && !values.empty()) {
            result.type.substrings = values.front();
        } else if (*word == "SYNTAX" && !values.empty()) {
            const std::string& syntax = values.front();
            result.type.syntax = syntax_of(syntax.substr(0, syntax.find('{')));
            result.has_syntax = true;
        } else if (*word == "USAGE" && !values.empty()) {
            result.type.is_operational = values.front() != "userApplications";
        }
    }
    if (!word) return std::nullopt;
    return result;
}

// A schema that names a type as its own superior, however indirectly, ends the walk here.
constexpr int deepest_inheritance = 32;

// Fills in what the type has not said itself.
void inherit(AttributeType& type, bool& has_syntax, const Description& superior) {
    if (!has_syntax && superior.has_syntax) type.syntax = superior.type.syntax;
    has_syntax = has_syntax || superior.has_syntax;
    if (type.equality.empty()) type.equality = superior.type.equality;
    if (type.ordering.empty()) type.ordering = superior.type.ordering;
    if (type.substrings.empty()) type.substrings = superior.type.substrings;
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
    std::unordered_map<std::string, Description> read;
    std::unordered_map<std::string, std::string> oid_of;
    for (const std::string& text : descriptions) {
        std::optional<Description> description = read_description(text);
        if (!description) continue;
        std::string oid = ascii::lower(description->type.oid);
        for (const std::string& name : description->type.names) oid_of[ascii::lower(name)] = oid;
        read.insert_or_assign(std::move(oid), std::move(*description));
    }
    auto find_read = [&](const std::string& name) -> const Description* {
        const auto named = oid_of.find(name);
        const auto found = read.find(named == oid_of.end() ? name : named->second);
        return found == read.end() ? nullptr : &found->second;
    };
    for (auto& [oid, description] : read) {
        AttributeType& type = result.types_.emplace_back(description.type);
        type.time_form = times;
        const Description* owner = &description;
        bool has_syntax = description.has_syntax;
        for (int depth = 0; owner && depth < deepest_inheritance; ++depth) {
            inherit(type, has_syntax, *owner);
            owner = owner->superior.empty() ? nullptr : find_read(owner->superior);
        }
        result.by_name_[oid] = &type;
        for (const std::string& name : type.names) result.by_name_[ascii::lower(name)] = &type;
    }
    return result;
}

const AttributeType* AttributeTypes::find_type(const std::string& lower_case_name) const {
    const auto found = by_name_.find(lower_case_name);
    return found == by_name_.end() ? nullptr : found->second;
}

const AttributeType* AttributeTypes::find(std::string_view description) const {
    return find_type(ascii::lower(description.substr(0, description.find(';'))));
}

bool AttributeTypes::same(std::string_view one, std::string_view other) const {
    const AttributeDescription a(one);
    const AttributeDescription b(other);
    if (a.options != b.options) return false;
    if (a.type == b.type) return true;
    const AttributeType* type = find_type(a.type);
    return type && type == find_type(b.type);
}

}  // namespace orvo::directory
