#include "suite/directory/schema/entry_check.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "suite/directory/names/ascii.h"
#include "suite/directory/names/name_parts.h"
#include "suite/directory/policy/result_codes.h"
#include "suite/directory/schema/equality.h"
#include "suite/directory/schema/given_attribute.h"
#include "suite/directory/schema/value_syntax.h"

namespace orvo::directory {
namespace {

using Classes = std::vector<const ObjectClass*>;

constexpr std::string_view object_class = "objectClass";
constexpr std::string_view extensible_object = "1.3.6.1.4.1.1466.101.120.111";

const Attribute* find(const EntryData& entry, std::string_view name) {
    const auto found = std::ranges::find_if(entry.attributes, [&](const Attribute& held) {
        return ascii::equal_ignoring_case(held.name, name);
    });
    return found == entry.attributes.end() ? nullptr : &*found;
}

std::string quoted(std::string_view name) { return "'" + std::string(name) + "'"; }

Refusal violation(std::string message) {
    return {result_code::object_class_violation, std::move(message)};
}
Refusal naming_violation(std::string message) {
    return {result_code::naming_violation, std::move(message)};
}
Refusal invalid_name() { return {result_code::invalid_name, "invalid DN"}; }

// The classes of an entry, and the structural one.
struct ClassesOfEntry {
    Classes all;
    const ObjectClass* structural = nullptr;
};

Refusal read_classes(const Schema& schema, const EntryData& entry, ClassesOfEntry& classes) {
    const Attribute* held = find(entry, object_class);
    if (!held) return violation("no objectClass attribute");
    for (const std::string& name : held->values) {
        const ObjectClass* described = schema.classes.find(name);
        if (!described) return violation("unrecognized objectClass " + quoted(name));
        classes.all.push_back(described);
        if (described->kind != ClassKind::structural) continue;
        const ObjectClass*& structural = classes.structural;
        if (!structural || schema.rules_of(*described).is_or_inherits(*structural))
            structural = described;
        else if (!schema.rules_of(*structural).is_or_inherits(*described))
            return violation("invalid structural object class chain (" + structural->name() + "/" +
                             described->name() + ")");
    }
    if (!classes.structural) return violation("no structural object class provided");
    return {};
}

Refusal check_single_values(const Schema& schema, const EntryData& entry) {
    for (const Attribute& held : entry.attributes) {
        if (held.values.size() < 2) continue;
        const AttributeType* type = schema.types.find(held.name);
        if (type && type->single_value)
            return {result_code::constraint_violation,
                    "attribute " + quoted(held.name) + " cannot have multiple values"};
    }
    return {};
}

// Whether the type may name an entry.
Refusal check_naming_type(const AttributeType& type) {
    const std::string name = quoted(type.name());
    if (type.is_operational)
        return naming_violation("naming attribute " + name + " is operational");
    if (type.equality.empty())
        return naming_violation("naming attribute " + name + " has no equality matching rule");
    return {};
}

Refusal check_name(const Schema& schema, const EntryData& entry) {
    const auto parts = try_name_of_schema(entry.name, schema);
    if (!parts || parts->empty()) return invalid_name();
    for (const NamePart& part : parts->front()) {
        const AttributeType& type = *schema.types.find(part.attribute);
        if (Refusal refusal = check_naming_type(type)) return refusal;
        const std::string name = "naming attribute " + quoted(type.name());
        const Attribute* held = find(entry, type.name());
        if (!held) return naming_violation(name + " is not present in entry");
        if (!find_value(schema, type, held->values, part.value))
            return naming_violation("value of " + name + " is not present in entry");
    }
    return {};
}

Refusal add_name_values(const Schema& schema, const RelativeName& parts, EntryData& entry) {
    for (const NamePart& part : parts) {
        const AttributeType& type = *schema.types.find(part.attribute);
        if (Refusal refusal = check_naming_type(type)) return refusal;
        const auto held = std::ranges::find(entry.attributes, type.name(), &Attribute::name);
        if (held == entry.attributes.end()) {
            entry.attributes.push_back({type.name(), {part.value}});
        } else if (!find_value(schema, type, held->values, part.value)) {
            if (type.single_value)
                return naming_violation("value of single-valued naming attribute " +
                                        quoted(type.name()) +
                                        " conflicts with value present in entry");
            held->values.push_back(part.value);
        }
    }
    return {};
}

bool has(const Schema& schema, const EntryData& entry, const AttributeType& type) {
    return std::ranges::any_of(entry.attributes, [&](const Attribute& held) {
        return schema.types.find(held.name) == &type;
    });
}

bool has_subclass(const Schema& schema, const Classes& classes, const ObjectClass& superior) {
    return std::ranges::any_of(classes, [&](const ObjectClass* other) {
        return other != &superior && schema.rules_of(*other).is_or_inherits(superior);
    });
}

Refusal check_class(const Schema& schema, const EntryData& entry, const Classes& classes,
                    const ObjectClass& described) {
    if (described.kind == ClassKind::abstract) {
        if (has_subclass(schema, classes, described)) return {};
        return violation("instantiation of abstract objectClass " + quoted(described.name()) +
                         " not allowed");
    }
    for (const AttributeType* type : schema.rules_of(described).required)
        if (!has(schema, entry, *type))
            return violation("object class " + quoted(described.name()) + " requires attribute " +
                             quoted(type->name()));
    return {};
}

Refusal check_allowed(const Schema& schema, const EntryData& entry, const Classes& classes) {
    const bool allows_all = std::ranges::any_of(
        classes, [](const ObjectClass* one) { return one->oid == extensible_object; });
    for (const Attribute& held : entry.attributes) {
        const AttributeType* type = schema.types.find(held.name);
        const bool is_allowed = type && (type->is_operational || allows_all ||
                                         std::ranges::any_of(classes, [&](const ObjectClass* one) {
                                             return schema.rules_of(*one).allows(*type);
                                         }));
        if (!is_allowed) return violation("attribute " + quoted(held.name) + " not allowed");
    }
    return {};
}

// What comes before an entry's name is looked at.
Refusal check_structure(const Schema& schema, const EntryData& entry, ClassesOfEntry& classes) {
    if (Refusal refusal = check_single_values(schema, entry)) return refusal;
    return read_classes(schema, entry, classes);
}

Refusal check_contents(const Schema& schema, const EntryData& entry, const Classes& classes) {
    for (const ObjectClass* described : classes)
        if (Refusal refusal = check_class(schema, entry, classes, *described)) return refusal;
    return check_allowed(schema, entry, classes);
}

// Types and values of all attributes, one after another as the server goes.
Refusal check_given(const Schema& schema, const EntryData& entry,
                    std::vector<ResolvedAttribute>& resolved) {
    for (const Attribute& given : entry.attributes) {
        if (given.values.empty())
            return {result_code::protocol_error, "no values for attribute type"};
        ResolvedAttribute& one = resolved.emplace_back();
        if (Refusal refusal = resolve(schema, given.name, one)) return refusal;
        if (Refusal refusal = check_values(schema, given.name, one, given.values)) return refusal;
    }
    return {};
}

void spell_as_stored(const Schema& schema, const std::vector<ResolvedAttribute>& resolved,
                     EntryData& entry) {
    for (std::size_t index = 0; index < resolved.size(); ++index) {
        Attribute& given = entry.attributes[index];
        given.name = resolved[index].name;
        given.values = stored_values(schema, *resolved[index].type, given.values);
    }
}

Refusal check_given_once(const EntryData& entry) {
    for (std::size_t index = 1; index < entry.attributes.size(); ++index) {
        const std::string& name = entry.attributes[index].name;
        const auto end = entry.attributes.begin() + static_cast<std::ptrdiff_t>(index);
        if (std::any_of(entry.attributes.begin(), end,
                        [&](const Attribute& other) { return other.name == name; }))
            return {result_code::value_exists,
                    "attribute " + quoted(name) + " provided more than once"};
    }
    return {};
}

enum class Origin { user, directory };

Refusal check_added(const Schema& schema, Origin origin, EntryData& entry) {
    const auto parts = try_name_of_schema(entry.name, schema);
    if (!parts || parts->empty()) return invalid_name();
    std::vector<ResolvedAttribute> resolved;
    if (Refusal refusal = check_given(schema, entry, resolved)) return refusal;
    if (origin == Origin::user)
        for (std::size_t index = 0; index < resolved.size(); ++index)
            if (Refusal refusal =
                    check_writable(entry.attributes[index].name, *resolved[index].type))
                return refusal;
    spell_as_stored(schema, resolved, entry);
    if (Refusal refusal = check_given_once(entry)) return refusal;
    ClassesOfEntry classes;
    if (Refusal refusal = check_structure(schema, entry, classes)) return refusal;
    if (Refusal refusal = add_name_values(schema, parts->front(), entry)) return refusal;
    entry.name = stored_name(schema, entry.name);
    return check_contents(schema, entry, classes.all);
}

}  // namespace

Refusal check_new_entry(const Schema& schema, EntryData& entry) {
    return check_added(schema, Origin::user, entry);
}

Refusal check_loaded_entry(const Schema& schema, EntryData& entry) {
    return check_added(schema, Origin::directory, entry);
}

Refusal check_entry(const Schema& schema, const EntryData& entry, const ObjectClass* former) {
    ClassesOfEntry classes;
    if (Refusal refusal = check_structure(schema, entry, classes)) return refusal;
    if (former && former != classes.structural)
        return {result_code::class_change_prohibited,
                "structural object class modification from " + quoted(former->name()) + " to " +
                    quoted(classes.structural->name()) + " not allowed"};
    if (Refusal refusal = check_name(schema, entry)) return refusal;
    return check_contents(schema, entry, classes.all);
}

const ObjectClass* structural_class(const Schema& schema, const EntryData& entry) {
    ClassesOfEntry classes;
    return read_classes(schema, entry, classes) ? nullptr : classes.structural;
}

}  // namespace orvo::directory
