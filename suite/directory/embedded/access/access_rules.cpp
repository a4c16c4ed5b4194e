#include "suite/directory/embedded/access/access_rules.h"

#include <algorithm>

#include "suite/directory/entries/searched_entry.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/password_attributes.h"

namespace orvo::directory::embedded {

using To = AccessGrant::To;

bool Place::covers(const DistinguishedName& entry) const {
    switch (scope) {
        case Scope::base:
            return entry == name;
        case Scope::one_level:
            return entry.depth() == name.depth() + 1 && entry.is_below(name);
        case Scope::subtree:
            return entry == name || entry.is_below(name);
    }
    return false;
}

bool AccessRule::covers(std::string_view attribute_key) const {
    return keys.empty() || std::ranges::find(keys, attribute_key) != keys.end();
}

bool AccessRules::is_true_of(const AccessGrant& grant, const Identity& who, bool is_own) const {
    switch (grant.to) {
        case To::name:
            return who.is_user() && who.name() == grant.name;
        case To::self:
            return is_own;
        case To::group:
            return who.is_user() && std::ranges::any_of(groups_, [&](const AccessGroup& group) {
                       return group.name == grant.written && group.entries.covers(who.name()) &&
                              group.matcher->matches(SearchedEntry(who.entry(), schema_->types));
                   });
        case To::users:
            return who.is_user();
        case To::anonymous:
            return who.is_nobody();
        case To::everyone:
            return true;
    }
    return false;
}

Right AccessRules::right_of(const AccessRule& rule, const Identity& who, bool is_own) const {
    for (const AccessGrant& grant : rule.grants)
        if (is_true_of(grant, who, is_own)) return grant.right;
    return Right::none;
}

std::vector<RuleRights> AccessRules::rights_of(const Identity& who) const {
    std::vector<RuleRights> rights;
    for (const AccessRule& rule : rules_)
        rights.push_back({right_of(rule, who, who.is_user()), right_of(rule, who, false)});
    return rights;
}

std::string AccessRules::key(std::string_view attribute) const {
    const AttributeType* type = schema_->types.find(attribute);
    return type ? type->oid : ascii::lower(attribute.substr(0, attribute.find(';')));
}

bool AccessRules::allow(const Identity& who, Right right, const DistinguishedName& entry,
                        std::string_view attribute) const {
    if (right == Right::read && holds_hashes(attribute)) return false;
    if (who.is_manager()) return true;
    const std::string key = this->key(attribute);
    for (const AccessRule& rule : rules_)
        if (rule.covers(entry) && rule.covers(key))
            return right_of(rule, who, who.is_user() && who.name() == entry) >= right;
    return right == Right::none;
}

}  // namespace orvo::directory::embedded
