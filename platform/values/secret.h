#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/values/text.h"

namespace orvo {

// Overwrites memory in a way that the compiler keeps.
inline void overwrite(void* memory, std::size_t size) {
    for (volatile unsigned char* byte = static_cast<unsigned char*>(memory); size > 0; --size)
        *byte++ = 0;
}

// A password. It cannot be printed, compared or converted by accident: `reveal` is the only way to
// the characters, and the word to search for in an audit. Its memory is overwritten when it goes.
// Move-only, so that copies are made knowingly (`clone`). One thread at a time.
//
// It is held in UTF-8, halves of surrogate pairs in the form of to_utf8_with_halves: a text comes
// back unit by unit, and one that is not well-formed is no password of anybody else's.
class Secret {
public:
    Secret() = default;
    explicit Secret(TextView text);
    static Secret of_bytes(std::string_view bytes);
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
    bool is_same_as(const Secret& other) const { return reveal() == other.reveal(); }
    // Whether it holds no half of a surrogate pair: what directories take is UTF-8.
    bool is_well_formed() const;

    // The characters, followed by a NUL that the view does not count. Valid as long as this object.
    std::string_view reveal() const {
        return bytes_ ? std::string_view(bytes_.get(), size_) : std::string_view("");
    }
    // Calls `use` with the text; the view ends with the call, and its memory is overwritten.
    template <class Use>
    auto reveal(Use use) const {
        struct Revealed {
            Text text;
            ~Revealed() { overwrite(text.data(), text.capacity() * sizeof(char16_t)); }
        } revealed;
        write_to(revealed.text);
        return use(TextView(revealed.text));
    }

private:
    void write_to(Text& text) const;

    std::unique_ptr<char[]> bytes_;
    std::size_t size_ = 0;
};

}  // namespace orvo
