#include "suite/directory/policy/crypt_hash.h"

#include <crypt.h>

#include <memory>

namespace orvo::directory {
namespace {

static_assert(longest_hashed < CRYPT_MAX_PASSPHRASE_SIZE);

// crypt's working memory holds the password until it is overwritten.
struct FreeOverwritten {
    void operator()(crypt_data* data) const {
        overwrite(data, sizeof *data);
        delete data;
    }
};

}  // namespace

std::optional<std::string> try_crypt(const Secret& password, const std::string& setting) {
    const std::string_view bytes = password.reveal();
    if (bytes.size() > longest_hashed || bytes.find('\0') != std::string_view::npos)
        return std::nullopt;
    const std::unique_ptr<crypt_data, FreeOverwritten> data(new crypt_data{});
    // Not crypt_r: the address sanitizer has one of its own, which calls nothing where the program
    // did not begin with this library.
    const char* hash = crypt_rn(bytes.data(), setting.c_str(), data.get(), sizeof(crypt_data));
    if (!hash) return std::nullopt;
    return hash;
}

}  // namespace orvo::directory
