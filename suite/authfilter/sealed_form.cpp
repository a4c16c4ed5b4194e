#include "suite/authfilter/sealed_form.h"

#include <cstring>

namespace orvo::authfilter {
namespace {

using Length = std::uint32_t;

// Each field is its length and its bytes. The bytes are overwritten when this goes.
class Fields {
public:
    explicit Fields(std::string& bytes) : bytes_(bytes) {}
    ~Fields() { overwrite(bytes_.data(), bytes_.capacity()); }
    Fields(const Fields&) = delete;
    Fields& operator=(const Fields&) = delete;

    // So that adding leaves no copy of a password behind.
    void make_room(std::size_t size) { bytes_.reserve(size); }
    void add(std::string_view field) {
        const auto length = static_cast<Length>(field.size());
        bytes_.append(reinterpret_cast<const char*>(&length), sizeof length).append(field);
    }
    const std::string& bytes() const { return bytes_; }

    bool is_at_end() const { return at_ == bytes_.size(); }
    std::optional<std::string_view> next() {
        Length length = 0;
        if (bytes_.size() - at_ < sizeof length) return std::nullopt;
        std::memcpy(&length, bytes_.data() + at_, sizeof length);
        at_ += sizeof length;
        if (bytes_.size() - at_ < length) return std::nullopt;
        at_ += length;
        return std::string_view(bytes_).substr(at_ - length, length);
    }

private:
    std::string& bytes_;
    std::size_t at_ = 0;
};

}  // namespace

std::string sealed_record(const Record& record, const store::Keyring& keyring,
                          std::string_view key) {
    const std::string name = to_utf8_with_halves(record.user_name),
                      path = to_utf8_with_halves(record.account_path),
                      nt_user = to_utf8_with_halves(record.nt_user);
    const std::string_view fields[] = {name, path, record.password.reveal(), nt_user,
                                       record.nt_password.reveal()};
    std::size_t size = 0;
    for (const std::string_view field : fields) size += sizeof(Length) + field.size();
    std::string bytes;
    Fields plain(bytes);
    plain.make_room(size);
    for (const std::string_view field : fields) plain.add(field);
    return keyring.seal(plain.bytes(), key);
}

std::string sealed_login(const LetIn& login, const store::Keyring& keyring, std::string_view key) {
    std::string bytes;
    Fields plain(bytes);
    plain.add(to_utf8_with_halves(login.user));
    for (const std::int32_t application : login.applications)
        plain.add({reinterpret_cast<const char*>(&application), sizeof application});
    return keyring.seal(plain.bytes(), key);
}

std::optional<Record> try_unseal_record(std::string_view sealed, const store::Keyring& keyring,
                                        std::string_view key) {
    auto bytes = keyring.unseal(sealed, key);
    if (!bytes) return std::nullopt;
    Fields plain(*bytes);
    const auto name = plain.next(), path = plain.next(), password = plain.next(),
               nt_user = plain.next(), nt_password = plain.next();
    if (!nt_password || !plain.is_at_end()) return std::nullopt;
    return Record{from_utf8_with_halves(*name), from_utf8_with_halves(*path),
                  Secret::of_bytes(*password), from_utf8_with_halves(*nt_user),
                  Secret::of_bytes(*nt_password)};
}

std::optional<LetIn> try_unseal_login(std::string_view sealed, const store::Keyring& keyring,
                                      std::string_view key) {
    auto bytes = keyring.unseal(sealed, key);
    if (!bytes) return std::nullopt;
    Fields plain(*bytes);
    const auto user = plain.next();
    if (!user) return std::nullopt;
    LetIn login{from_utf8_with_halves(*user), {}};
    while (!plain.is_at_end()) {
        const auto application = plain.next();
        if (!application || application->size() != sizeof(std::int32_t)) return std::nullopt;
        std::memcpy(&login.applications.emplace_back(), application->data(), sizeof(std::int32_t));
    }
    return login;
}

}  // namespace orvo::authfilter
