#include "suite/directory/ldif/ldif_reader.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "suite/directory/ldif/base64.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory {
namespace {

constexpr std::string_view end_of_change = "-";

bool is(std::string_view name, std::string_view expected) {
    return ascii::equal_ignoring_case(name, expected);
}

bool is_description(std::string_view name) {
    return !name.empty() && ascii::is_alphanumeric(name.front()) &&
           std::ranges::all_of(name, [](char c) {
               return ascii::is_alphanumeric(c) || c == '-' || c == '.' || c == ';' || c == '_';
           });
}

std::string value_of(std::string_view rest, std::int64_t line) {
    const bool is_encoded = rest.starts_with(':');
    if (rest.starts_with('<'))
        throw LdifError(line, "values that stand in another file are not read");
    if (is_encoded) rest.remove_prefix(1);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    if (!is_encoded) return std::string(rest);
    std::optional<std::string> octets = try_from_base64(rest);
    if (!octets) throw LdifError(line, "the value is not base64");
    return *std::move(octets);
}

}  // namespace

LdifReader::Field LdifReader::field_of(const LdifLine& line) {
    if (line.text == end_of_change) return {line.text, {}, line.number};
    const std::size_t colon = line.text.find(':');
    if (colon == std::string::npos) throw LdifError(line.number, "there is no ':'");
    std::string name = line.text.substr(0, colon);
    if (!is_description(name)) throw LdifError(line.number, "'" + name + "' is no attribute");
    return {std::move(name), value_of(std::string_view(line.text).substr(colon + 1), line.number),
            line.number};
}

std::optional<LdifReader::Field> LdifReader::next_field() {
    if (is_at_end_) return std::nullopt;
    const std::optional<LdifLine> line = lines_.next();
    is_at_end_ = !line || line->text.empty();
    if (is_at_end_) return std::nullopt;
    return field_of(*line);
}

std::optional<LdifReader::Field> LdifReader::first_field() {
    std::optional<LdifLine> line;
    do line = lines_.next();
    while (line && line->text.empty());
    is_at_end_ = !line;
    if (!line) return std::nullopt;
    return field_of(*line);
}

std::optional<LdifRecord> LdifReader::next() {
    std::optional<Field> field = first_field();
    if (field && !std::exchange(is_begun_, true) && is(field->name, "version")) {
        if (field->value != "1")
            throw LdifError(field->line, "version '" + field->value + "' is not known");
        field = first_field();
    }
    if (!field) return std::nullopt;
    if (!is(field->name, "dn")) throw LdifError(field->line, "a record begins with 'dn:'");
    LdifRecord record;
    record.line = field->line;
    record.entry.name = std::move(field->value);
    field = next_field();
    if (field && is(field->name, "changetype"))
        read_change(*field, record);
    else
        read_attributes(std::move(field), record.entry);
    return record;
}

void LdifReader::read_change(const Field& type, LdifRecord& record) {
    if (is(type.value, "add")) {
        record.kind = LdifRecord::Kind::add;
        read_attributes(next_field(), record.entry);
    } else if (is(type.value, "delete")) {
        record.kind = LdifRecord::Kind::remove;
        if (const std::optional<Field> field = next_field())
            throw LdifError(field->line, "nothing is expected here");
    } else if (is(type.value, "modify")) {
        record.kind = LdifRecord::Kind::modify;
        read_modifications(record);
    } else if (is(type.value, "modrdn") || is(type.value, "moddn")) {
        throw LdifError(type.line, "entries are not renamed");
    } else {
        throw LdifError(type.line, "'" + type.value + "' is no kind of change");
    }
}

void LdifReader::read_attributes(std::optional<Field> field, EntryData& entry) {
    for (; field; field = next_field()) {
        if (field->name == end_of_change) throw LdifError(field->line, "'-' is not expected here");
        if (is(field->name, "control")) throw LdifError(field->line, "controls are not read");
        if (is(field->name, "dn") || is(field->name, "changetype"))
            throw LdifError(field->line, "'" + field->name + "' is not expected here");
        std::vector<Attribute>& attributes = entry.attributes;
        const auto same = [&](const Attribute& held) { return is(held.name, field->name); };
        // As a rule it is the last one.
        const auto held = std::find_if(attributes.rbegin(), attributes.rend(), same);
        if (held == attributes.rend())
            attributes.push_back({std::move(field->name), {std::move(field->value)}});
        else
            held->values.push_back(std::move(field->value));
    }
}

void LdifReader::read_modifications(LdifRecord& record) {
    while (const std::optional<Field> kind = next_field())
        record.changes.push_back(modification(*kind));
}

Replacement LdifReader::modification(const Field& kind) {
    Replacement change{kind.value, {}, Change::replace};
    if (is(kind.name, "add"))
        change.kind = Change::add;
    else if (is(kind.name, "delete"))
        change.kind = Change::remove;
    else if (!is(kind.name, "replace"))
        throw LdifError(kind.line, "'add:', 'delete:' or 'replace:' is expected here");
    if (!is_description(kind.value))
        throw LdifError(kind.line, "'" + kind.value + "' is no attribute");
    for (std::optional<Field> field = next_field(); field && field->name != end_of_change;
         field = next_field()) {
        if (!is(field->name, change.attribute))
            throw LdifError(field->line, "a value of '" + change.attribute + "' is expected here");
        change.values.push_back(std::move(field->value));
    }
    return change;
}

}  // namespace orvo::directory
