#include "suite/directory/schema/entry_change.h"

#include <algorithm>
#include <string>
#include <vector>

#include "suite/directory/policy/result_codes.h"
#include "suite/directory/schema/entry_check.h"
#include "suite/directory/schema/equality.h"
#include "suite/directory/schema/given_attribute.h"

namespace orvo::directory {
namespace {

// One change; its description and values have been looked at.
class Application {
public:
    Application(const Schema& schema, const Replacement& change, const ResolvedAttribute& attribute,
                EntryData& entry)
        : schema_(schema),
          change_(change),
          attribute_(attribute),
          attributes_(entry.attributes),
          values_(stored_values(schema, *attribute.type, change.values)),
          held_(std::ranges::find(attributes_, attribute.name, &Attribute::name)) {}

    Refusal run() {
        if (change_.kind == Change::add) return add();
        if (change_.kind == Change::remove) return remove();
        if (is_held()) attributes_.erase(held_);
        if (!values_.empty()) append();
        return {};
    }

private:
    bool is_held() const { return held_ != attributes_.end(); }
    bool has_equality() const { return !attribute_.type->equality.empty(); }
    void append() { attributes_.push_back({attribute_.name, values_}); }

    Refusal add() {
        if (!is_held()) {
            append();
            return {};
        }
        if (!has_equality()) return no_equality("add");
        std::vector<std::string>& values = held_->values;
        for (std::size_t index = 0; index < values_.size(); ++index)
            if (find_value(schema_, *attribute_.type, values, values_[index]))
                return refused(result_code::value_exists, "add",
                               "value #" + std::to_string(index) + " already exists");
        values.insert(values.end(), values_.begin(), values_.end());
        return {};
    }

    Refusal remove() {
        if (!values_.empty() && !has_equality()) return no_equality("delete");
        if (!is_held())
            return refused(result_code::no_such_attribute, "delete", "no such attribute");
        std::vector<std::string> values = held_->values;
        for (const std::string& value : values_)
            if (!find_value(schema_, *attribute_.type, values, value))
                return refused(result_code::no_such_attribute, "delete", "no such value");
        std::erase_if(values, [&](const std::string& value) {
            return find_value(schema_, *attribute_.type, values_, value).has_value();
        });
        if (values_.empty() || values.empty())
            attributes_.erase(held_);
        else
            held_->values = std::move(values);
        return {};
    }

    Refusal refused(int code, std::string_view kind, std::string_view reason) const {
        return {code, "modify/" + std::string(kind) + ": " + attribute_.name + ": " +
                          std::string(reason)};
    }
    Refusal no_equality(std::string_view kind) const {
        return refused(result_code::inappropriate_matching, kind, "no equality matching rule");
    }

    const Schema& schema_;
    const Replacement& change_;
    const ResolvedAttribute& attribute_;
    std::vector<Attribute>& attributes_;
    std::vector<std::string> values_;  // as they are kept
    std::vector<Attribute>::iterator held_;
};

Refusal check_change(const Schema& schema, const Replacement& change,
                     ResolvedAttribute& attribute) {
    if (change.kind == Change::add && change.values.empty())
        return {result_code::protocol_error, "modify/add operation requires values"};
    if (Refusal refusal = resolve(schema, change.attribute, attribute)) return refusal;
    if (change.kind == Change::remove)
        return check_syntax(schema, change.attribute, *attribute.type, change.values);
    return check_values(schema, change.attribute, attribute, change.values);
}

}  // namespace

Refusal apply_changes(const Schema& schema, EntryData& entry,
                      std::span<const Replacement> changes) {
    const ObjectClass* former = structural_class(schema, entry);
    std::vector<ResolvedAttribute> attributes(changes.size());
    for (std::size_t index = 0; index < changes.size(); ++index)
        if (Refusal refusal = check_change(schema, changes[index], attributes[index]))
            return refusal;
    for (std::size_t index = 0; index < changes.size(); ++index)
        if (Refusal refusal = check_writable(changes[index].attribute, *attributes[index].type))
            return refusal;
    for (std::size_t index = 0; index < changes.size(); ++index)
        if (Refusal refusal = Application(schema, changes[index], attributes[index], entry).run())
            return refusal;
    return check_entry(schema, entry, former);
}

}  // namespace orvo::directory
