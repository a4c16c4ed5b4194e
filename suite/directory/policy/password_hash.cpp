#include "suite/directory/policy/password_hash.h"

#include <crypt.h>

#include <cstdlib>
#include <memory>
#include <optional>

#include "platform/values/failure.h"
#include "suite/directory/policy/crypt_hash.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory {
namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

}  // namespace

std::string hashed_password(const Secret& password, int cost) {
    if (password.reveal().find('\0') != std::string_view::npos)
        raise_runtime_error(runtime_error::invalid_call);
    if (password.reveal().size() > longest_hashed)
        raise_code(result_code::constraint_violation,
                   "A password that is to be hashed cannot have more than 511 bytes.");
    if (cost < HashCost::lowest || cost > HashCost::highest)
        raise_code(result_code::parameter_error, "The cost of a password hash is 1 to 11.");
    const std::unique_ptr<char, Free> salt(
        crypt_gensalt_ra("$y$", static_cast<unsigned long>(cost), nullptr, 0));
    const std::optional<std::string> hash = salt ? try_crypt(password, salt.get()) : std::nullopt;
    if (!hash) raise_code(result_code::other, "The password could not be hashed.");
    return "{CRYPT}" + *hash;
}

}  // namespace orvo::directory
