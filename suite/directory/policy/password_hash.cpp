#include "suite/directory/policy/password_hash.h"

#include <crypt.h>

#include <cstdlib>
#include <memory>

#include "platform/values/failure.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory {
namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

// crypt's working memory holds the password until it is overwritten.
struct FreeOverwritten {
    void operator()(crypt_data* data) const {
        overwrite(data, sizeof *data);
        delete data;
    }
};

[[noreturn]] void raise_unhashed() {
    throw directory_failure(result_code::other, u"OrvoDirectory",
                            "The password could not be hashed.");
}

}  // namespace

std::string hashed_password(const Secret& password) {
    if (password.reveal().find('\0') != std::string_view::npos)
        raise_runtime_error(runtime_error::invalid_call);
    const std::unique_ptr<char, Free> salt(crypt_gensalt_ra("$y$", 0, nullptr, 0));
    if (!salt) raise_unhashed();
    const std::unique_ptr<crypt_data, FreeOverwritten> data(new crypt_data{});
    const char* hash = crypt_r(password.reveal().data(), salt.get(), data.get());
    if (!hash || hash[0] == '*') raise_unhashed();
    return std::string("{CRYPT}") + hash;
}

}  // namespace orvo::directory
