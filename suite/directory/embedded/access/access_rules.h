#pragma once

// Who may do what in a directory. The rules are a text, which the store keeps and an administrator
// can read:
//
//     # Users whose type is 4 may administer others.
//     group administrators
//         entries one ou=Users,o=Shop
//         filter (OrvoUserType=4)
//
//     rule
//         entries subtree ou=Users,o=Shop
//         attributes userPassword
//         write name cn=orvo-service,ou=Services,o=Shop
//         write self
//         write group administrators
//         authenticate anonymous
//
//     rule
//         entries subtree ou=Users,o=Shop
//         write group administrators
//         read self
//
// Rules are tried in their order. The first that covers the entry and the attribute decides, and in
// it the first line that is true of who asks; where none is, and where no rule covers it, nothing
// is allowed.
//
//     entries     base, one or subtree, and a name: that entry, those directly below it, or it and
//                 all below it. A rule without the line covers every entry.
//     attributes  names, in one line or several. A rule without the line covers every attribute.
//                 "entry" and "children" stand for the entry itself and for those below it.
//     rights      none, authenticate, read, write; each includes those in front of it
//     of whom     name and a name, self (whose entry it is), group and a name, users (who have
//                 logged in), anonymous (who have not), everyone
//     group       users who have their entry among these, and of whose entry the filter is true; it
//                 stands above the rules that name it
//
// An entry is seen by who may read its "entry". It is added and removed by who may write "children"
// of the entry above it, and its "entry". A login needs the right to authenticate with the password
// for who has not logged in. The hashes of passwords, former
// ones included, are never read, whatever the rules say.
//
// Words are separated by blanks. A line that begins with "#", and an empty one, say nothing.

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "suite/directory/embedded/access/identity.h"
#include "suite/directory/filters/filter.h"
#include "suite/directory/filters/filter_match.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory::embedded {

enum class Right { none, authenticate, read, write };

// As rules name what belongs to no attribute.
inline constexpr std::string_view the_entry = "entry";
inline constexpr std::string_view its_children = "children";

// Some entries of the tree. A value.
struct Place {
    Scope scope = Scope::subtree;
    std::string written;
    DistinguishedName name;

    bool covers(const DistinguishedName& entry) const;
    bool operator==(const Place&) const = default;
};

struct AccessGroup {
    std::string name;
    Place entries;
    Filter filter;
    std::shared_ptr<const FilterMatcher> matcher;  // of the filter

    bool operator==(const AccessGroup& other) const {
        return name == other.name && entries == other.entries && filter == other.filter;
    }
};

struct AccessGrant {
    enum class To { name, self, group, users, anonymous, everyone };

    Right right = Right::none;
    To to = To::everyone;
    std::string written = {};  // the name of an entry or of a group
    DistinguishedName name = {};

    bool operator==(const AccessGrant&) const = default;
};

struct AccessRule {
    std::optional<Place> entries;         // none: all
    std::vector<std::string> attributes;  // as they are written; none: all
    std::vector<std::string> keys;        // the same, as AccessRules::key has them
    std::vector<AccessGrant> grants;

    bool covers(const DistinguishedName& entry) const { return !entries || entries->covers(entry); }
    bool covers(std::string_view attribute_key) const;
    bool operator==(const AccessRule&) const = default;
};

// What one rule allows one who asks.
struct RuleRights {
    Right of_own;  // of the own entry
    Right of_others;
};

// Immutable; any thread may ask.
class AccessRules {
public:
    // Raises result code 89 with the line and the reason for a text that cannot be read, or that
    // names an attribute or a group that is not known.
    static AccessRules parse(std::string_view text, std::shared_ptr<const Schema> schema);

    // The text of the rules that the product's directory has, below its base ("o=Shop"): those of
    // the sample server's configuration.
    static std::string text_of_product(std::string_view base);

    // Without comments; reading it gives equal rules.
    std::string text() const;
    bool operator==(const AccessRules& other) const {
        return groups_ == other.groups_ && rules_ == other.rules_;
    }

    // Whether somebody may do something with an attribute of an entry, which need not be there.
    // What asks for many entries has an AccessView.
    bool allow(const Identity& who, Right right, const DistinguishedName& entry,
               std::string_view attribute) const;

    // For AccessView.
    const std::vector<AccessRule>& rules() const { return rules_; }
    // For each rule, in their order. The manager has none.
    std::vector<RuleRights> rights_of(const Identity& who) const;
    // What all names of an attribute have in common, options set aside.
    std::string key(std::string_view attribute) const;

private:
    friend class AccessRulesParser;
    explicit AccessRules(std::shared_ptr<const Schema> schema) : schema_(std::move(schema)) {}
    Right right_of(const AccessRule& rule, const Identity& who, bool is_own) const;
    bool is_true_of(const AccessGrant& grant, const Identity& who, bool is_own) const;

    std::shared_ptr<const Schema> schema_;  // the matchers look into it
    std::vector<AccessGroup> groups_;
    std::vector<AccessRule> rules_;
};

}  // namespace orvo::directory::embedded
