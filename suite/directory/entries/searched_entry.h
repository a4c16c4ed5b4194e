#pragma once

// An entry that a search has found, as a filter looks at it.

#include <optional>
#include <string_view>
#include <vector>

#include "suite/directory/entries/entry_order.h"
#include "suite/directory/filters/filter_match.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/names/name_parts.h"
#include "suite/directory/schema/attribute_types.h"

namespace orvo::directory {

// Keeps both; an attribute that names its entry counts, in the order of lists, with the value in
// the name alone: each entry has one place in a list.
class SearchedEntry final : public MatchedEntry {
public:
    // `preferred`: the entry and who asks call attributes alike, but for the case.
    enum class Names { any, preferred };
    SearchedEntry(const EntryData& entry, const AttributeTypes& types, Names names = Names::any)
        : entry_(entry), types_(types), names_(names), naming_(naming_part(entry.name)) {}

    void append_values(std::string_view attribute,
                       std::vector<std::string_view>& values) const override {
        for (const Attribute& held : entry_.attributes)
            if (is_same(held.name, attribute))
                values.insert(values.end(), held.values.begin(), held.values.end());
    }
    void append_listed_values(std::string_view attribute,
                              std::vector<std::string_view>& values) const override {
        if (types_.same(naming_.attribute, attribute))
            values.push_back(naming_.value);
        else
            append_values(attribute, values);
    }
    void append_attributes(std::vector<std::string_view>& names) const override {
        for (const Attribute& held : entry_.attributes) names.push_back(held.name);
    }
    void append_name_values(std::string_view attribute,
                            std::vector<std::string_view>& values) const override {
        for (const RelativeName& relative : name_parts())
            for (const NamePart& part : relative)
                if (types_.same(part.attribute, attribute)) values.push_back(part.value);
    }
    void append_name_attributes(std::vector<std::string_view>& names) const override {
        for (const RelativeName& relative : name_parts())
            for (const NamePart& part : relative) names.push_back(part.attribute);
    }

private:
    bool is_same(std::string_view held, std::string_view attribute) const {
        return names_ == Names::preferred ? ascii::equal_ignoring_case(held, attribute)
                                          : types_.same(held, attribute);
    }

    // Few filters ask for them.
    const std::vector<RelativeName>& name_parts() const {
        if (!parts_) parts_ = try_name_parts(entry_.name).value_or(std::vector<RelativeName>());
        return *parts_;
    }

    const EntryData& entry_;
    const AttributeTypes& types_;
    const Names names_;
    NamingPart naming_;
    mutable std::optional<std::vector<RelativeName>> parts_;
};

}  // namespace orvo::directory
