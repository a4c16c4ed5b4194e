#include "suite/directory/schema/schema_files.h"

#include <algorithm>
#include <set>
#include <utility>

#include "suite/directory/names/ascii.h"
#include "suite/directory/schema/schema_words.h"
#include "suite/directory/schema/value_syntax.h"

namespace orvo::directory {
namespace {

// Why a definition cannot be taken; the reader of the file adds where.
struct Refused : std::runtime_error {
    using std::runtime_error::runtime_error;
};

bool is_number(std::string_view text) {
    return !text.empty() && ascii::is_digit(text.front()) && ascii::is_digit(text.back()) &&
           text.find("..") == text.npos &&
           std::ranges::all_of(text, [](char c) { return ascii::is_digit(c) || c == '.'; });
}

bool is_name(std::string_view text) {
    return !text.empty() && ascii::is_letter(text.front()) &&
           std::ranges::all_of(text, [](char c) { return ascii::is_alphanumeric(c) || c == '-'; });
}

// The lines of a definition as one, and the number of the first.
struct Definition {
    std::string text;
    int line;
};

std::vector<Definition> definitions_in(std::string_view text) {
    std::vector<Definition> found;
    int number = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        ++number;
        const bool goes_on = line.starts_with(' ') || line.starts_with('\t');
        if (goes_on && !found.empty())
            found.back().text += line;
        else
            found.push_back({std::string(line), number});
    }
    std::erase_if(found, [](const Definition& one) {
        return one.text.starts_with('#') || one.text.find_first_not_of(" \t") == std::string::npos;
    });
    return found;
}

std::string_view first_word(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(" \t"));
    text.remove_prefix(word.size());
    return word;
}

std::set<std::string> lower_case(const std::vector<std::string>& names) {
    std::set<std::string> result;
    for (const std::string& name : names) result.insert(ascii::lower(name));
    return result;
}

bool same_name(std::string_view one, std::string_view other) {
    return ascii::equal_ignoring_case(one, other);
}

bool means_the_same(const TypeDescription& one, const TypeDescription& other) {
    const AttributeType& a = one.type;
    const AttributeType& b = other.type;
    return a.oid == b.oid && lower_case(a.names) == lower_case(b.names) &&
           same_name(one.superior, other.superior) && a.syntax_oid == b.syntax_oid &&
           same_name(a.equality, b.equality) && same_name(a.ordering, b.ordering) &&
           same_name(a.substrings, b.substrings) && a.single_value == b.single_value &&
           a.is_operational == b.is_operational && a.no_user_modification == b.no_user_modification;
}

bool means_the_same(const ClassDescription& one, const ClassDescription& other) {
    const ObjectClass& a = one.described;
    const ObjectClass& b = other.described;
    return a.oid == b.oid && lower_case(a.names) == lower_case(b.names) && a.kind == b.kind &&
           lower_case(a.superiors) == lower_case(b.superiors) &&
           lower_case(a.required) == lower_case(b.required) &&
           lower_case(a.allowed) == lower_case(b.allowed);
}

const std::string& number_in(const TypeDescription& read) { return read.type.oid; }
const std::string& number_in(const ClassDescription& read) { return read.described.oid; }
const std::vector<std::string>& names_in(const TypeDescription& read) { return read.type.names; }
const std::vector<std::string>& names_in(const ClassDescription& read) {
    return read.described.names;
}

// Whether it is new; false for one that is there already and means the same.
template <class Description, class Known>
bool add_new(const Description& read, Known& known) {
    if (!is_number(number_in(read)))
        throw Refused("'" + number_in(read) + "' is no object identifier");
    if (!read.unknown_keyword.empty())
        throw Refused("'" + read.unknown_keyword + "' is not understood");
    std::vector<std::string> keys = {number_in(read)};
    for (const std::string& name : names_in(read)) {
        if (!is_name(name)) throw Refused("'" + name + "' is no name");
        keys.push_back(ascii::lower(name));
    }
    for (const std::string& key : keys) {
        const auto found = known.find(key);
        if (found == known.end()) continue;
        if (means_the_same(read, found->second)) return false;
        throw Refused("'" + key + "' is defined already, otherwise");
    }
    for (std::string& key : keys) known.emplace(std::move(key), read);
    return true;
}

template <class Known>
void require_known(const Known& known, std::string_view kind,
                   const std::vector<std::string>& names) {
    for (const std::string& name : names)
        if (!known.contains(ascii::lower(name)))
            throw Refused(std::string(kind) + " '" + name + "' is not defined");
}

}  // namespace

