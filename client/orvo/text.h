#pragma once

// Texts and failures of the component's C++ client.
//
// Text is UTF-8 in std::string; wherever one is taken, UTF-16 may be given as well. All names of
// the client are in the inline namespace orvo::client, so that a program may be linked together
// with the sources of a module.

#if __cplusplus < 202002L
#error "the client of OrvoMembership needs C++20 or later (-std=c++20)"
#endif

#include <cstdint>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "orvo/automation.h"

namespace orvo {
inline namespace client {

// A failure, as the component tells it.
class Error : public std::exception {
public:
    Error(std::int32_t number, std::string source, std::string description)
        : number_(number), source_(std::move(source)), description_(std::move(description)) {
        constexpr char digits[] = "0123456789ABCDEF";
        what_ = description_.empty() ? "failure 0x" : description_ + " (0x";
        for (int shift = 28; shift >= 0; shift -= 4)
            what_ += digits[static_cast<std::uint32_t>(number_) >> shift & 15];
        if (!description_.empty()) what_ += ')';
    }

    // 0x80070000 + …, 0x80040000 + …, 0x800A0000 + …: negative.
    std::int32_t number() const noexcept { return number_; }
    const std::string& source() const noexcept { return source_; }
    const std::string& description() const noexcept { return description_; }
    // The description, and the number in parentheses.
    const char* what() const noexcept override { return what_.c_str(); }

private:
    std::int32_t number_;
    std::string source_;
    std::string description_;
    std::string what_;
};

// What is no UTF-8 becomes U+FFFD, once for each byte that does not fit.
inline std::u16string to_utf16(std::string_view text) {
    std::u16string wide;
    wide.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = [&](std::size_t index) {
            return index < text.size() ? static_cast<unsigned char>(text[index]) : 0u;
        };
        const unsigned lead = byte(at);
        const std::size_t size = lead < 0x80                   ? 1
                                 : lead >= 0xC2 && lead < 0xE0 ? 2
                                 : lead >= 0xE0 && lead < 0xF0 ? 3
                                 : lead >= 0xF0 && lead < 0xF5 ? 4
                                                               : 0;
        char32_t point = size == 1 ? lead : size == 0 ? 0 : lead & (0x7Fu >> size);
        bool is_valid = size > 0;
        for (std::size_t i = 1; i < size && is_valid; ++i) {
            is_valid = (byte(at + i) & 0xC0) == 0x80;
            point = point << 6 | (byte(at + i) & 0x3F);
        }
        constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
        if (!is_valid || point < least[size] || point > 0x10FFFF ||
            (point >= 0xD800 && point < 0xE000)) {
            wide += u'\xFFFD';
            ++at;
            continue;
        }
        if (point >= 0x10000) {
            wide += static_cast<char16_t>(0xD7C0 + (point >> 10));
            wide += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
        } else {
            wide += static_cast<char16_t>(point);
        }
        at += size;
    }
    return wide;
}

// Half of a surrogate pair becomes U+FFFD.
inline std::string to_utf8(std::u16string_view wide) {
    std::string text;
    text.reserve(wide.size());
    const auto put = [&](char32_t point, int more) {
        for (; more >= 0; --more) text += static_cast<char>(0x80 | (point >> (6 * more) & 0x3F));
    };
    for (std::size_t i = 0; i < wide.size(); ++i) {
        char32_t point = wide[i];
        const bool is_low_next =
            i + 1 < wide.size() && wide[i + 1] >= 0xDC00 && wide[i + 1] < 0xE000;
        if (point >= 0xD800 && point < 0xDC00 && is_low_next)
            point = ((point - 0xD7C0) << 10) + (wide[++i] - 0xDC00u);
        else if (point >= 0xD800 && point < 0xE000)
            point = 0xFFFD;
        if (point < 0x80) {
            text += static_cast<char>(point);
        } else if (point < 0x800) {
            text += static_cast<char>(0xC0 | point >> 6);
            put(point, 0);
        } else if (point < 0x10000) {
            text += static_cast<char>(0xE0 | point >> 12);
            put(point, 1);
        } else {
            text += static_cast<char>(0xF0 | point >> 18);
            put(point, 2);
        }
    }
    return text;
}

namespace detail {

inline std::string text_of(abi::BSTR text) {
    return text ? to_utf8({text, abi::SysStringLen(text)}) : std::string();
}

// A text of Automation's, owned.
class Bstr {
public:
    Bstr() = default;
    explicit Bstr(std::u16string_view text)
        : text_(abi::SysAllocStringLen(text.data(), static_cast<std::uint32_t>(text.size()))) {
        if (!text_) throw std::bad_alloc();
    }
    ~Bstr() { abi::SysFreeString(text_); }
    Bstr(Bstr&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
    Bstr& operator=(Bstr&& other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }

    static Bstr attach(abi::BSTR text) noexcept {
        Bstr taken;
        taken.text_ = text;
        return taken;
    }
    abi::BSTR get() const { return text_; }
    abi::BSTR* put() { return &text_; }
    abi::BSTR release() { return std::exchange(text_, nullptr); }
    std::u16string_view view() const { return {text_, abi::SysStringLen(text_)}; }

private:
    abi::BSTR text_ = nullptr;
};

// What a result says by itself, where no object says more.
inline const char* description_of(abi::HRESULT code) {
    switch (code) {
        case abi::disp_e_typemismatch:
            return "the value is not of the type that is needed";
        case abi::disp_e_overflow:
            return "the value is too large for its type";
        case abi::disp_e_badparamcount:
            return "the number of arguments is wrong";
        case abi::disp_e_paramnotoptional:
            return "an argument is missing";
        case abi::disp_e_membernotfound:
            return "the object has no such member";
        case abi::e_nointerface:
            return "the object does not have this interface";
        case abi::rpc_e_wrong_thread:
            return "the object belongs to another thread";
        default:
            return "";
    }
}

// Raises what the thread's error object tells of a failed call.
[[noreturn]] inline void raise(abi::HRESULT code) {
    abi::IUnknown* info = nullptr;
    abi::GetErrorInfo(0, &info);
    std::string texts[2];
    if (info) {
        const std::size_t slots[] = {abi::slot_error_get_source, abi::slot_error_get_description};
        for (int i = 0; i < 2; ++i) {
            Bstr text;
            if (abi::succeeded(abi::call_slot<abi::HRESULT>(info, slots[i], text.put())))
                texts[i] = text_of(text.get());
        }
        abi::release(info);
    }
    if (texts[1].empty()) texts[1] = description_of(code);
    throw Error(code, std::move(texts[0]), std::move(texts[1]));
}
inline void check(abi::HRESULT code) {
    if (abi::failed(code)) raise(code);
}

}  // namespace detail

// A text argument, of any kind of text.
class Text {
public:
    Text() = default;
    Text(std::string_view text) : wide_(to_utf16(text)) {}
    Text(std::u16string_view text) : wide_(text) {}
    Text(const std::string& text) : Text(std::string_view(text)) {}
    Text(const std::u16string& text) : wide_(text) {}
    // Raise std::invalid_argument for a null pointer, as getenv gives it.
    Text(const char* text) : Text(std::string_view(not_null(text))) {}
    Text(const char16_t* text) : wide_(not_null(text)) {}

    const std::u16string& utf16() const { return wide_; }

private:
    template <class C>
    static const C* not_null(const C* text) {
        if (!text) throw std::invalid_argument("a text is a null pointer");
        return text;
    }

    std::u16string wide_;
};

}  // namespace client
}  // namespace orvo
