#pragma once

// The attribute types of a directory's schema: which names mean the same attribute, and what kind
// of values it has.

#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "suite/directory/names/ascii.h"
#include "suite/directory/schema/generalized_time.h"

namespace orvo::directory {

// What an attribute's values are, as far as a caller can tell them apart.
enum class Syntax { text, integer, boolean, time, bytes };

struct AttributeType {
    std::string oid;
    std::vector<std::string> names;  // the first is the preferred one
    Syntax syntax = Syntax::text;
    TimeForm time_form = TimeForm::whole_seconds;  // of a time, as the server takes it
    bool single_value = false;
    // Kept for the directory's own use; it comes only to those who ask for it by name (RFC 4512,
    // 3.4). Some servers do the same with what they construct for a reader and list without a
    // usage, as an attribute of users that nobody modifies.
    bool is_operational = false;
    bool no_user_modification = false;
    // The matching rules, by name or number as the schema has them; empty: none, and such items of
    // a filter are undefined.
    std::string equality = {};
    std::string ordering = {};
    std::string substrings = {};
    std::string syntax_oid = {};  // the number alone, without a length; empty: the schema says none

    const std::string& name() const { return names.empty() ? oid : names.front(); }
};

// An attribute description taken apart: "cn;lang-de" is the type "cn" with the option "lang-de".
// "binary" is a form of transfer, not a different attribute, and is left out of the options.
struct AttributeDescription {
    explicit AttributeDescription(std::string_view description);
    std::string type;                  // in lower case
    std::vector<std::string> options;  // in lower case, sorted
};

// Immutable once built; any thread may read it.
class AttributeTypes {
public:
    AttributeTypes() = default;
    AttributeTypes(AttributeTypes&&) = default;
    AttributeTypes& operator=(AttributeTypes&&) = default;

    // From attribute type descriptions as a subschema entry lists them (RFC 4512, 4.1.2). A type
    // without a syntax or a matching rule of its own has its superior's. A description that cannot
    // be read is left out: its attribute is then one that the schema does not know. `times`: how
    // the schema's server takes them.
    static AttributeTypes from_descriptions(std::span<const std::string> descriptions,
                                            TimeForm times = TimeForm::whole_seconds);

    // The types of `first`, and those of `others` that have neither a name nor a number of theirs;
    // times are in the form of `first`.
    static AttributeTypes merged(const AttributeTypes& first, const AttributeTypes& others);

    bool empty() const { return types_.empty(); }
    const std::deque<AttributeType>& all() const { return types_; }

    // By any of its names or its number, without regard to case, options set aside; nothing for an
    // attribute that the schema does not know.
    const AttributeType* find(std::string_view description) const;

    // Whether two descriptions mean the same attribute with the same options. Types that the schema
    // does not know are compared by name.
    bool same(std::string_view one, std::string_view other) const;

private:
    const AttributeType* find_type(std::string_view name) const;
    void add(const AttributeType& type);

    std::deque<AttributeType> types_;  // does not move what the index points to
    std::unordered_map<std::string, const AttributeType*, ascii::HashIgnoringCase,
                       ascii::EqualIgnoringCase>
        by_name_;
};

}  // namespace orvo::directory
