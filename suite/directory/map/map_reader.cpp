#include "suite/directory/map/map_reader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/values/text.h"
#include "suite/configuration/ini_files.h"
#include "suite/configuration/nearest_name.h"
#include "suite/configuration/value_reference.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory {
namespace {

namespace fs = std::filesystem;

constexpr TextView section_of_names = u"DIRECTORY.MAP";
constexpr TextView section_of_defaults = u"DIRECTORY.MAP.DEFAULTS";
constexpr TextView section_of_classes = u"DIRECTORY.MAP.CLASSES";
constexpr TextView section_of_groups = u"DIRECTORY.MAP.GROUPS";
constexpr TextView section_of_accounts = u"DIRECTORY.MAP.ACCOUNTS";
// These end in the name of one of our attributes.
constexpr TextView sections_of_values = u"DIRECTORY.MAP.VALUES.";
constexpr TextView sections_of_groups = u"DIRECTORY.MAP.GROUPS.";

struct NamedKind {
    TextView name;
    GroupRules::Kind kind;
};
constexpr NamedKind kinds[] = {{u"groupOfNames", GroupRules::Kind::names},
                               {u"groupOfUniqueNames", GroupRules::Kind::unique_names},
                               {u"posixGroup", GroupRules::Kind::posix},
                               {u"memberOf", GroupRules::Kind::member_of}};
// Deeper than groups are in practice; each level is a request.
constexpr std::size_t deepest_nesting = 20;

bool begins(TextView text, TextView with) {
    return text.size() >= with.size() && equal_ignoring_case(text.substr(0, with.size()), with);
}

class Reader;

// A key that is known in a section, besides names of attributes.
struct Option {
    const char16_t* name;
    const char* values;
    const char* otherwise;
    const char* about;
    void (*read)(Reader&, const IniKey&);
};

class Reader {
public:
    explicit Reader(fs::path file) : values_file(std::move(file)) {}

    std::shared_ptr<const DirectoryMap> read(const IniValues& site);

    [[noreturn]] void refuse(long long line, const Text& reason) const {
        raise_code(result_code::parameter_error,
                   to_utf8(text_of(values_file)) + ", line " + to_utf8(decimal(line)) + ": " +
                       to_utf8(reason) + (reason.ends_with(u'?') ? "" : "."));
    }
    [[noreturn]] void refuse_name(long long line, const Text& what, TextView name,
                                  std::span<const TextView> known) const {
        const TextView nearest = nearest_name(name, known);
        refuse(line,
               u"there is no " + what + u" \"" + Text(name) + u"\"" +
                   (nearest.empty() ? Text() : u"; did you mean \"" + Text(nearest) + u"\"?"));
    }

    static std::vector<std::string> list(const IniKey& key, TextView separator) {
        std::vector<std::string> result;
        for (const Text& one : split(key.value, separator))
            if (!trimmed(one).empty()) result.push_back(to_utf8(trimmed(one)));
        return result;
    }
    bool yes_or_no(const IniKey& key) const {
        for (const TextView yes : {TextView(u"1"), TextView(u"yes")})
            if (equal_ignoring_case(key.value, yes)) return true;
        for (const TextView no : {TextView(u"0"), TextView(u"no")})
            if (equal_ignoring_case(key.value, no)) return false;
        refuse(key.line, key.name + u": \"" + key.value + u"\" is neither \"yes\" nor \"no\"");
    }
    // Below the root.
    NamedPlace place(const IniKey& key, const Text& written) const {
        const Text root = from_utf8(map->root.name);
        const Text name = written.empty() ? root : written + u"," + root;
        auto parsed = DistinguishedName::try_parse(name);
        if (!parsed) refuse(key.line, key.name + u": \"" + written + u"\" is no name of an entry");
        return {to_utf8(name), *parsed};
    }

    fs::path values_file;  // that of the sections, for messages
    std::shared_ptr<DirectoryMap> map = std::make_shared<DirectoryMap>();
    LoginSearch login;
    bool has_login = false;

private:
    void read_site(const IniValues& site);
    NamedPlace site_place(const IniValues& site, TextView key) const;
    void check_sections(const IniValues& values) const;
    void read_key(const IniKey& key);
    void read_option(std::span<const Option> options, const IniKey& key, bool may_be_attribute);
    void read_account(const IniKey& key);
    MappedAttribute& attribute(long long line, TextView name);
    MappedAttribute* try_attribute(TextView name);
    void check(const IniValues& values) const;

