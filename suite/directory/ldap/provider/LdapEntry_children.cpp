#include <utility>

#include "suite/directory/entries/child_name.h"
#include "suite/directory/entries/ended_logins.h"
#include "suite/directory/entries/given_password.h"
#include "suite/directory/entries/new_entry.h"
#include "suite/directory/ldap/provider/LdapEntry.h"
#include "suite/directory/ldap/wire/unicode_password.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/policy/password_hash.h"

namespace orvo::directory::ldap {
namespace {

// Of an Active Directory's account: an ordinary one that may log in. Without it, it may not.
constexpr const char* user_account_control = "userAccountControl";
constexpr const char* enabled_account = "512";

// A password among the attributes of a new entry, unless it is empty: the last of them, which is
// overwritten in the end.
class SecretAttribute {
public:
    SecretAttribute(std::vector<Attribute>& attributes, const Secret& password) {
        if (password.empty()) return;
        attributes.push_back({unicode_password_attribute, {}});
        value_ = &attributes.back().values.emplace_back(password.reveal());
    }
    ~SecretAttribute() {
        if (value_) overwrite(value_->data(), value_->size());
    }
    SecretAttribute(const SecretAttribute&) = delete;

private:
    std::string* value_ = nullptr;
};

std::vector<Attribute> with_blanks(std::vector<Attribute> attributes,
                                   const std::vector<std::string>& names) {
    for (const std::string& name : names) attributes.push_back({name, {" "}});
    return attributes;
}

}  // namespace

void LdapEntry::CreateChild(Variant& classes, Text& naming_attribute, Object& attributes) {
    require_bound();
    const std::vector<GivenAttribute> given = given_attributes(attributes);
    for (const GivenAttribute& attribute : given) require_known(attribute);
    require_whole(naming_attribute);
    const ServerFacts& server = facts();
    NewEntry entry(given, classes, to_utf8(naming_attribute), types(), server.classes);
    const PasswordWriting way =
        entry.password.empty() ? PasswordWriting::unknown : password_writing();
    Secret created_with;
    if (way == PasswordWriting::hashed_here) {
        entry.attributes.push_back({"userPassword", {hashed_password(entry.password)}});
        entry.password = Secret();
    } else if (way == PasswordWriting::unicode_attribute) {
        created_with = unicode_password(entry.password);
        if (!entry.find(user_account_control, types()))
            entry.attributes.push_back({user_account_control, {enabled_account}});
        entry.password = Secret();
    }

    std::string name = to_utf8(entry.name_below(from_utf8(name_)));
    if (mapped_) name = mapped_->map().their_name(name);
    audited_change({u"create", server_, name, login_->user()}, [&] {
        const NotedWrite noted(client_.writes(), EntryKey(name));
        add(name, entry, created_with);
        if (!entry.password.empty()) set_first_password(name, entry.password);
    });
}

// An unknown one with a value the server refuses; an empty text it is not told of. A name that is
// empty, too, is what is behind the last comma of a list.
void LdapEntry::require_known(const GivenAttribute& attribute) {
    if (attribute.name.empty() || is_password(attribute.name)) return;
    if (type_of(attribute.name) || facts().types.empty()) return;
    if (attribute.value.is_text() && attribute.value.text_view().empty())
        raise_code(result_code::undefined_attribute_type, quoted_name(attribute.name));
}

void LdapEntry::add(const std::string& name, const NewEntry& entry, const Secret& created_with) {
    bool may_be_done = false;
    const auto add_with = [&](const std::vector<std::string>& blanks) {
        std::vector<Attribute> attributes = with_blanks(entry.attributes, blanks);
        if (mapped_) attributes = mapped_->translation().created(attributes);
        const SecretAttribute secret(attributes, created_with);
        // Who was bound as a former entry of this name is not the new one.
        return login_->write_password(name, Secret(), [&](Session& session) {
            Result result = session.add(name, attributes);
            may_be_done = result.may_be_done();
            return result;
        });
    };
    try {
        Result result = add_with(entry.required_empty);
        if (result.code == result_code::invalid_syntax && !entry.required_empty.empty()) {
            result = add_with({});
        } else if (result.code == result_code::object_class_violation &&
                   entry.required_empty.size() < entry.left_empty.size()) {
            const Result again = add_with(entry.left_empty);
            const bool do_blanks_help = again.code != result_code::object_class_violation &&
                                        again.code != result_code::invalid_syntax;
            if (do_blanks_help) result = again;
        }
        if (result.code == result_code::other && result.message.empty() && name.size() > 200)
            result.message = "The name may be too long for it.";
        check(result);
    } catch (const Failure& failure) {
        if (!may_be_done) throw;
        throw Failure(
            failure.number, failure.source,
            failure.description + u" The entry " + from_utf8(quoted_name(name)) +
                (entry.password.empty() ? u" may exist." : u" may exist, without a password."));
    }
}

void LdapEntry::set_first_password(const std::string& name, const Secret& password) {
    bool is_refused = false;
    try {
        const Result result = login_->write(
            name, [&](Session& session) { return session.change_password(name, password); });
        is_refused = !result.connection_failed();
        check(result);
    } catch (const Failure& failure) {
        throw Failure(failure.number, failure.source,
                      failure.description + remove_again(name, is_refused ? u" is" : u" may be"));
    }
}

// Empty once the entry is gone; otherwise a sentence to add to the failure that made it unwanted.
Text LdapEntry::remove_again(const std::string& name, TextView is_or_may_be) {
    Text why;
    try {
        const Result removed =
            login_->write(name, [&](Session& session) { return session.remove(name); });
        // Another server than the one that has it may not know the entry.
        const bool is_gone =
            removed.code == result_code::no_such_object && !login_->has_several_servers();
        if (removed.ok() || is_gone) return {};
        why = directory_failure(removed.code, {}, removed.message).description;
    } catch (const Failure& failure) {  // the first failure is the one to raise
        why = failure.description;
    }
    return u" The entry " + from_utf8(quoted_name(name)) + Text(is_or_may_be) +
           u" left without a password: " + why;
}

void LdapEntry::DeleteChild(Text&, Text& entry_name) {
    require_bound();
    std::string name = child_name(entry_name, name_);
    if (mapped_) name = mapped_->require(name);
    audited_account_change({u"delete", server_, name, login_->user()}, [&](EndedLogins& ended) {
        ended.accounts = accounts_of(name);
        remove_child(name, ended.may_be_done);
    });
}

void LdapEntry::remove_child(const std::string& name, bool& may_be_done) {
    const NotedWrite noted(client_.writes(), EntryKey(name));
    try {
        check(login_->write_password(name, Secret(), [&](Session& session) {
            Result result = session.remove(name);
            may_be_done = result.may_be_done();
            return result;
        }));
    } catch (const Failure& failure) {
        if (!may_be_done) throw;
        throw Failure(failure.number, failure.source,
                      failure.description + u" The entry may have been deleted all the same.");
    }
}

}  // namespace orvo::directory::ldap
