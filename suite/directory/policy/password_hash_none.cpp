// A system without a function that hashes passwords for a store.

#include "platform/values/failure.h"
#include "suite/directory/policy/password_hash.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory {

std::string hashed_password(const Secret&) {
    throw directory_failure(result_code::not_supported, u"OrvoDirectory",
                            "This system cannot hash passwords; the server has to do it.");
}

}  // namespace orvo::directory
