#include "suite/directory/schema/descriptions.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "suite/directory/schema/schema_words.h"

namespace orvo::directory {
namespace {

using schema::read_values;
using schema::unquoted;
using schema::Words;

// Reads "( number KEYWORD value KEYWORD ... )". `take_flag` says whether a keyword has no value and
// keeps it then, `take` whether it knows one that has; others are kept in `unknown_keyword`. The
// number, or nothing where the text cannot be read.
template <class TakeFlag, class Take>
std::optional<std::string> read_description(std::string_view text, const TakeFlag& take_flag,
                                            const Take& take, std::string& unknown_keyword) {
    Words words(text);
    if (words.next() != "(") return std::nullopt;
    std::optional<std::string_view> word = words.next();
    if (!word || *word == "(" || *word == ")") return std::nullopt;
    std::string number(unquoted(*word));
    while ((word = words.next()) && *word != ")") {
        if (take_flag(*word)) continue;
        std::vector<std::string> values;
        if (!read_values(words, values)) return std::nullopt;
        const std::string keyword(*word);
        const bool is_known = keyword == "DESC" || keyword.starts_with("X-") ||
                              (!values.empty() && take(keyword, values));
        if (!is_known && unknown_keyword.empty()) unknown_keyword = keyword;
    }
    if (!word) return std::nullopt;
    return number;
}

// Names with "$" between them, which may stand with or without blanks.
std::vector<std::string> names_in(const std::vector<std::string>& words) {
    std::vector<std::string> names;
    for (const std::string& word : words) {
        for (std::size_t begin = 0; begin <= word.size();) {
            const std::size_t end = std::min(word.find('$', begin), word.size());
            if (end > begin) names.push_back(word.substr(begin, end - begin));
            begin = end + 1;
        }
    }
    return names;
}

}  // namespace

std::optional<TypeDescription> try_type_description(std::string_view text) {
    TypeDescription result;
    AttributeType& type = result.type;
    const auto take_flag = [&](std::string_view keyword) {
        if (keyword == "SINGLE-VALUE") type.single_value = true;
        if (keyword == "NO-USER-MODIFICATION") type.no_user_modification = true;
        return keyword == "OBSOLETE" || keyword == "SINGLE-VALUE" || keyword == "COLLECTIVE" ||
               keyword == "NO-USER-MODIFICATION";
    };
    const auto take = [&](const std::string& keyword, std::vector<std::string>& values) {
        std::string& value = values.front();
        if (keyword == "NAME")
            type.names = std::move(values);
        else if (keyword == "SUP")
            result.superior = value;
        else if (keyword == "EQUALITY")
            type.equality = value;
        else if (keyword == "ORDERING")
            type.ordering = value;
        else if (keyword == "SUBSTR")
            type.substrings = value;
        else if (keyword == "SYNTAX")
            type.syntax_oid = value.substr(0, value.find('{'));
        else if (keyword == "USAGE")
            type.is_operational = value != "userApplications";
        else
            return false;
        return true;
    };
    const auto number = read_description(text, take_flag, take, result.unknown_keyword);
    if (!number) return std::nullopt;
    type.oid = *number;
    return result;
}

std::optional<ClassDescription> try_class_description(std::string_view text) {
    ClassDescription result;
    ObjectClass& described = result.described;
    const auto take_flag = [&](std::string_view keyword) {
        if (keyword == "ABSTRACT") described.kind = ClassKind::abstract;
        if (keyword == "AUXILIARY") described.kind = ClassKind::auxiliary;
        return keyword == "OBSOLETE" || keyword == "ABSTRACT" || keyword == "STRUCTURAL" ||
               keyword == "AUXILIARY";
    };
    const auto take = [&](const std::string& keyword, std::vector<std::string>& values) {
        if (keyword == "NAME")
            described.names = std::move(values);
        else if (keyword == "SUP")
            described.superiors = names_in(values);
        else if (keyword == "MUST")
            described.required = names_in(values);
        else if (keyword == "MAY")
            described.allowed = names_in(values);
        else
            return false;
        return true;
    };
    const auto number = read_description(text, take_flag, take, result.unknown_keyword);
    if (!number) return std::nullopt;
    described.oid = *number;
    return result;
}

}  // namespace orvo::directory
