#include "suite/directory/ldap/LdapValidator.h"

#include "suite/directory/common/distinguished_name.h"
#include "suite/directory/ldap/failures.h"
#include "suite/directory/ldap/password_policy.h"

namespace orvo::directory::ldap {
namespace {

Secret secret_of(const Variant& value) {
    if (value.is_text()) return Secret(value.text_view());
    Text text = value.to<Text>();
    Secret secret{TextView(text)};
    overwrite(text.data(), text.size() * sizeof text[0]);
    return secret;
}

}  // namespace

void LdapValidator::Open(Text& server, Text& user_container) {
    server_ = server;
    container_ = container_name(user_container);
    is_open_ = true;
}

std::int32_t LdapValidator::Validate(Variant& path, Variant& password) {
    if (!is_open_) raise_runtime_error(runtime_error::object_not_set);
    const Text path_text = path.to<Text>();
    const Secret secret = secret_of(password);
    const auto name = DistinguishedName::try_parse(path_text);
    const auto container = DistinguishedName::try_parse(container_);
    if (!container) raise_code(result_code::invalid_name, to_utf8(container_));
    if (secret.empty() || !name || !name->is_below(*container)) return password_check::wrong;

    Session session = Session::connect(ServerAddress::parse(server_), limits_);
    const BindResult bind = session.bind_with_policy(to_utf8(path_text), secret);
    const std::optional<int> number = judged(bind);
    if (!number) check(bind);
    return *number;
}

}  // namespace orvo::directory::ldap
