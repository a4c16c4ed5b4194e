#include "platform/objects/files/file_names.h"

namespace orvo::file_names {
namespace {

// With "/" alone, and none behind the last part.
Text cleaned(const Text& path) {
    Text clean = replaced(path, u"\\", u"/");
    while (clean.size() > 1 && clean.ends_with(u'/')) clean.pop_back();
    return clean;
}

}  // namespace

Text build_path(const Text& path, const Text& name) {
    if (path.empty() || path.ends_with(u'/') || path.ends_with(u'\\')) return path + name;
    return path + u"/" + name;
}

Text name_of(const Text& path) {
    const Text clean = cleaned(path);
    if (clean == u"/") return {};
    const std::size_t slash = clean.rfind(u'/');
    return slash == Text::npos ? clean : clean.substr(slash + 1);
}

Text base_of(const Text& path) {
    const Text name = name_of(path);
    return name.substr(0, name.rfind(u'.'));
}

Text extension_of(const Text& path) {
    const Text name = name_of(path);
    const std::size_t dot = name.rfind(u'.');
    return dot == Text::npos ? Text() : name.substr(dot + 1);
}

Text parent_of(const Text& path) {
    const Text clean = cleaned(path);
    const std::size_t slash = clean.rfind(u'/');
    if (slash == Text::npos || clean == u"/") return {};
    return slash == 0 ? Text(u"/") : clean.substr(0, slash);
}

Text drive_of(const Text& path) { return cleaned(path).starts_with(u'/') ? u"/" : u""; }

bool agrees(TextView name, TextView pattern) {
    // Where the last "*" stands, and how much of the name it has taken so far.
    std::size_t at = 0, seen = 0, star = TextView::npos, tried = 0;
    while (at < name.size()) {
        if (seen < pattern.size() && pattern[seen] == u'*') {
            star = seen++;
            tried = at;
        } else if (seen < pattern.size() && (pattern[seen] == u'?' || pattern[seen] == name[at])) {
            ++seen;
            ++at;
        } else if (star != TextView::npos) {
            seen = star + 1;
            at = ++tried;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(u'*', seen) == TextView::npos;
}

bool is_pattern(TextView name) { return name.find_first_of(u"*?") != TextView::npos; }

}  // namespace orvo::file_names