SchemaFiles::SchemaFiles(const Schema& schema) {
    for (const std::string& text : schema.attribute_types) add_type(all_, text);
    for (const std::string& text : schema.object_classes) add_class(all_, text);
}

void SchemaFiles::read(std::string_view name, std::string_view text) {
    Definitions all = all_;
    for (const Definition& definition : definitions_in(text)) {
        try {
            read_definition(all, definition.text);
        } catch (const Refused& refused) {
            throw SchemaFileError(name, definition.line, refused.what());
        }
    }
    all_ = std::move(all);
}

Schema SchemaFiles::schema() && {
    return Schema::from_descriptions(std::move(all_.type_texts), std::move(all_.class_texts));
}

void SchemaFiles::read_definition(Definitions& all, std::string_view definition) {
    const std::string_view word = first_word(definition);
    if (same_name(word, "objectidentifier"))
        add_number(all, definition);
    else if (same_name(word, "attributetype"))
        add_type(all, with_number(all, definition));
    else if (same_name(word, "objectclass"))
        add_class(all, with_number(all, definition));
    else
        throw Refused("'" + std::string(word) + "' is not understood");
}

void SchemaFiles::add_number(Definitions& all, std::string_view definition) {
    const std::string_view name = first_word(definition);
    const std::string_view value = first_word(definition);
    if (!is_name(name)) throw Refused("'" + std::string(name) + "' is no name");
    const std::string number = number_of(all, value);
    if (!is_number(number)) throw Refused("'" + std::string(value) + "' is no object identifier");
    const auto [known, is_new] = all.numbers.try_emplace(ascii::lower(name), number);
    if (!is_new && known->second != number)
        throw Refused("'" + std::string(name) + "' is defined already, otherwise");
}

// "Name:4" and "Name" stand for numbers; anything else is its own.
std::string SchemaFiles::number_of(const Definitions& all, std::string_view word) {
    const std::size_t colon = std::min(word.find(':'), word.size());
    const auto found = all.numbers.find(ascii::lower(word.substr(0, colon)));
    if (found == all.numbers.end()) return std::string(word);
    std::string number = found->second;
    if (colon < word.size()) number += '.' + std::string(word.substr(colon + 1));
    return number;
}

// A word that is a number or stands for one, perhaps with a length ("1.2{32}"), as the number, and
// without quotes; any other as it is, for quotes may keep together what is more than a word.
std::string SchemaFiles::written_out(const Definitions& all, std::string_view word) {
    const std::string number = number_of(all, schema::unquoted(word));
    const bool is_one_word = number.find_first_of(" \t\r\n()'") == number.npos;
    const std::string_view digits = std::string_view(number).substr(0, number.find('{'));
    return is_one_word && is_number(digits) ? number : std::string(word);
}

// The description with single blanks between its words, and the numbers of it and its syntax
// written out.
std::string SchemaFiles::with_number(const Definitions& all, std::string_view description) {
    schema::Words words(description);
    std::string result;
    std::string before;
    int count = 0;
    while (const std::optional<std::string_view> word = words.next()) {
        if (++count > 1) result += ' ';
        const bool is_number = count == 2 || before == "SYNTAX";
        result += is_number ? written_out(all, *word) : std::string(*word);
        before = *word;
    }
    return result;
}

void SchemaFiles::add_type(Definitions& all, const std::string& text) {
    const std::optional<TypeDescription> read = try_type_description(text);
    if (!read) throw Refused("the definition of an attribute type cannot be read");
    if (!read->superior.empty()) require_known(all.types, "attribute type", {read->superior});
    if (read->type.syntax_oid.empty() && read->superior.empty())
        throw Refused("the attribute type has neither syntax nor superior");
    if (!read->type.syntax_oid.empty() && !is_known_syntax(read->type.syntax_oid))
        throw Refused("syntax '" + read->type.syntax_oid + "' is not known");
    if (add_new(*read, all.types)) all.type_texts.push_back(text);
}

void SchemaFiles::add_class(Definitions& all, const std::string& text) {
    const std::optional<ClassDescription> read = try_class_description(text);
    if (!read) throw Refused("the definition of an object class cannot be read");
    require_known(all.classes, "object class", read->described.superiors);
    require_known(all.types, "attribute type", read->described.required);
    require_known(all.types, "attribute type", read->described.allowed);
    if (add_new(*read, all.classes)) all.class_texts.push_back(text);
}

}  // namespace orvo::directory