    std::vector<std::size_t> named_;  // attributes with a line of their own among the names
};

const Option map_options[] = {
    {u"File", "path", "these sections",
     "Another file that has these sections; beside this one unless absolute.",
     [](Reader&, const IniKey&) {}},
    {u"UserSearch", "`one` or `sub`", "not searched",
     "How far below their container users are looked for: right below it, or at any depth. With "
     "this or `LoginAttributes` users are searched for by what they log in with; without both they "
     "are where their names say.",
     [](Reader& reader, const IniKey& key) {
         if (equal_ignoring_case(key.value, u"one"))
             reader.login.scope = Scope::one_level;
         else if (!equal_ignoring_case(key.value, u"sub"))
             reader.refuse(key.line,
                           u"UserSearch: \"" + key.value + u"\" is neither \"one\" nor \"sub\"");
         reader.has_login = true;
     }},
    {u"LoginAttributes", "names of attributes, with commas between", "UserNamingAttribute",
     "What users log in with. A name that matches two entries is nobody's.",
     [](Reader& reader, const IniKey& key) {
         reader.login.attributes = Reader::list(key, u",");
         reader.has_login = true;
     }},
};

const Option group_options[] = {
    {u"Kind", "`groupOfNames`, `groupOfUniqueNames`, `posixGroup` or `memberOf`", "groupOfNames",
     "How groups name their members: `member`, `uniqueMember`, `memberUid`; with `memberOf` the "
     "server keeps the groups with each user.",
     [](Reader& reader, const IniKey& key) {
         const auto found = std::ranges::find_if(
             kinds, [&](const NamedKind& one) { return equal_ignoring_case(one.name, key.value); });
         if (found != std::end(kinds)) {
             reader.map->groups.kind = found->kind;
             return;
         }
         std::vector<TextView> names;
         for (const NamedKind& one : kinds) names.push_back(one.name);
         reader.refuse_name(key.line, u"kind of groups", key.value, names);
     }},
    {u"Container", "name below LDAPRoot", "LDAPRoot", "Where groups are looked for.",
     [](Reader& reader, const IniKey& key) {
         reader.map->groups.container = reader.place(key, key.value);
     }},
    {u"Nesting", "0 to 20", "0",
     "How deep a group in a group counts; 0: not at all. An Active Directory is asked by its own "
     "rule, at any depth; elsewhere each level is a request.",
     [](Reader& reader, const IniKey& key) {
         const bool is_number =
             !key.value.empty() && key.value.size() <= 2 &&
             std::ranges::all_of(key.value, [](char16_t c) { return c >= u'0' && c <= u'9'; });
         const std::size_t depth = is_number ? std::stoul(to_utf8(key.value)) : deepest_nesting + 1;
         if (depth > deepest_nesting)
             reader.refuse(key.line, u"Nesting: \"" + key.value + u"\" is no number from 0 to 20");
         reader.map->groups.nesting = depth;
     }},
    {u"ReadOnly", "`yes` or `no`", "no", "`yes`: a value that comes from a group is never written.",
     [](Reader& reader, const IniKey& key) {
         reader.map->groups.is_read_only = reader.yes_or_no(key);
     }},
};

std::vector<TextView> names_of(std::span<const Option> options) {
    std::vector<TextView> names;
    for (const Option& option : options) names.push_back(option.name);
    return names;
}

std::vector<DescribedSetting> described(std::span<const Option> options) {
    std::vector<DescribedSetting> result;
    for (const Option& option : options)
        result.push_back({to_utf8(option.name), option.values, option.otherwise, option.about});
    return result;
}

// Every name of an attribute that the product knows.
std::vector<Text> known_attributes() {
    std::vector<Text> names;
    for (const AttributeType& type : Schema::of_product().types.all())
        for (const std::string& name : type.names) names.push_back(from_utf8(name));
    return names;
}

// What a key of [MEMBERSHIP] stands for; empty where it is not there.
Text site_value(const IniValues& site, const fs::path& file, TextView key) {
    const Text* value = site.find(u"MEMBERSHIP", key);
    return value ? referred_value(*value, file.parent_path()) : Text();
}

}  // namespace

