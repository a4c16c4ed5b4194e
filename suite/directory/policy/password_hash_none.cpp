// A system without a function that hashes passwords for a store.

#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_hash.h"

namespace orvo::directory {

std::string hashed_password(const Secret&, int) {
    raise_code(result_code::not_supported,
               "This system cannot hash passwords; the server has to do it.");
}

}  // namespace orvo::directory
