#pragma once

// The numbers that attributes have in a store's file.

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "suite/directory/embedded/store/sqlite.h"
#include "suite/directory/filters/matching_rule.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory::embedded {

using AttributeNumber = std::int64_t;

struct StoredAttribute {
    std::string name;      // as the schema prefers it, and its options
    AttributeNumber type;  // the number of the same without options
    // The rule by which its values stand in the index; nothing: they do not.
    std::optional<MatchingRule> indexed_by;
};

// Some of the attributes that a store's file has numbers for.
class AttributeSelection {
public:
    bool holds(AttributeNumber number) const {
        return static_cast<std::size_t>(number) < held_.size() &&
               held_[static_cast<std::size_t>(number)];
    }
    std::size_t size() const { return size_; }

private:
    friend class AttributeNames;
    std::vector<bool> held_;
    std::size_t size_ = 0;
};

// As the store's entries call an attribute, whatever its spelling: by the name that the schema
// prefers, with its options in order. Of an attribute that the schema does not know the case is
// left as it is.
std::string stored_name(std::string_view description, const AttributeTypes& types);

// How one connection knows them: it reads the table `attribute` as far as it has not yet. Numbers
// are never reused, but those that an undone transaction has given out.
class AttributeNames {
public:
    // Both must live as long.
    AttributeNames(Database& database, const Schema& schema)
        : database_(database), schema_(schema) {}

    // Within a transaction, whose first look at the file this may be.
    void refresh();
    // Those with higher numbers were given out by a transaction that is undone.
    AttributeNumber last() const { return last_; }
    void forget_after(AttributeNumber last);

    std::size_t size() const { return by_number_.size(); }
    // By its description in any spelling; `number_of` gives it a number where it has none yet.
    std::optional<AttributeNumber> find(std::string_view description) const;
    AttributeNumber number_of(std::string_view description);

    // All with the types of these, options included.
    AttributeSelection of_types(const std::vector<std::string>& descriptions) const;

    // Raises result code 80 for a number that nobody has given out: the file is damaged.
    const StoredAttribute& operator[](AttributeNumber number) const;

private:
    void keep(AttributeNumber number, std::string name);

    Database& database_;
    const Schema& schema_;
    AttributeNumber last_ = 0;
    std::map<AttributeNumber, StoredAttribute> by_number_;
    std::unordered_map<std::string, AttributeNumber> by_name_;
    mutable std::unordered_map<std::string, AttributeNumber> by_spelling_;
};

}  // namespace orvo::directory::embedded
