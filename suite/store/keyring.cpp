#include "suite/store/keyring.h"

#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>
#include <openssl/sha.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <new>
#include <stdexcept>

#include "platform/values/failure.h"
#include "platform/values/secret.h"
#include "suite/configuration/ini_files.h"
#include "suite/store/hexadecimal.h"

namespace orvo::store {
namespace {

namespace fs = std::filesystem;

constexpr char version = 1;
constexpr std::size_t id_size = 4;
constexpr std::size_t header_size = 1 + id_size;
constexpr std::size_t salt_size = 12;
constexpr std::size_t nonce_size = 12;
constexpr std::size_t tag_size = 16;
constexpr std::size_t text_begin = header_size + salt_size + nonce_size;

using KeyBytes = std::array<unsigned char, 32>;
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

const unsigned char* octets(const char* text) {
    return reinterpret_cast<const unsigned char*>(text);
}
unsigned char* octets(char* text) { return reinterpret_cast<unsigned char*>(text); }

[[noreturn]] void refuse(std::int32_t number, const fs::path& file, const Text& reason) {
    throw Failure(number, Text(configuration_source), text_of(file) + u": " + reason);
}

// HMAC-SHA-256.
void authenticate(const KeyBytes& key, std::string_view text, KeyBytes& code) {
    if (!HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()), octets(text.data()),
              text.size(), code.data(), nullptr))
        throw std::bad_alloc();
}

// From which the key of names is made. No salt is as long.
constexpr std::string_view label_of_names = "the key of names";
static_assert(label_of_names.size() != salt_size);

// A message's own key.
class MessageKey {
public:
    MessageKey(const KeyBytes& key, std::string_view salt) { authenticate(key, salt, bytes_); }
    MessageKey(const MessageKey&) = delete;
    ~MessageKey() { overwrite(bytes_.data(), bytes_.size()); }

    const unsigned char* data() const { return bytes_.data(); }

private:
    KeyBytes bytes_;
};

int length_of(std::string_view text) {
    if (text.size() > std::size_t{1} << 30)
        throw std::length_error("a text of more than a gigabyte cannot be sealed");
    return static_cast<int>(text.size());
}

// One line of the file; nothing where it is no key.
bool try_read_key(std::string_view line, KeyBytes& key) {
    // 32 bytes are 43 signs and one to fill up.
    std::array<unsigned char, 33> decoded;
    const bool is_key =
        line.size() == 44 && line.find('=') == 43 &&
        EVP_DecodeBlock(decoded.data(), octets(line.data()), static_cast<int>(line.size())) == 33;
    if (is_key) std::copy_n(decoded.begin(), key.size(), key.begin());
    overwrite(decoded.data(), decoded.size());
    return is_key;
}

}  // namespace

Keyring::~Keyring() {
    for (Key& key : keys_) {
        overwrite(key.bytes.data(), key.bytes.size());
        overwrite(key.of_names.data(), key.of_names.size());
    }
}

Keyring Keyring::read(const fs::path& file) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found)
        refuse(configuration_error::file_not_found, file, u"there is no such file");
    if (error) refuse(configuration_error::file_not_readable, file, u"it cannot be read");
    if (status.type() != fs::file_type::regular)
        refuse(configuration_error::file_not_readable, file, u"this is not a file");
    constexpr fs::perms too_much = fs::perms::others_all | fs::perms::group_write;
    if ((status.permissions() & too_much) != fs::perms::none)
        refuse(configuration_error::malformed_file, file,
               u"others may read or change the keys of the store (chmod 640 takes that away)");
    // Two keys are less. It is read without a copy that would stay behind.
    std::string content(1000, '\0');
    std::ifstream stream;
    stream.rdbuf()->pubsetbuf(nullptr, 0);
    stream.open(file, std::ios::binary);
    stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    if (!stream.is_open() || stream.bad())
        refuse(configuration_error::file_not_readable, file, u"it cannot be read");
    content.resize(static_cast<std::size_t>(stream.gcount()));
    Keyring keyring = parse(content, file);
    overwrite(content.data(), content.size());
    return keyring;
}