MappedAttribute* Reader::try_attribute(TextView name) {
    const AttributeType* type = Schema::of_product().types.find(to_utf8(name));
    if (!type) return nullptr;
    const auto found = map->by_name.find(type->name());
    if (found != map->by_name.end()) return &map->attributes[found->second];
    for (const std::string& other : type->names)
        map->by_name.emplace(ascii::lower(other), map->attributes.size());
    map->by_name.emplace(type->oid, map->attributes.size());
    MappedAttribute& added = map->attributes.emplace_back();
    added.name = type->name();
    added.single_value = type->single_value;
    return &added;
}

MappedAttribute& Reader::attribute(long long line, TextView name) {
    if (MappedAttribute* found = try_attribute(name)) return *found;
    const std::vector<Text> known = known_attributes();
    const std::vector<TextView> views(known.begin(), known.end());
    refuse_name(line, u"attribute", name, views);
}

void Reader::check_sections(const IniValues& values) const {
    constexpr std::array<TextView, 7> known{
        section_of_names,    section_of_defaults, section_of_classes, section_of_groups,
        section_of_accounts, sections_of_values,  sections_of_groups};
    for (const IniSection& section : values.sections()) {
        if (!begins(section.name, section_of_names)) continue;
        const bool is_known = std::ranges::any_of(known, [&](TextView one) {
            return one.ends_with(u'.') ? begins(section.name, one)
                                       : equal_ignoring_case(one, section.name);
        });
        if (!is_known) refuse_name(section.line, u"section", section.name, known);
    }
}

void Reader::read_option(std::span<const Option> options, const IniKey& key,
                         bool may_be_attribute) {
    for (const Option& option : options)
        if (equal_ignoring_case(option.name, key.name)) return option.read(*this, key);
    std::vector<TextView> names = names_of(options);
    if (!may_be_attribute) refuse_name(key.line, u"key", key.name, names);
    if (MappedAttribute* found = try_attribute(key.name)) {
        found->theirs = list(key, u"|");
        named_.push_back(static_cast<std::size_t>(found - map->attributes.data()));
        return;
    }
    const std::vector<Text> known = known_attributes();
    names.insert(names.end(), known.begin(), known.end());
    refuse_name(key.line, u"key", key.name, names);
}

void Reader::read_account(const IniKey& key) {
    const std::size_t dot = key.name.find(u'.');
    const Text field = dot == Text::npos ? key.name : key.name.substr(dot + 1);
    const std::string type = to_utf8(key.name.substr(0, dot == Text::npos ? 0 : dot));
    if (type.empty() || !std::ranges::all_of(type, ascii::is_digit))
        refuse(key.line, u"\"" + key.name + u"\" does not begin with a type of users, \"1.User\"");
    if (equal_ignoring_case(field, u"User")) {
        map->accounts[type].user = key.value;
    } else if (equal_ignoring_case(field, u"Password")) {
        map->accounts[type].password = key.value;
    } else {
        constexpr TextView fields[] = {u"User", u"Password"};
        refuse_name(key.line, u"key", field, fields);
    }
}

void Reader::read_key(const IniKey& key) {
    if (!begins(key.section, section_of_names)) return;
    if (equal_ignoring_case(key.section, section_of_names))
        return read_option(map_options, key, true);
    if (equal_ignoring_case(key.section, section_of_groups))
        return read_option(group_options, key, false);
    if (equal_ignoring_case(key.section, section_of_accounts)) return read_account(key);
    if (equal_ignoring_case(key.section, section_of_classes)) {
        map->classes.push_back({to_utf8(key.name), list(key, u"|")});
        if (map->classes.back().theirs.empty())
            refuse(key.line, key.name + u": the name of a class is missing");
        return;
    }
    if (equal_ignoring_case(key.section, section_of_defaults)) {
        attribute(key.line, key.name).otherwise = list(key, u"|");
        return;
    }
    const bool is_group = begins(key.section, sections_of_groups);
    const TextView prefix = is_group ? sections_of_groups : sections_of_values;
    MappedAttribute& mapped = attribute(key.line, TextView(key.section).substr(prefix.size()));
    if (is_group)
        mapped.groups.push_back({to_utf8(key.name), place(key, key.value)});
    else
        mapped.values.push_back({to_utf8(key.name), list(key, u"|")});
}

