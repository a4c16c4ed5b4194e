#include <algorithm>

#include "suite/directory/entries/given_password.h"
#include "suite/directory/entries/proven_password.h"
#include "suite/directory/ldap/provider/LdapEntry.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_hash.h"

namespace orvo::directory::ldap {
namespace {

constexpr const char* user_password = "userPassword";

bool is_encrypted(TextView server) {
    return std::ranges::all_of(ServerAddress::parse(server).hosts(), [](const ServerHost& host) {
        return host.security != Security::none;
    });
}

// Whether this refusal leaves open that somebody else may do it: users who may not change their
// password, or others who may not without the former one.
bool may_another(const Result& refused) {
    return refused.code == result_code::insufficient_access ||
           refused.code == result_code::unwilling_to_perform;
}

// Raises what is not a success of `body`, which sets the flag once it may be done.
template <class Body>
void check_change(const bool& may_be_done, Body body) {
    try {
        check(body());
    } catch (const Failure& failure) {
        if (!may_be_done) throw;
        throw Failure(failure.number, failure.source,
                      failure.description + u" The password may have been changed all the same.");
    }
}

}  // namespace

// How a password is written here. Raises where it is not.
PasswordWriting LdapEntry::password_writing() {
    const PasswordWriting way = facts().password_writing;
    if (way == PasswordWriting::unknown)
        raise_code(result_code::not_supported,
                   "The server shows no way to set a password: its root entry lists no Password "
                   "Modify operation (RFC 3062).");
    if (way == PasswordWriting::unicode_attribute && !is_encrypted(server_))
        raise_code(result_code::confidentiality_required,
                   "This server's passwords are written over encrypted connections alone.");
    return way;
}

void LdapEntry::set_password(const Variant& value, bool& may_be_done) {
    std::optional<Secret> former =
        ProvenPassword::take(login_->server_key(), key_, client_.pool().clock().now());
    const Secret password = password_in(value);
    if (password.empty())
        raise_code(result_code::constraint_violation, "A new password cannot be empty.");
    if (!former && login_->user_key() == key_) former = login_->password();
    const bool may_be_either = former && password_writing() == PasswordWriting::modify_operation;
    const NotedWrite noted(client_.writes(), key_);
    check_change(may_be_done, [&] {
        const auto set = [&] { return write_password(*login_, password, {}, may_be_done); };
        const auto change = [&] { return change_own_password(password, *former, may_be_done); };
        const bool is_change_first = former && facts().tells_own_change_from_reset;
        const Result result = is_change_first ? change() : set();
        if (!may_be_either || !may_another(result)) return result;
        const Result other = is_change_first ? set() : change();
        return may_another(other) ? result : other;
    });
}

// `former`: empty where it is not the user's own change.
Result LdapEntry::write_password(ServerLogin& login, const Secret& password, const Secret& former,
                                 bool& may_be_done) {
    const PasswordWriting way = password_writing();
    Replacement hashed{user_password, {}};
    if (way == PasswordWriting::hashed_here) hashed.values = {hashed_password(password)};
    const auto write = [&](Session& session) -> Result {
        switch (way) {
            case PasswordWriting::unicode_attribute:
                return session.change_unicode_password(name_, password, former);
            case PasswordWriting::hashed_here:
                return session.modify(name_, {&hashed, 1});
            default:
                return session.change_password(name_, password, former);
        }
    };
    return login.write_password(name_, password, [&](Session& session) {
        Result result = write(session);
        may_be_done |= result.may_be_done();
        return result;
    });
}

// As the user, but in an Active Directory, where the former password is all that is asked for:
// users who have to change theirs cannot even log in there.
Result LdapEntry::change_own_password(const Secret& password, const Secret& former,
                                      bool& may_be_done) {
    if (login_->user_key() == key_ || password_writing() == PasswordWriting::unicode_attribute)
        return write_password(*login_, password, former, may_be_done);
    ServerLogin own(client_.pool(), server_, from_utf8(name_), former, limits_);
    try {
        own.authenticate();
    } catch (const Failure& refused) {  // an expired password is right, and logs nobody in
        if (refused.number != number_of_code(result_code::invalid_credentials)) throw;
        return {result_code::insufficient_access, "The user cannot log in to change it.", {}};
    }
    return write_password(own, password, former, may_be_done);
}

void LdapEntry::clear_password(const std::string& name, bool& may_be_done) {
    if (facts().password_writing == PasswordWriting::unicode_attribute)
        raise_code(result_code::unwilling_to_perform,
                   "This server's users always have a password; disable the account instead.");
    const Replacement nothing{name, {}};
    const NotedWrite noted(client_.writes(), key_);
    check_change(may_be_done, [&] {
        return login_->write_password(name_, Secret(), [&](Session& session) {
            Result result = session.modify(name_, {&nothing, 1});
            may_be_done |= result.may_be_done();
            return result;
        });
    });
}

}  // namespace orvo::directory::ldap
