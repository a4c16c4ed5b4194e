#pragma once

// A directory that does not know the product's schema: what its attributes, classes and names are
// called, and where it keeps what the product asks for. This is what the section DIRECTORY.MAP of a
// site's configuration says (map_reader.h).
//
// "Ours" are the names and values that the component uses ("OrvoRole", "24"), "theirs" those of the
// directory ("businessCategory", "cn=receivers,ou=Groups,o=Company"). A provider with a map passes
// everything through it once, between the wire and the values:
//
//     names of attributes, entries, changes    translation.h
//     filters                                  mapped_filter.h
//     names of users                           LoginSearch, below
//
// Above that all is ours, so that types, the cache, record sets and the order of rows know nothing
// of it. Texts are UTF-8, as everywhere beside the wire.

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "suite/directory/entries/entry_data.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/names/distinguished_name.h"

namespace orvo::directory {

// A name, and the form in which it is compared.
struct NamedPlace {
    std::string name;
    DistinguishedName key = {};

    bool operator==(const NamedPlace&) const = default;
};

// One of our values, and those of theirs that mean it: any is understood, the first is written.
struct MappedValue {
    std::string ours;
    std::vector<std::string> theirs;
};

// One of our values, and the group whose members have it.
struct MappedGroup {
    std::string ours;
    NamedPlace group;
};

// Where the values of one of our attributes are. Of `theirs` and `groups` one at least is empty;
// where both are, the directory has nothing of the kind: `otherwise` is all there is.
struct MappedAttribute {
    std::string name;                 // ours, as the product's schema spells it
    bool single_value = false;        // ours, too
    std::vector<std::string> theirs;  // read from the first, written to all
    std::vector<MappedValue>
        values;  // empty: values are the same; any other value of theirs is none
    std::vector<MappedGroup> groups;     // of a single value the first that fits counts
    std::vector<std::string> otherwise;  // ours, of users who have no value

    bool is_of_groups() const { return !groups.empty(); }
    bool has_no_place() const { return theirs.empty() && groups.empty(); }
};

// How groups name their members.
struct GroupRules {
    enum class Kind {
        names,         // groupOfNames: `member`
        unique_names,  // groupOfUniqueNames: `uniqueMember`
        posix,         // posixGroup: `memberUid`, the value of `uid`
        member_of,     // the server keeps `memberOf` with each user, `member` with the group
    };
    Kind kind = Kind::names;
    NamedPlace container;  // below which they are looked for
    // Whether members of a group in a group count, and how far down it is walked where the server
    // has no rule of its own for that. 0: they do not.
    std::size_t nesting = 0;
    bool is_read_only = false;

    const char* object_class() const;  // null: whatever has members
    const char* member_attribute() const;
};

// A service account of the operating system from the configuration, in place of an entry. Both are
// as they are configured, and may stand elsewhere (value_reference.h).
struct MappedAccount {
    std::u16string user;
    std::u16string password;
};

// How users are found: below their container, by any of several attributes. One entry must match.
struct LoginSearch {
    Scope scope = Scope::subtree;
    std::vector<std::string> attributes;  // theirs
};

// Immutable once read; any thread may use it.
struct DirectoryMap {
    std::filesystem::path file;  // of [MEMBERSHIP], with the folder of relative references
    NamedPlace root;             // LDAPRoot; empty: the server's
    NamedPlace user_container;   // these are full names
    NamedPlace account_container;
    NamedPlace service_user;       // MemScriptUser: with its rights users and groups are looked for
    std::u16string service_code;   // as configured
    std::string naming_attribute;  // UserNamingAttribute, ours
    std::string user_class;        // the first of UserClass, ours

    std::vector<MappedAttribute> attributes;
    std::vector<MappedValue> classes;  // of the first of theirs users are told by
    std::optional<LoginSearch> login;  // nothing: users are where their names say
    GroupRules groups;
    std::map<std::string, MappedAccount> accounts;  // by the type of users: "0"

    // By any name of our attribute; options set aside. Null for one that is called the same there.
    const MappedAttribute* find(std::string_view name) const;
    // The one that is read from this attribute of theirs, which is spelled as in the map.
    const MappedAttribute* read_from(std::string_view theirs) const;

    // A class of ours as users are told by it there.
    const std::string& their_class(const std::string& ours) const;
    // The name of a user right below their container, whose own attribute may be called otherwise
    // there; any other name as it is.
    std::string their_name(const std::string& ours) const;

    // Whether an entry is a user, as far as its name tells: it is below their container.
    bool is_user(std::string_view entry) const;
    // The account that an entry's name stands for; null for any other entry.
    const MappedAccount* account_of(std::string_view entry) const;

    // Our attributes by their names in lower case; made by the reader.
    std::unordered_map<std::string, std::size_t, ascii::HashIgnoringCase, ascii::EqualIgnoringCase>
        by_name;
};

}  // namespace orvo::directory
