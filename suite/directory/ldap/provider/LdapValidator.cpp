#include "suite/directory/ldap/provider/LdapValidator.h"

#include <memory>
#include <mutex>
#include <utility>

#include "suite/directory/ldap/pool/connection_pool.h"
#include "suite/directory/ldap/wire/failures.h"
#include "suite/directory/ldap/wire/password_policy.h"
#include "suite/directory/names/written_name.h"

namespace orvo::directory::ldap {
namespace {

// Empty where it is no text that a password could be.
Secret secret_of(const Variant& value) {
    if (value.is_text())
        return is_well_formed(value.text_view()) ? Secret(value.text_view()) : Secret();
    Text text = value.to<Text>();
    Secret secret{TextView(text)};
    overwrite(text.data(), text.size() * sizeof text[0]);
    return secret;
}

// The one used last: a site has one, which every check opens anew.
class LastTarget {
public:
    std::shared_ptr<const CheckTarget> find(TextView server, TextView container) {
        const std::lock_guard lock(mutex_);
        const bool is_it =
            last_ && last_->server == server && last_->written_container == container;
        return is_it ? last_ : nullptr;
    }
    void keep(std::shared_ptr<const CheckTarget> target) {
        const std::lock_guard lock(mutex_);
        last_ = std::move(target);
    }

private:
    std::mutex mutex_;
    std::shared_ptr<const CheckTarget> last_;
};

LastTarget& last_target() {
    static LastTarget made;
    return made;
}

}  // namespace

void LdapValidator::Open(Text& server, Text& user_container) {
    target_ = last_target().find(server, user_container);
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
    found->checks = ConnectionPool::of_process().password_checks(
        ServerAddress::parse(found->server), found->container_name->key());
    target_ = std::move(found);
    last_target().keep(target_);
}

std::int32_t LdapValidator::Validate(Variant& path, Variant& password) {
    if (!target_) raise_runtime_error(runtime_error::object_not_set);
    const Text converted = path.is_text() ? Text() : path.to<Text>();
    const TextView written = path.is_text() ? path.text_view() : converted;
    const Secret secret = secret_of(password);
    if (!target_->container_name) read_container();
    if (secret.empty() || !is_well_formed(written)) return password_check::wrong;
    std::string name;
    if (is_plain_below(written, target_->container)) {
        name = to_utf8(written);
    } else if (const auto below = name_below(written, *target_->container_name)) {
        name = to_utf8(*below);
    } else {
        return password_check::wrong;
    }

    if (!target_->checks.identity) find_checks();
    const BindResult bind = checked(target_->checks, name, secret);
    const std::optional<int> number = judged(bind.code, bind.message, policy_in(bind.controls));
    if (!number) check(bind);
    return *number;
}

BindResult LdapValidator::checked(const Credentials& checks, const std::string& name,
                                  const Secret& password) const {
    Lease lease = ConnectionPool::of_process().lease(checks, limits_);
    BindResult bind = lease.check_password(name, password);
    if (bind.code == result_code::server_down) {
        lease.reopen();
        bind = lease.check_password(name, password);
    }
    if (!bind.connection_failed() && lease.is_shared()) std::move(lease).give_back();
    return bind;
}

}  // namespace orvo::directory::ldap
