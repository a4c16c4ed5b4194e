#pragma once

// What the shared store must not show is sealed: AES-256-GCM, with keys that only the site's
// machines have.

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvo::store {

// One key or two: the first one seals, both unseal. A new key goes to the second line on every
// machine, then to the first, and the old one goes once nothing sealed with it is alive.
//
// Sealed: version 1 (a byte), the key's id (4), 24 random bytes, the text, a tag of 16 bytes. Each
// text has a key of its own, HMAC-SHA-256 of the file's key and the first 12 random bytes; the
// other 12 are the nonce. So a key does not wear out, however many texts it seals.
//
// What can be guessed (a user's name) has a name that only who has a key can make out of it. There
// is one for each key, so that two machines have one in common while keys are changed: who keeps
// something under all of his names, and looks for it under all of his, finds it.
//
// Any thread. The keys are overwritten when it goes.
class Keyring {
public:
    // One or two lines of 32 bytes in base64, as `openssl rand -base64 32` writes them. Raises
    // configuration_error's numbers, with the file's name: it is not there, cannot be read,
    // everybody may read or change it, or it holds something else.
    static Keyring read(const std::filesystem::path& file);
    // The same of the file's content; `name` is for messages.
    static Keyring parse(std::string_view content, const std::filesystem::path& name);
    Keyring(Keyring&&) noexcept = default;
    Keyring& operator=(Keyring&&) noexcept = default;
    ~Keyring();

    // `context` is authenticated along: what is sealed for one key of the store cannot be unsealed
    // in the place of another.
    std::string seal(std::string_view plain, std::string_view context) const;
    // Nothing for what none of the keys has sealed for this context.
    std::optional<std::string> unseal(std::string_view sealed, std::string_view context) const;

    // The name under which something is kept whose identifier is a secret by itself (a GUID, a
    // session's): SHA-256, 64 hexadecimal digits. Of what can be guessed it is no protection.
    static std::string name_of(std::string_view secret_identifier);
    // The names of what can be guessed, the first key's first: HMAC-SHA-256 with a key made from
    // the file's, 64 hexadecimal digits.
    std::vector<std::string> names_of(std::string_view guessable) const;

private:
    struct Key {
        std::array<unsigned char, 32> bytes;
        std::array<unsigned char, 32> of_names;  // made from it
        std::array<char, 4> id;
    };

    explicit Keyring(std::vector<Key> keys) : keys_(std::move(keys)) {}

    std::vector<Key> keys_;
};

}  // namespace orvo::store