Keyring Keyring::parse(std::string_view content, const fs::path& name) {
    Keyring keyring{std::vector<Key>()};
    std::vector<Key>& keys = keyring.keys_;
    keys.reserve(3);
    for (long long number = 1; !content.empty(); ++number) {
        const std::size_t end = std::min(content.find('\n'), content.size());
        std::string_view line = content.substr(0, end);
        content.remove_prefix(std::min(end + 1, content.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.empty() && content.empty()) break;
        Key& key = keys.emplace_back();
        if (!try_read_key(line, key.bytes))
            refuse(configuration_error::malformed_file, name,
                   u"line " + decimal(number) +
                       u" is no key of 32 bytes in base64 (openssl rand -base64 32 writes one)");
        if (keys.size() == 3)
            refuse(configuration_error::malformed_file, name, u"there are more than two keys");
        std::array<unsigned char, SHA256_DIGEST_LENGTH> digest;
        SHA256(key.bytes.data(), key.bytes.size(), digest.data());
        std::copy_n(digest.begin(), key.id.size(), key.id.begin());
        authenticate(key.bytes, label_of_names, key.of_names);
    }
    if (keys.empty()) refuse(configuration_error::malformed_file, name, u"there is no key in it");
    return keyring;
}

std::string Keyring::seal(std::string_view plain, std::string_view context) const {
    const Key& key = keys_.front();
    const int size = length_of(plain);
    std::string sealed(text_begin + plain.size() + tag_size, '\0');
    sealed[0] = version;
    std::ranges::copy(key.id, sealed.begin() + 1);
    if (RAND_bytes(octets(sealed.data() + header_size), salt_size + nonce_size) != 1)
        throw std::runtime_error("the system has no randomness to give");

    const std::string_view made = sealed;
    const MessageKey own(key.bytes, made.substr(header_size, salt_size));
    const CipherContext cipher(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    unsigned char* const text = octets(sealed.data() + text_begin);
    int written = 0;
    if (!cipher ||
        EVP_EncryptInit_ex(cipher.get(), EVP_aes_256_gcm(), nullptr, own.data(),
                           octets(made.data() + header_size + salt_size)) != 1 ||
        EVP_EncryptUpdate(cipher.get(), nullptr, &written, octets(made.data()), header_size) != 1 ||
        EVP_EncryptUpdate(cipher.get(), nullptr, &written, octets(context.data()),
                          length_of(context)) != 1 ||
        EVP_EncryptUpdate(cipher.get(), text, &written, octets(plain.data()), size) != 1 ||
        EVP_EncryptFinal_ex(cipher.get(), text + size, &written) != 1 ||
        EVP_CIPHER_CTX_ctrl(cipher.get(), EVP_CTRL_AEAD_GET_TAG, tag_size, text + size) != 1)
        throw std::runtime_error("a text could not be sealed");
    return sealed;
}

std::optional<std::string> Keyring::unseal(std::string_view sealed,
                                           std::string_view context) const {
    if (sealed.size() < text_begin + tag_size || sealed[0] != version) return std::nullopt;
    const auto key = std::ranges::find_if(keys_, [&](const Key& one) {
        return std::string_view(one.id.data(), id_size) == sealed.substr(1, id_size);
    });
    if (key == keys_.end()) return std::nullopt;

    const MessageKey own(key->bytes, sealed.substr(header_size, salt_size));
    const std::string_view text = sealed.substr(text_begin, sealed.size() - text_begin - tag_size);
    std::string tag(sealed.substr(sealed.size() - tag_size));
    std::string plain(text.size(), '\0');
    const CipherContext cipher(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    int written = 0;
    if (!cipher ||
        EVP_DecryptInit_ex(cipher.get(), EVP_aes_256_gcm(), nullptr, own.data(),
                           octets(sealed.data() + header_size + salt_size)) != 1 ||
        EVP_DecryptUpdate(cipher.get(), nullptr, &written, octets(sealed.data()), header_size) !=
            1 ||
        EVP_DecryptUpdate(cipher.get(), nullptr, &written, octets(context.data()),
                          length_of(context)) != 1 ||
        EVP_DecryptUpdate(cipher.get(), octets(plain.data()), &written, octets(text.data()),
                          length_of(text)) != 1 ||
        EVP_CIPHER_CTX_ctrl(cipher.get(), EVP_CTRL_AEAD_SET_TAG, tag_size, tag.data()) != 1)
        throw std::runtime_error("a sealed text could not be read");
    unsigned char nothing;
    if (EVP_DecryptFinal_ex(cipher.get(), &nothing, &written) == 1) return plain;
    overwrite(plain.data(), plain.size());
    return std::nullopt;
}

std::string Keyring::name_of(std::string_view secret_identifier) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest;
    SHA256(octets(secret_identifier.data()), secret_identifier.size(), digest.data());
    return lower_hexadecimal(digest);
}

std::vector<std::string> Keyring::names_of(std::string_view guessable) const {
    std::vector<std::string> names;
    for (const Key& key : keys_) {
        KeyBytes name;
        authenticate(key.of_names, guessable, name);
        names.push_back(lower_hexadecimal(name));
    }
    return names;
}

}  // namespace orvo::store
