#include "suite/directory/policy/stored_password.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/crypt_hash.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_hash.h"

namespace orvo::directory {
namespace {

using Digest = const EVP_MD* (*)();
using Octets = std::string;

enum class Form { crypt, digest, salted_digest, pbkdf2 };

struct Scheme {
    std::string_view name;
    Form form;
    Digest digest;
};
constexpr Scheme schemes[] = {
    {"CRYPT", Form::crypt, nullptr},
    {"SSHA", Form::salted_digest, EVP_sha1},
    {"SSHA256", Form::salted_digest, EVP_sha256},
    {"SSHA384", Form::salted_digest, EVP_sha384},
    {"SSHA512", Form::salted_digest, EVP_sha512},
    {"SMD5", Form::salted_digest, EVP_md5},
    {"SHA", Form::digest, EVP_sha1},
    {"SHA256", Form::digest, EVP_sha256},
    {"SHA384", Form::digest, EVP_sha384},
    {"SHA512", Form::digest, EVP_sha512},
    {"MD5", Form::digest, EVP_md5},
    {"PBKDF2", Form::pbkdf2, EVP_sha1},
    {"PBKDF2-SHA1", Form::pbkdf2, EVP_sha1},
    {"PBKDF2-SHA256", Form::pbkdf2, EVP_sha256},
    {"PBKDF2-SHA512", Form::pbkdf2, EVP_sha512},
};

struct Stored {
    const Scheme* scheme;
    std::string_view hash;
};

std::optional<Stored> try_read(std::string_view stored) {
    const std::size_t end = stored.find('}');
    if (!stored.starts_with('{') || end == std::string_view::npos) return std::nullopt;
    const std::string_view name = stored.substr(1, end - 1);
    for (const Scheme& scheme : schemes)
        if (ascii::equal_ignoring_case(scheme.name, name))
            return Stored{&scheme, stored.substr(end + 1)};
    return std::nullopt;
}

// Base64, whether or not it is filled up to whole groups of four.
std::optional<Octets> try_base64(std::string_view text) {
    while (text.ends_with('=')) text.remove_suffix(1);
    const bool is_base64 = std::ranges::all_of(
        text, [](char c) { return ascii::is_alphanumeric(c) || c == '+' || c == '/'; });
    if (!is_base64 || text.empty() || text.size() % 4 == 1) return std::nullopt;
    std::string filled(text);
    filled.resize((text.size() + 3) / 4 * 4, '=');
    Octets octets(filled.size() / 4 * 3, '\0');
    if (EVP_DecodeBlock(reinterpret_cast<unsigned char*>(octets.data()),
                        reinterpret_cast<const unsigned char*>(filled.data()),
                        static_cast<int>(filled.size())) < 0)
        return std::nullopt;
    octets.resize(text.size() * 3 / 4);
    return octets;
}

bool are_equal(std::string_view one, std::string_view other) {
    return one.size() == other.size() && CRYPTO_memcmp(one.data(), other.data(), one.size()) == 0;
}

[[noreturn]] void raise_unchecked() {
    raise_code(result_code::other, "The password could not be checked.");
}

std::size_t size_of(Digest digest) { return static_cast<std::size_t>(EVP_MD_get_size(digest())); }

Octets digest_of(Digest digest, const Secret& password, std::string_view salt) {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(),
                                                                          EVP_MD_CTX_free);
    const std::string_view bytes = password.reveal();
    Octets result(size_of(digest), '\0');
    if (!context || EVP_DigestInit_ex(context.get(), digest(), nullptr) != 1 ||
        EVP_DigestUpdate(context.get(), bytes.data(), bytes.size()) != 1 ||
        EVP_DigestUpdate(context.get(), salt.data(), salt.size()) != 1 ||
        EVP_DigestFinal_ex(context.get(), reinterpret_cast<unsigned char*>(result.data()),
                           nullptr) != 1)
        raise_unchecked();
    return result;
}

bool is_digest_of(const Stored& stored, const Secret& password) {
    const std::optional<Octets> octets = try_base64(stored.hash);
    if (!octets) return false;
    const std::string_view digest = std::string_view(*octets).substr(
        0, std::min(octets->size(), size_of(stored.scheme->digest)));
    const std::string_view salt = std::string_view(*octets).substr(digest.size());
    if (salt.empty() == (stored.scheme->form == Form::salted_digest)) return false;
    return are_equal(digest, digest_of(stored.scheme->digest, password, salt));
}

// Its base64 has "." for "+".
std::optional<Octets> try_adapted_base64(std::string_view text) {
    std::string plain(text);
    std::ranges::replace(plain, '.', '+');
    return try_base64(plain);
}

bool is_pbkdf2_of(const Stored& stored, const Secret& password) {
    const std::size_t first = stored.hash.find('$');
    if (first == std::string_view::npos) return false;
    const std::size_t second = stored.hash.find('$', first + 1);
    if (second == std::string_view::npos) return false;
    int rounds = 0;
    const char* const end = stored.hash.data() + first;
    const auto [rest, error] = std::from_chars(stored.hash.data(), end, rounds);
    if (error != std::errc{} || rest != end || rounds < 1) return false;
    const auto salt = try_adapted_base64(stored.hash.substr(first + 1, second - first - 1));
    const auto key = try_adapted_base64(stored.hash.substr(second + 1));
    if (!salt || !key || key->size() != size_of(stored.scheme->digest)) return false;
    const std::string_view bytes = password.reveal();
    Octets derived(key->size(), '\0');
    if (PKCS5_PBKDF2_HMAC(bytes.data(), static_cast<int>(bytes.size()),
                          reinterpret_cast<const unsigned char*>(salt->data()),
                          static_cast<int>(salt->size()), rounds, stored.scheme->digest(),
                          static_cast<int>(derived.size()),
                          reinterpret_cast<unsigned char*>(derived.data())) != 1)
        raise_unchecked();
    return are_equal(*key, derived);
}

bool is_crypt_of(const Stored& stored, const Secret& password) {
    const std::string hash(stored.hash);
    const std::optional<std::string> computed = try_crypt(password, hash);
    return computed && are_equal(hash, *computed);
}

// How yescrypt hashes of the costs begin, behind "$y$".
constexpr std::string_view parameters[] = {"j75$", "j85$", "j7T$", "j8T$", "j9T$", "jAT$",
                                           "jBT$", "jCT$", "jDT$", "jET$", "jFT$"};
static_assert(std::size(parameters) == HashCost::highest);

}  // namespace

