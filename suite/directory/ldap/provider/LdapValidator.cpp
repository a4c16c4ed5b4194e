#include "suite/directory/ldap/provider/LdapValidator.h"

#include <memory>
#include <utility>

#include "suite/directory/entries/audited.h"
#include "suite/directory/entries/proven_password.h"
#include "suite/directory/ldap/pool/attempts.h"
#include "suite/directory/ldap/provider/mapped_directory.h"
#include "suite/directory/ldap/wire/password_policy.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_form.h"

namespace orvo::directory::ldap {

void LdapValidator::Open(Text& server, Text& user_container) {
    target_ = client_.last_check_target().find(server, user_container);
    if (target_) return;
    auto unread = std::make_shared<CheckTarget>();
    unread->server = server;
    unread->written_container = user_container;
    target_ = std::move(unread);
}

void LdapValidator::read_container() {
    auto read = std::make_shared<CheckTarget>(*target_);
    read->container = container_name(read->written_container);
    read->container_name = DistinguishedName::try_parse(read->container);
    if (!read->container_name) raise_code(result_code::invalid_name, to_utf8(read->container));
    target_ = std::move(read);
}

void LdapValidator::find_checks() {
    auto found = std::make_shared<CheckTarget>(*target_);
    found->checks = client_.pool().checks_below(ServerAddress::parse(found->server),
                                                found->container_name->key());
    target_ = std::move(found);
    client_.last_check_target().keep(target_);
}

std::int32_t LdapValidator::Validate(Variant& path, Variant& password) {
    if (!target_) raise_runtime_error(runtime_error::object_not_set);
    ProvenPassword::forget();
    const Text converted = path.is_text() ? Text() : path.to<Text>();
    const TextView written = path.is_text() ? path.text_view() : converted;
    const auto secret = password.to<Secret>();
    const std::shared_ptr<const CheckTarget> asked = target_;  // the check may find another
    return audited_check(asked->server, written, [&] { return check_password(written, secret); });
}

CheckAnswer LdapValidator::check_password(TextView written, const Secret& secret) {
    if (!target_->container_name) read_container();
    if (secret.empty() || !secret.is_well_formed() || unusable(secret) || !is_well_formed(written))
        return {password_check::wrong};
    std::string name;
    if (is_plain_below(written, target_->container)) {
        name = to_utf8(written);
    } else if (const auto below = name_below(written, *target_->container_name)) {
        name = to_utf8(*below);
    } else {
        return {password_check::wrong};
    }
    return throttled_check(
        name, [&] { return find_user(name); },
        [&](const std::string& user) { return ask_server(user, secret); });
}

std::optional<std::string> LdapValidator::find_user(const std::string& name) {
    auto mapped = MappedDirectory::try_open(client_, target_->server, target_->container, limits_);
    return mapped ? mapped->find(name) : name;
}

std::int32_t LdapValidator::ask_server(const std::string& name, const Secret& secret) {
    if (!target_->checks) find_checks();
    Attempts attempts(client_.pool(), target_->checks, {Effect::bind, name, limits_});
    std::optional<int> number;
    const BindResult bind = run(attempts, [&](Session& session) {
        BindResult answer = session.bind(name, secret, Policy::asked);
        number = judged(answer.code, answer.message, policy_in(answer.controls));
        if (number == password_check::right) attempts.note_right(secret);
        return answer;
    });
    if (!number) check(bind);
    if (*number == password_check::right || *number == password_check::expired)
        ProvenPassword::note(target_->checks->group().key(), name, secret,
                             client_.pool().clock().now());
    return *number;
}

}  // namespace orvo::directory::ldap
