#include "component/server/idl_spelling.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

namespace orvo {
namespace {

bool is_part_of_name(unsigned char c) { return std::isalnum(c) || c == '_'; }

std::string key_of(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name;
}

// Every spelling of every word.
std::map<std::string, std::set<std::string>> words_of(const std::string& text) {
    std::map<std::string, std::set<std::string>> words;
    for (auto begin = text.begin(); begin != text.end();) {
        begin = std::find_if(begin, text.end(), is_part_of_name);
        const auto end = std::find_if_not(begin, text.end(), is_part_of_name);
        const std::string word(begin, end);
        words[key_of(word)].insert(word);
        begin = end;
    }
    return words;
}

}  // namespace

std::string idl_spelling(const std::vector<std::string>& names, const std::string& body) {
    const auto words = words_of(body);
    std::set<std::string> done;
    std::string fields;
    for (const std::string& name : names) {
        const auto word = words.find(key_of(name));
        const bool has_several = word != words.end() && word->second.size() > 1;
        if (has_several && done.insert(word->first).second)
            fields += "        long " + name + ";\n";
    }
    if (fields.empty()) return {};
    return "    typedef [hidden] struct NameSpelling\n    {\n" + fields + "    } NameSpelling;\n\n";
}

}  // namespace orvo
