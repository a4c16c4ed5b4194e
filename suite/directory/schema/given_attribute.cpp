#include "suite/directory/schema/given_attribute.h"

#include <algorithm>
#include <vector>

#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/result_codes.h"
#include "suite/directory/schema/equality.h"
#include "suite/directory/schema/value_syntax.h"

namespace orvo::directory {
namespace {

Refusal refused(int code, std::string_view given, std::string_view reason) {
    return {code, std::string(given) + ": " + std::string(reason)};
}

Refusal refused_value(std::string_view given, std::size_t index, std::string_view reason,
                      int code) {
    return refused(code, given, "value #" + std::to_string(index) + " " + std::string(reason));
}

bool may_be_description(std::string_view given) {
    return ascii::is_alphanumeric(given.front()) && std::ranges::all_of(given, [](char c) {
               return ascii::is_alphanumeric(c) || c == '-' || c == '.' || c == ';';
           });
}

constexpr std::string_view languages = "lang-";

}  // namespace

std::string stored_name(const Schema& schema, std::string_view name) {
    auto parts = try_name_parts(name);
    if (!parts) return std::string(name);
    for (RelativeName& relative : *parts)
        for (NamePart& part : relative)
            if (const AttributeType* type = schema.types.find(part.attribute))
                part.attribute = type->name();
    return joined_name(*parts);
}

Refusal resolve(const Schema& schema, std::string_view given, ResolvedAttribute& resolved) {
    constexpr int undefined = result_code::undefined_attribute_type;
    if (given.empty()) return refused(undefined, given, "empty AttributeDescription");
    if (!may_be_description(given))
        return refused(undefined, given, "AttributeDescription contains inappropriate characters");
    resolved.type = schema.types.find(given);
    if (!resolved.type) return refused(undefined, given, "attribute type undefined");
    const bool needs_binary = needs_binary_option(resolved.type->syntax_oid);

    std::vector<std::string> options;
    for (std::size_t at = given.find(';'); at != std::string_view::npos;) {
        const std::size_t end = given.find(';', at + 1);
        std::string option = ascii::lower(given.substr(at + 1, end - at - 1));
        at = end;
        if (option.empty()) return refused(undefined, given, "zero length option is invalid");
        if (option == "binary" && !needs_binary)
            return refused(undefined, given, "option \"binary\" not supported with type");
        if (option == languages)
            return refused(undefined, given, "inappropriate use of tag range option");
        if (option != "binary" && !option.starts_with(languages))
            return refused(undefined, given, "unrecognized option");
        options.push_back(std::move(option));
    }
    std::ranges::sort(options);
    options.erase(std::unique(options.begin(), options.end()), options.end());
    if (needs_binary && std::ranges::find(options, "binary") == options.end())
        return refused(undefined, given, "requires ;binary transfer");
    resolved.name = resolved.type->name();
    for (const std::string& option : options) resolved.name += ';' + option;
    return {};
}

namespace {

constexpr std::string_view object_class = "2.5.4.0";
constexpr std::string_view distinguished_name = "1.3.6.1.4.1.1466.115.121.1.12";

Validity validity_in(const Schema& schema, const AttributeType& type, std::string_view value) {
    if (type.oid == object_class)
        return schema.classes.find(value) ? Validity::valid : Validity::invalid;
    return validity_of(type.syntax_oid, value, schema);
}

}  // namespace

Refusal check_syntax(const Schema& schema, std::string_view given, const AttributeType& type,
                     std::span<const std::string> values) {
    for (std::size_t index = 0; index < values.size(); ++index) {
        switch (validity_in(schema, type, values[index])) {
            case Validity::valid:
                break;
            case Validity::invalid:
                return refused_value(given, index, "invalid per syntax",
                                     result_code::invalid_syntax);
            case Validity::no_validator:
                return refused(result_code::invalid_syntax, given,
                               "no validator for syntax " + type.syntax_oid);
        }
    }
    return {};
}

Refusal check_values(const Schema& schema, std::string_view given,
                     const ResolvedAttribute& resolved, std::span<const std::string> values) {
    const AttributeType& type = *resolved.type;
    if (Refusal refusal = check_syntax(schema, given, type, values)) return refusal;
    if (type.single_value && values.size() > 1)
        return refused(result_code::constraint_violation, given, "multiple values provided");
    if (const auto repeated = find_repeated(schema, type, values))
        return refused_value(resolved.name, *repeated, "provided more than once",
                             result_code::value_exists);
    return {};
}

std::vector<std::string> stored_values(const Schema& schema, const AttributeType& type,
                                       std::span<const std::string> values) {
    std::vector<std::string> stored(values.begin(), values.end());
    for (std::string& value : stored) {
        if (type.oid == object_class)
            value = schema.classes.find(value)->name();
        else if (type.syntax_oid == distinguished_name)
            value = stored_name(schema, value);
    }
    return stored;
}

Refusal check_writable(std::string_view name, const AttributeType& type) {
    if (!type.no_user_modification) return {};
    return refused(result_code::constraint_violation, name, "no user modification allowed");
}

}  // namespace orvo::directory
