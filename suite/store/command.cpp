#include "suite/store/command.h"

#include <openssl/sha.h>

#include <array>
#include <utility>

#include "suite/store/hexadecimal.h"

namespace orvo::store {
namespace {

std::string sha1_of(const std::string& text) {
    std::array<unsigned char, SHA_DIGEST_LENGTH> digest;
    SHA1(reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data());
    return lower_hexadecimal(digest);
}

}  // namespace

Script::Script(std::string script_text) : text(std::move(script_text)), sha1(sha1_of(text)) {}

}  // namespace orvo::store
