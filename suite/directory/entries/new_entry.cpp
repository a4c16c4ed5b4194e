#include "suite/directory/entries/new_entry.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "platform/interfaces/call.h"
#include "platform/objects/dictionary/dictionary_contract.h"
#include "platform/values/array_shape.h"
#include "platform/values/failure.h"
#include "platform/values/values.h"
#include "platform/values/wiped.h"
#include "suite/directory/entries/given_password.h"
#include "suite/directory/filters/filter.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/schema/attribute_values.h"

namespace orvo::directory {
namespace {

constexpr const char* object_class = "objectClass";

bool is_empty_text(const Variant& value) { return value.is_text() && value.text_view().empty(); }

void append_classes(std::vector<std::string>& classes, const Variant& value) {
    if (value.is_array()) {
        for (const Variant& element : value.to<Values>()) append_classes(classes, element);
    } else if (!value.is_empty()) {
        if (Text name = value.to<Text>(); !name.empty()) classes.push_back(to_utf8(name));
    }
}

// Without the blanks at its ends, which servers ignore. (Other white space there they do not.)
std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

// Whether an item of a filter that is put together without escaping asks for just this value.
bool is_itself_in_filter(TextView item, std::string_view value) {
    try {
        const Filter read = Filter::parse(u"(" + Text(item) + u")");
        return read.kind == Filter::Kind::equality && read.value == trimmed(value);
    } catch (const Failure&) {  // it cannot be read at all
        return false;
    }
}

}  // namespace

std::vector<GivenAttribute> given_attributes(const Object& dictionary) {
    if (!dictionary) raise_runtime_error(runtime_error::object_not_set);
    const auto entries = Ref<Dictionary>::from(dictionary);
    const Values names = call<&Dictionary::Keys>(entries).to<Values>();
    const Wiped values(call<&Dictionary::Items>(entries));
    std::vector<GivenAttribute> given;
    given.reserve(static_cast<std::size_t>(names.count()));
    for (std::int32_t index = 0; index < names.count(); ++index) {
        const Variant& name = names[names.lower_bound() + index];
        if (!name.is_text()) raise_runtime_error(runtime_error::type_mismatch);
        require_whole(name.text_view());
        given.push_back(
            {to_utf8(name.text_view()), element_at(values.value, static_cast<std::size_t>(index))});
    }
    return given;
}

NewEntry::NewEntry(const std::vector<GivenAttribute>& given, const Variant& classes,
                   const std::string& naming_attribute, const AttributeTypes& types,
                   const ObjectClasses& object_classes) {
    for (const auto& [name, value] : given) {
        const AttributeType* type = types.find(name);
        if (value.is_text() && types.same(name, naming_attribute))
            require_well_formed(value.text_view());
        if (is_password(name)) {
            is_login = true;
            password = password_in(value);
        } else if (!is_empty_text(value)) {
            append(name, encode_values(type, value), types);
        } else if (!type || type->syntax == Syntax::text) {
            left_empty.push_back(name);
        } else if (type->syntax == Syntax::integer) {
            append(name, {"0"}, types);
        }
    }
    if (!find(object_class, types)) {
        std::vector<std::string> names;
        append_classes(names, classes);
        append(object_class, std::move(names), types);
    }
    look_at_empty(object_classes, types);
    name_by(naming_attribute, types);
}

void NewEntry::look_at_empty(const ObjectClasses& object_classes, const AttributeTypes& types) {
    const auto is_among = [&](const std::vector<std::string>& names, const std::string& name) {
        return std::ranges::any_of(names,
                                   [&](const auto& other) { return types.same(other, name); });
    };
    std::vector<std::string> without_value;
    for (const std::string& name : left_empty)
        if (!find(name, types) && !is_among(without_value, name)) without_value.push_back(name);
    left_empty = std::move(without_value);

    const Attribute* classes = find(object_class, types);
    if (!classes) return;
    const std::vector<std::string> required = object_classes.required(classes->values);
    std::ranges::copy_if(left_empty, std::back_inserter(required_empty),
                         [&](const std::string& name) { return is_among(required, name); });
}

Attribute* NewEntry::find(const std::string& name, const AttributeTypes& types) {
    const auto found =
        std::find_if(attributes.begin(), attributes.end(),
                     [&](const Attribute& attribute) { return types.same(attribute.name, name); });
    return found == attributes.end() ? nullptr : &*found;
}

void NewEntry::append(const std::string& name, std::vector<std::string> values,
                      const AttributeTypes& types) {
    if (values.empty()) return;
    Attribute* attribute = find(name, types);
    if (!attribute) {
        attributes.push_back({name, std::move(values)});
        return;
    }
    std::vector<std::string>& held = attribute->values;
    for (std::string& value : values)
        if (std::find(held.begin(), held.end(), value) == held.end())
            held.push_back(std::move(value));
}

void NewEntry::name_by(const std::string& naming_attribute, const AttributeTypes& types) {
    const Attribute* naming = find(naming_attribute, types);
    if (!naming || naming->values.size() != 1)
        raise_code(result_code::invalid_name,
                   "The naming attribute '" + naming_attribute + "' must have one value.");
    const Text value = from_utf8(naming->values.front());
    const Text attribute = from_utf8(naming_attribute) + u"=";
    written_name = attribute + value;
    relative_name = attribute + escaped_value(value);
    const auto name = DistinguishedName::try_parse(relative_name);
    if (!name || name->depth() != 1)
        raise_code(result_code::invalid_name,
                   "'" + naming_attribute + "' cannot be the naming attribute.");
    const auto put_together = DistinguishedName::try_parse(written_name);
    if (put_together && put_together != name)
        raise_code(result_code::invalid_name, "The name " + quoted_name(naming->values.front()) +
                                                  " could be taken for that of another entry.");
    if (!is_login && !is_itself_in_filter(written_name, naming->values.front()))
        raise_code(result_code::invalid_name, "The name " + quoted_name(naming->values.front()) +
                                                  " would mean something else in a filter.");
}

Text NewEntry::name_below(TextView container) const {
    const Text put_together = written_name + u"," + Text(container);
    if (put_together.size() > longest_name)
        raise_code(result_code::invalid_name, "With its container it has more than " +
                                                  std::to_string(longest_name) + " characters.");
    const Text name = entry_name(relative_name, container);
    if (!is_login) return name;
    const Text read = full_name(put_together);
    if (DistinguishedName::try_parse(read) != DistinguishedName::try_parse(name))
        raise_code(result_code::invalid_name,
                   "Nobody could log in as " + quoted_name(to_utf8(written_name)) +
                       ": with its container it is read as " + quoted_name(to_utf8(read)) + ".");
    return name;
}

}  // namespace orvo::directory
