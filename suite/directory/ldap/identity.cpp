#include "suite/directory/ldap/identity.h"

#include <utility>

#include "suite/directory/common/distinguished_name.h"

namespace orvo::directory::ldap {
namespace {

std::string key_of(const std::string& name) {
    const auto parsed = DistinguishedName::try_parse(from_utf8(name));
    return parsed ? parsed->key() : name;
}

}  // namespace

Identity::Identity(Kind kind, ServerAddress server, std::string user, const PasswordDigest& digest)
    : kind_(kind),
      server_(std::move(server)),
      server_key_(server_.key()),
      user_(std::move(user)),
      user_key_(key_of(user_)),
      digest_(digest) {}

}  // namespace orvo::directory::ldap
