#include "suite/directory/ldap/pool/identity.h"

#include <utility>

namespace orvo::directory::ldap {

Identity::Identity(Kind kind, ServerAddress server, std::string user, const PasswordDigest& digest)
    : kind_(kind),
      server_(std::move(server)),
      server_key_(server_.key()),
      user_(std::move(user)),
      user_key_(user_),
      digest_(digest) {}

}  // namespace orvo::directory::ldap