bool is_hash_of(std::string_view stored, const Secret& password) {
    const std::optional<Stored> read = try_read(stored);
    if (!read) return false;
    switch (read->scheme->form) {
        case Form::crypt:
            return is_crypt_of(*read, password);
        case Form::digest:
        case Form::salted_digest:
            return is_digest_of(*read, password);
        case Form::pbkdf2:
            return is_pbkdf2_of(*read, password);
    }
    return false;
}

bool is_known_hash(std::string_view stored) { return try_read(stored).has_value(); }

bool should_be_renewed(std::string_view stored, int cost) {
    const std::optional<Stored> read = try_read(stored);
    if (!read || read->scheme->form != Form::crypt || !read->hash.starts_with("$y$")) return true;
    const std::string_view behind = read->hash.substr(3);
    const auto found = std::ranges::find_if(
        parameters, [&](std::string_view beginning) { return behind.starts_with(beginning); });
    return found == std::end(parameters) || found - std::begin(parameters) + 1 < cost;
}

void imitate_check(const Secret& password, int cost) {
    const int within = std::clamp(cost, HashCost::lowest, HashCost::highest);
    try_crypt(password, "$y$" + std::string(parameters[within - 1]) + "k2XAnEHBqQ1Ct2aMXFKNa/");
}

}  // namespace orvo::directory
