#include "suite/directory/schema/value_syntax.h"

#include <algorithm>
#include <array>

#include "platform/values/text.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/account_state.h"
#include "suite/directory/schema/generalized_time.h"

namespace orvo::directory {
namespace {

constexpr std::string_view arc = "1.3.6.1.4.1.1466.115.121.1.";

bool is_any(std::string_view, const Schema&) { return true; }

bool is_utf8(std::string_view value) { return to_utf8(from_utf8(value)) == value; }

bool is_directory_string(std::string_view value, const Schema&) {
    return !value.empty() && is_utf8(value);
}

bool is_ia5(std::string_view value, const Schema&) {
    return std::ranges::all_of(value, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool is_of_printable(char c) {
    return ascii::is_alphanumeric(c) ||
           std::string_view("'()+,-./:? =").find(c) != std::string_view::npos;
}

bool is_printable(std::string_view value, const Schema&) {
    return !value.empty() && std::ranges::all_of(value, is_of_printable);
}

bool is_country(std::string_view value, const Schema& schema) {
    return value.size() == 2 && is_printable(value, schema);
}

// Printable texts with "$" between them.
bool is_printable_list(std::string_view value, const Schema& schema) {
    while (true) {
        const std::size_t end = value.find('$');
        if (!is_printable(value.substr(0, end), schema)) return false;
        if (end == std::string_view::npos) return true;
        value.remove_prefix(end + 1);
    }
}

bool is_numeric_string(std::string_view value, const Schema&) {
    return !value.empty() &&
           std::ranges::all_of(value, [](char c) { return ascii::is_digit(c) || c == ' '; });
}

bool is_integer(std::string_view value, const Schema&) {
    if (value == "0") return true;
    if (value.starts_with('-')) value.remove_prefix(1);
    return !value.empty() && value.front() != '0' && std::ranges::all_of(value, ascii::is_digit);
}

bool is_boolean(std::string_view value, const Schema&) {
    return value == "TRUE" || value == "FALSE";
}

// The mark of an account that is locked for good lies before the dates of Automation.
bool is_time(std::string_view value, const Schema&) {
    return value == account::locked_for_good ||
           (!value.ends_with('z') && try_date(value).has_value());
}

bool is_postal_address(std::string_view value, const Schema&) {
    if (!is_utf8(value)) return false;
    for (std::size_t at = value.find('\\'); at != std::string_view::npos;
         at = value.find('\\', at + 1)) {
        const std::string_view escape = value.substr(at + 1, 2);
        if (escape != "24" && !ascii::equal_ignoring_case(escape, "5c")) return false;
    }
    return true;
}

bool is_bit_string(std::string_view value, const Schema&) {
    if (value.size() < 3 || value.front() != '\'' || !value.ends_with("'B")) return false;
    value = value.substr(1, value.size() - 3);
    return std::ranges::all_of(value, [](char c) { return c == '0' || c == '1'; });
}

bool is_delivery_method(std::string_view value, const Schema&) {
    constexpr std::array methods = {"any",   "mhs",   "physical", "telex",    "teletex",
                                    "g3fax", "g4fax", "ia5",      "videotex", "telephone"};
    const auto is_method = [&](std::string_view one) {
        return std::ranges::any_of(
            methods, [&](const char* known) { return ascii::equal_ignoring_case(one, known); });
    };
    for (bool is_first = true;; is_first = false) {
        const std::size_t end = value.find('$');
        std::string_view one = value.substr(0, end);
        if (!is_first) one.remove_prefix(std::min(one.find_first_not_of(' '), one.size()));
        if (end != std::string_view::npos) one = one.substr(0, one.find_last_not_of(' ') + 1);
        if (!is_method(one)) return false;
        if (end == std::string_view::npos) return true;
        value.remove_prefix(end + 1);
    }
}

bool is_uuid(std::string_view value, const Schema&) {
    if (value.size() != 36) return false;
    for (std::size_t at = 0; at < value.size(); ++at) {
        const bool is_hyphen = at == 8 || at == 13 || at == 18 || at == 23;
        if (is_hyphen ? value[at] != '-' : !ascii::is_hexadecimal(value[at])) return false;
    }
    return true;
}

bool is_object_identifier(std::string_view value, const Schema& schema) {
    return schema.types.find(value) != nullptr || schema.classes.find(value) != nullptr;
}

bool is_name(std::string_view value, const Schema& schema) {
    const bool is_blank = value.find_first_not_of(' ') == std::string_view::npos;
    return value.empty() || (!is_blank && try_name_of_schema(value, schema).has_value());
}

// A name, and perhaps "#" and a bit string behind it.
bool is_name_and_uid(std::string_view value, const Schema& schema) {
    const std::size_t hash = value.rfind('#');
    if (hash != std::string_view::npos && is_bit_string(value.substr(hash + 1), schema))
        value = value.substr(0, hash);
    return is_name(value, schema);
}

bool is_jpeg(std::string_view value, const Schema&) {
    return value.size() >= 11 && value.starts_with("\xFF\xD8");
}

// A constructed value of a certificate's kind.
bool is_sequence(std::string_view value, const Schema&) {
    return value.size() >= 2 && value.front() == '\x30';
}

using Check = bool (*)(std::string_view value, const Schema& schema);
struct Row {
    std::string_view number;  // below `arc`, or a whole one
    Check check;              // none: no value can be judged
    bool needs_binary = false;
};
constexpr Row rows[] = {
    {"4", is_any},
    {"5", is_any},
    {"6", is_bit_string},
    {"7", is_boolean},
    {"8", is_sequence, true},
    {"9", is_sequence, true},
    {"10", is_sequence, true},
    {"11", is_country},
    {"12", is_name},
    {"13", nullptr},
    {"14", is_delivery_method},
    {"15", is_directory_string},
    {"19", nullptr},
    {"21", nullptr},
    {"22", is_printable_list},
    {"23", nullptr},
    {"24", is_time},
    {"25", nullptr},
    {"26", is_ia5},
    {"27", is_integer},
    {"28", is_jpeg},
    {"34", is_name_and_uid},
    {"36", is_numeric_string},
    {"38", is_object_identifier},
    {"39", is_ia5},
    {"40", is_any},
    {"41", is_postal_address},
    {"42", nullptr},
    {"43", nullptr},
    {"44", is_printable},
    {"49", is_sequence, true},
    {"50", is_printable},
    {"51", nullptr},
    {"52", is_printable_list},
    {"53", nullptr},
    {"1.3.6.1.1.16.1", is_uuid},
    {"1.3.6.1.1.1.0.0", is_ia5},
    {"1.3.6.1.1.1.0.1", is_ia5},
    {"1.3.6.1.4.1.4203.666.2.7", is_any},  // who may act for whom
};

const Row* find_row(std::string_view oid) {
    if (oid.starts_with(arc)) oid.remove_prefix(arc.size());
    const auto found = std::ranges::find(rows, oid, &Row::number);
    return found == std::end(rows) ? nullptr : found;
}

}  // namespace

Validity validity_of(std::string_view syntax_oid, std::string_view value, const Schema& schema) {
    const Row* row = find_row(syntax_oid);
    if (!row || !row->check) return Validity::no_validator;
    return row->check(value, schema) ? Validity::valid : Validity::invalid;
}

bool is_known_syntax(std::string_view syntax_oid) { return find_row(syntax_oid) != nullptr; }

bool needs_binary_option(std::string_view syntax_oid) {
    const Row* row = find_row(syntax_oid);
    return row && row->needs_binary;
}

std::optional<std::vector<RelativeName>> try_name_of_schema(std::string_view name,
                                                            const Schema& schema) {
    auto parts = try_name_parts(name);
    if (!parts) return std::nullopt;
    for (const RelativeName& relative : *parts) {
        std::vector<const AttributeType*> types;
        for (const NamePart& part : relative) {
            const AttributeType* type = schema.types.find(part.attribute);
            if (!type || std::ranges::find(types, type) != types.end() ||
                validity_of(type->syntax_oid, part.value, schema) != Validity::valid)
                return std::nullopt;
            types.push_back(type);
        }
    }
    return parts;
}

}  // namespace orvo::directory
