#include "suite/directory/ldap/LdapValidator.h"

#include <memory>
#include <mutex>
#include <utility>

#include "suite/directory/common/written_name.h"
#include "suite/directory/ldap/connection_pool.h"
#include "suite/directory/ldap/failures.h"
#include "suite/directory/ldap/password_policy.h"

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

// What a validator is opened with, read.
struct Target {
    Text server;
    Text container;
    DistinguishedName container_name;
    Credentials checks;
};

// The one used last: a site has one, which every check opens anew.
class LastTarget {
public:
    std::shared_ptr<const Target> find(TextView server, TextView container) {
        const std::lock_guard lock(mutex_);
        const bool is_it = last_ && last_->server == server && last_->container == container;
        return is_it ? last_ : nullptr;
    }
    void keep(std::shared_ptr<const Target> target) {
        const std::lock_guard lock(mutex_);
        last_ = std::move(target);
    }

private:
    std::mutex mutex_;
    std::shared_ptr<const Target> last_;
};

LastTarget& last_target() {
    static LastTarget made;
    return made;
}

}  // namespace

void LdapValidator::Open(Text& server, Text& user_container) {
    server_ = server;
    container_ = container_name(user_container);
    is_open_ = true;
}

std::int32_t LdapValidator::Validate(Variant& path, Variant& password) {
    if (!is_open_) raise_runtime_error(runtime_error::object_not_set);
    const Text written = path.to<Text>();
    const Secret secret = secret_of(password);
    auto target = last_target().find(server_, container_);
    const auto parsed = target ? std::nullopt : DistinguishedName::try_parse(container_);
    if (!target && !parsed) raise_code(result_code::invalid_name, to_utf8(container_));
    const DistinguishedName& container = target ? target->container_name : *parsed;
    const std::optional<Text> name = name_below(written, container, container_);
    if (secret.empty() || !name || !is_well_formed(written)) return password_check::wrong;
    if (!target) {
        ConnectionPool& pool = ConnectionPool::of_process();
        target = std::make_shared<const Target>(Target{
            server_, container_, container, pool.password_checks(ServerAddress::parse(server_))});
        last_target().keep(target);
    }

    const BindResult bind = checked(target->checks, to_utf8(*name), secret);
    const std::optional<int> number = judged(bind);
    if (!number) check(bind);
    return *number;
}

BindResult LdapValidator::checked(const Credentials& checks, const std::string& name,
                                  const Secret& password) const {
    Lease lease = ConnectionPool::of_process().lease(checks, limits_);
    BindResult bind = lease.session().bind(name, password, Policy::asked);
    if (bind.code == result_code::server_down) {
        lease.reopen();
        bind = lease.session().bind(name, password, Policy::asked);
    }
    if (!bind.connection_failed() && lease.is_shared()) std::move(lease).give_back();
    return bind;
}

}  // namespace orvo::directory::ldap