NamedPlace Reader::site_place(const IniValues& site, TextView key) const {
    const Text name =
        container_name(site_value(site, map->file, key) + u"," + from_utf8(map->root.name));
    const auto parsed = DistinguishedName::try_parse(name);
    return {to_utf8(name), parsed.value_or(DistinguishedName())};
}

void Reader::read_site(const IniValues& site) {
    const Text root = site_value(site, map->file, u"LDAPRoot");
    const auto parsed = DistinguishedName::try_parse(root);
    if (root.empty() || !parsed)
        raise_code(
            result_code::parameter_error,
            to_utf8(text_of(map->file)) + ": [DIRECTORY.MAP] needs the LDAPRoot of [MEMBERSHIP].");
    map->root = {to_utf8(root), *parsed};
    map->user_container = site_place(site, u"UserContainer");
    map->account_container = site_place(site, u"AccountContainer");
    map->service_user = site_place(site, u"MemScriptUser");
    if (const Text* code = site.find(u"MEMBERSHIP", u"MemScriptCode")) map->service_code = *code;
    map->naming_attribute = to_utf8(trimmed(site_value(site, map->file, u"UserNamingAttribute")));
    const Text classes = site_value(site, map->file, u"UserClass");
    map->user_class = to_utf8(trimmed(TextView(classes).substr(0, classes.find(u','))));
    map->groups.container = map->root;
}

// What the lines say together.
void Reader::check(const IniValues& values) const {
    const auto line_of = [&](TextView prefix, const MappedAttribute& mapped) {
        for (const IniSection& section : values.sections())
            if (equal_ignoring_case(section.name, Text(prefix) + from_utf8(mapped.name)))
                return section.line;
        return 0LL;
    };
    for (const MappedAttribute& mapped : map->attributes) {
        if (!mapped.groups.empty() && !mapped.theirs.empty())
            refuse(line_of(sections_of_groups, mapped),
                   from_utf8(mapped.name) + u" cannot have both groups and an attribute");
        if (!mapped.values.empty() && mapped.theirs.empty())
            refuse(line_of(sections_of_values, mapped),
                   u"[DIRECTORY.MAP] does not say which attribute has the values of " +
                       from_utf8(mapped.name));
    }
}

std::shared_ptr<const DirectoryMap> Reader::read(const IniValues& site) {
    map->file = values_file;
    read_site(site);
    std::shared_ptr<const IniValues> others;
    const IniValues* sections = &site;
    if (const Text* other = site.find(section_of_names, u"File")) {
        values_file = values_file.parent_path() / path_of(*other);
        others = load_ini_file(values_file);
        sections = others.get();
    }
    check_sections(*sections);
    for (const IniKey& key : sections->keys()) read_key(key);
    // Values of a table are those of an attribute that is called the same, unless it is named.
    for (MappedAttribute& mapped : map->attributes) {
        const auto place = static_cast<std::size_t>(&mapped - map->attributes.data());
        const bool is_named = std::ranges::count(named_, place) != 0;
        if (!is_named && !mapped.values.empty()) mapped.theirs = {mapped.name};
    }
    check(*sections);
    if (has_login) {
        if (login.attributes.empty()) {
            const MappedAttribute* naming = map->find(map->naming_attribute);
            login.attributes = {naming && !naming->theirs.empty() ? naming->theirs.front()
                                                                  : map->naming_attribute};
        }
        map->login = login;
    }
    return map;
}

std::shared_ptr<const DirectoryMap> read_map(const fs::path& file, const IniValues& values) {
    const bool has_map = std::ranges::any_of(values.sections(), [](const IniSection& section) {
        return begins(section.name, section_of_names);
    });
    return has_map ? Reader(file).read(values) : nullptr;
}

std::vector<DescribedSetting> described_map_settings() { return described(map_options); }
std::vector<DescribedSetting> described_group_settings() { return described(group_options); }

}  // namespace orvo::directory
