#include "host/web/messages/encoding.h"

namespace orvo::web {
namespace {

int hex_value(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    return -1;
}

// The byte that stands encoded at `place`; -1 where none does.
int encoded_byte(std::string_view text, std::size_t place) {
    if (place + 2 >= text.size()) return -1;
    const int high = hex_value(text[place + 1]);
    const int low = hex_value(text[place + 2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

bool is_plain(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' || byte == '_' || byte == '~';
}

Text encoded(TextView text, bool in_path) {
    static constexpr char16_t digits[] = u"0123456789ABCDEF";
    Text result;
    for (const char byte : to_utf8(text)) {
        if (is_plain(byte) || (in_path && byte == '/')) {
            result += static_cast<char16_t>(byte);
        } else if (byte == ' ' && !in_path) {
            result += u'+';
        } else {
            const auto value = static_cast<unsigned char>(byte);
            result += u'%';
            result += digits[value >> 4];
            result += digits[value & 15];
        }
    }
    return result;
}

template <class String>
String html_encoded(std::basic_string_view<typename String::value_type> text) {
    using Unit = typename String::value_type;
    String result;
    result.reserve(text.size());
    auto put = [&](const char* name) {
        for (; *name != 0; ++name) result += static_cast<Unit>(*name);
    };
    for (const Unit unit : text) {
        switch (unit) {
            case Unit('&'):
                put("&amp;");
                break;
            case Unit('<'):
                put("&lt;");
                break;
            case Unit('>'):
                put("&gt;");
                break;
            case Unit('"'):
                put("&quot;");
                break;
            case Unit('\''):
                put("&#39;");
                break;
            default:
                result += unit;
        }
    }
    return result;
}

}  // namespace

Text html_encode(TextView text) { return html_encoded<Text>(text); }
std::string html_encode_utf8(std::string_view text) { return html_encoded<std::string>(text); }

Text url_encode(TextView text) { return encoded(text, false); }
Text url_path_encode(TextView path) { return encoded(path, true); }

std::string form_decoded(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int byte = text[i] == '%' ? encoded_byte(text, i) : -1;
        if (byte >= 0) {
            result += static_cast<char>(byte);
            i += 2;
        } else {
            result += text[i] == '+' ? ' ' : text[i];
        }
    }
    return result;
}

std::optional<std::string> try_path_decoded(std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        const int byte = encoded_byte(text, i);
        if (byte < 0) return {};
        result += static_cast<char>(byte);
        i += 2;
    }
    return result;
}

bool is_utf8(std::string_view bytes) { return to_utf8(from_utf8(bytes)) == bytes; }

}  // namespace orvo::web
