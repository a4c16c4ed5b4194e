#include "suite/directory/schema/object_classes.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "suite/directory/names/ascii.h"
#include "suite/directory/schema/schema_words.h"

namespace orvo::directory {
namespace {

bool has_no_value(std::string_view keyword) {
    return keyword == "OBSOLETE" || keyword == "ABSTRACT" || keyword == "STRUCTURAL" ||
           keyword == "AUXILIARY";
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

ObjectClasses ObjectClasses::from_descriptions(std::span<const std::string> descriptions) {
    ObjectClasses result;
    for (const std::string& text : descriptions) {
        schema::Words words(text);
        if (words.next() != "(") continue;
        std::optional<std::string_view> word = words.next();
        if (!word || *word == "(" || *word == ")") continue;
        std::vector<std::string> names = {std::string(schema::unquoted(*word))};
        ObjectClass described;
        while ((word = words.next()) && *word != ")") {
            if (has_no_value(*word)) continue;
            std::vector<std::string> values;
            if (!schema::read_values(words, values)) break;
            if (*word == "NAME") names.insert(names.end(), values.begin(), values.end());
            if (*word == "SUP") described.superiors = names_in(values);
            if (*word == "MUST") described.required = names_in(values);
        }
        if (word != ")") continue;
        for (const std::string& name : names) result.by_name_[ascii::lower(name)] = described;
    }
    return result;
}

std::vector<std::string> ObjectClasses::required(std::span<const std::string> classes) const {
    std::vector<std::string> required;
    std::vector<std::string> seen(classes.begin(), classes.end());
    for (std::string& name : seen) name = ascii::lower(name);
    // Grows while it is walked: superiors follow those who have them, each class once.
    for (std::size_t next = 0; next < seen.size(); ++next) {
        const auto found = by_name_.find(seen[next]);
        if (found == by_name_.end()) continue;
        const ObjectClass& described = found->second;
        required.insert(required.end(), described.required.begin(), described.required.end());
        for (const std::string& superior : described.superiors)
            if (std::string name = ascii::lower(superior);
                std::find(seen.begin(), seen.end(), name) == seen.end())
                seen.push_back(std::move(name));
    }
    return required;
}

}  // namespace orvo::directory
