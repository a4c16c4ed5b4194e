#include <utility>

#include "suite/directory/common/distinguished_name.h"
#include "suite/directory/common/password_hash.h"
#include "suite/directory/ldap/LdapEntry.h"
#include "suite/directory/ldap/failures.h"
#include "suite/directory/ldap/new_entry.h"
#include "suite/directory/ldap/write_marks.h"

namespace orvo::directory::ldap {
namespace {

std::string key_of(const std::string& name) {
    const auto parsed = DistinguishedName::try_parse(from_utf8(name));
    return parsed ? parsed->key() : name;
}

// The same attributes, with a blank in each of those that were left out.
std::vector<Attribute> with_blanks(const NewEntry& entry) {
    std::vector<Attribute> attributes = entry.attributes;
    for (const std::string& name : entry.left_empty) attributes.push_back({name, {" "}});
    return attributes;
}

}  // namespace

void LdapEntry::CreateChild(Variant& classes, Text& naming_attribute, Object& attributes) {
    require_bound();
    const std::vector<GivenAttribute> given = given_attributes(attributes);
    for (const GivenAttribute& attribute : given) {
        require_whole(from_utf8(attribute.name));
        type_of(attribute.name);
    }
    NewEntry entry(given, classes, to_utf8(naming_attribute), facts().types);
    const bool server_hashes = facts().changes_passwords;
    if (!entry.password.empty() && !server_hashes)
        entry.attributes.push_back({"userPassword", {hashed_password(entry.password)}});

    const std::string name = to_utf8(entry_name(entry.relative_name, from_utf8(name_)));
    const NotedWrite noted(key_of(name));
    check(add(name, entry));
    if (!entry.password.empty() && server_hashes) set_first_password(name, entry.password);
    // Who was bound as a former entry of this name is not the new one.
    login_->password_changed(key_of(name), entry.password);
}

Result LdapEntry::add(const std::string& name, const NewEntry& entry) {
    int attempts = 0;
    const auto add = [&](const std::vector<Attribute>& attributes) {
        return change([&](Session& session) {
            ++attempts;
            return session.add(name, attributes);
        });
    };
    Result result = add(entry.attributes);
    if (result.code == result_code::entry_already_exists && attempts > 1)
        result.message += "It may be of this request, whose connection was lost before.";
    if (result.code == result_code::other && result.message.empty() && name.size() > 200)
        result.message = "The name may be too long for it.";
    if (result.code != result_code::object_class_violation || entry.left_empty.empty())
        return result;
    Result again = add(with_blanks(entry));
    const bool do_blanks_help = again.code != result_code::object_class_violation &&
                                again.code != result_code::invalid_syntax;
    return do_blanks_help ? again : result;
}

void LdapEntry::set_first_password(const std::string& name, const Secret& password) {
    try {
        check(change([&](Session& session) { return session.change_password(name, password); }));
    } catch (const Failure& failure) {
        throw Failure(failure.number, failure.source, failure.description + take_back(name));
    }
}

// Empty once the entry is gone; otherwise a sentence to add to the failure that made it unwanted.
Text LdapEntry::take_back(const std::string& name) {
    Text why;
    try {
        const Result removed = change([&](Session& session) { return session.remove(name); });
        if (removed.ok() || removed.code == result_code::no_such_object) return {};
        why = directory_failure(removed.code, provider_name, removed.message).description;
    } catch (const Failure& failure) {  // the first failure is the one to raise
        why = failure.description;
    }
    return u" The entry " + from_utf8(quoted(name)) + u" is left without a password: " + why;
}

void LdapEntry::DeleteChild(Text&, Text& entry_name) {
    require_bound();
    const auto container = DistinguishedName::try_parse(from_utf8(name_));
    const std::optional<Text> below = container ? name_below(entry_name, *container) : std::nullopt;
    if (!below)
        raise_code(result_code::invalid_name,
                   quoted(to_utf8(entry_name)) + " is not below " + quoted(name_) + ".");
    const std::string name = to_utf8(*below);
    const NotedWrite noted(key_of(name));
    check(change([&](Session& session) { return session.remove(name); }));
    login_->password_changed(key_of(name), Secret());
}

}  // namespace orvo::directory::ldap
