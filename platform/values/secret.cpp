#include "platform/values/secret.h"

#include <algorithm>
#include <cstring>

namespace orvo {

// By single characters, here and below: a longer text would leave copies behind as it grows.
Secret::Secret(TextView text) : bytes_(std::make_unique<char[]>(text.size() * 3 + 1)) {
    while (!text.empty()) {
        const bool is_whole = orvo::is_well_formed(text.substr(0, 2));
        const std::size_t units = is_whole ? std::min<std::size_t>(2, text.size()) : 1;
        const std::string character = to_utf8_with_halves(text.substr(0, units));
        std::memcpy(bytes_.get() + size_, character.data(), character.size());
        size_ += character.size();
        text.remove_prefix(units);
    }
}

Secret Secret::of_bytes(std::string_view bytes) {
    Secret secret;
    secret.bytes_ = std::make_unique<char[]>(bytes.size() + 1);
    if (!bytes.empty()) std::memcpy(secret.bytes_.get(), bytes.data(), bytes.size());
    secret.size_ = bytes.size();
    return secret;
}

void Secret::write_to(Text& text) const {
    std::string_view bytes = reveal();
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const auto lead = static_cast<unsigned char>(bytes.front());
        const std::size_t size = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        text += from_utf8_with_halves(bytes.substr(0, size));
        bytes.remove_prefix(std::min(size, bytes.size()));
    }
}

bool Secret::is_well_formed() const {
    return reveal([](TextView text) { return orvo::is_well_formed(text); });
}

}  // namespace orvo
