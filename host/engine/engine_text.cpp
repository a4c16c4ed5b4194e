#include "host/engine/engine_text.h"

namespace orvo::script {
namespace {

constexpr char16_t replacement = 0xFFFD;

bool is_continuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

std::string to_engine(TextView text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (const char16_t unit : text) {
        auto put = [&](int value) { bytes.push_back(static_cast<char>(value)); };
        if (unit < 0x80) {
            put(unit);
        } else if (unit < 0x800) {
            put(0xC0 | unit >> 6);
            put(0x80 | (unit & 0x3F));
        } else {
            put(0xE0 | unit >> 12);
            put(0x80 | (unit >> 6 & 0x3F));
            put(0x80 | (unit & 0x3F));
        }
    }
    return bytes;
}

Text from_engine(std::string_view bytes) {
    Text text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        const std::size_t length = lead < 0x80   ? 1
                                   : lead < 0xC0 ? 0
                                   : lead < 0xE0 ? 2
                                   : lead < 0xF0 ? 3
                                   : lead < 0xF8 ? 4
                                                 : 0;
        std::size_t seen = 1;
        char32_t point = length < 2 ? lead : lead & (0x7F >> length);
        while (seen < length && i + seen < bytes.size() && is_continuation(bytes[i + seen]))
            point = point << 6 | (static_cast<unsigned char>(bytes[i + seen++]) & 0x3F);
        if (seen != length || point > 0x10FFFF) {
            text.push_back(replacement);
            i += seen;
            continue;
        }
        i += length;
        if (point < 0x10000) {
            text.push_back(static_cast<char16_t>(point));
        } else {
            text.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
            text.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
        }
    }
    return text;
}

}  // namespace orvo::script
