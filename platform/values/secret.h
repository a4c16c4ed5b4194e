#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/values/text.h"

namespace orvo {

// Overwrites memory in a way that the compiler keeps.
inline void overwrite(void* memory, std::size_t size) {
    for (volatile unsigned char* byte = static_cast<unsigned char*>(memory); size > 0; --size)
        *byte++ = 0;
}

// A password, in UTF-8. It cannot be printed, compared or converted by accident: `reveal` is the
// only way to the characters, and the word to search for in an audit. Its memory is overwritten
// when it goes. Move-only, so that copies are made knowingly (`clone`).
class Secret {
public:
    Secret() = default;
    explicit Secret(TextView text) : bytes_(std::make_unique<char[]>(text.size() * 3 + 1)) {
        // By single characters: a longer text would leave copies behind as it grows.
        while (!text.empty()) {
            const bool is_pair = text.size() > 1 && (text[0] & 0xFC00) == 0xD800;
            const std::string character = to_utf8(text.substr(0, is_pair ? 2 : 1));
            std::memcpy(bytes_.get() + size_, character.data(), character.size());
            size_ += character.size();
            text.remove_prefix(is_pair ? 2 : 1);
        }
    }
    static Secret of_bytes(std::string_view bytes) {
        Secret secret;
        secret.assign(bytes);
        return secret;
    }
    Secret(Secret&& other) noexcept
        : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, 0)) {}
    Secret& operator=(Secret&& other) noexcept {
        std::swap(bytes_, other.bytes_);
        std::swap(size_, other.size_);
        return *this;
    }
    ~Secret() {
        if (bytes_) overwrite(bytes_.get(), size_);
    }

    bool empty() const { return size_ == 0; }
    Secret clone() const { return of_bytes(reveal()); }

    // The characters, followed by a NUL that the view does not count. Valid as long as this object.
    std::string_view reveal() const {
        return bytes_ ? std::string_view(bytes_.get(), size_) : std::string_view("");
    }

private:
    void assign(std::string_view bytes) {
        bytes_ = std::make_unique<char[]>(bytes.size() + 1);
        if (!bytes.empty()) std::memcpy(bytes_.get(), bytes.data(), bytes.size());
        size_ = bytes.size();
    }

    std::unique_ptr<char[]> bytes_;
    std::size_t size_ = 0;
};

}  // namespace orvo
