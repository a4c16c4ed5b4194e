#include "platform/values/text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>

#include "platform/values/case_folding.h"

namespace orvo {
namespace {

constexpr char32_t replacement = 0xFFFD;

// What becomes of half a surrogate pair, which UTF-8 has no form for.
enum class Halves { replaced, kept };

void append_utf16(Text& out, char32_t point) {
    if (point < 0x10000) {
        out.push_back(static_cast<char16_t>(point));
        return;
    }
    point -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (point >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (point & 0x3FF)));
}

void append_utf8(std::string& out, char32_t point) {
    const auto tail = [&](int shift) {
        out.push_back(static_cast<char>(0x80 | ((point >> shift) & 0x3F)));
    };
    if (point < 0x80) {
        out.push_back(static_cast<char>(point));
    } else if (point < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (point >> 6)));
        tail(0);
    } else if (point < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (point >> 12)));
        tail(6);
        tail(0);
    } else {
        out.push_back(static_cast<char>(0xF0 | (point >> 18)));
        tail(12);
        tail(6);
        tail(0);
    }
}

// What a lead byte promises: how many bytes follow, and the bounds of the first of them, which
// shut out overlong forms, surrogates and points above U+10FFFF.
struct Lead {
    int tails = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
};

Lead lead_of(unsigned char byte, Halves halves) {
    if (byte >= 0xC2 && byte <= 0xDF) return {1};
    if (byte == 0xE0) return {2, 0xA0, 0xBF};
    if (byte == 0xED && halves == Halves::replaced) return {2, 0x80, 0x9F};
    if (byte >= 0xE1 && byte <= 0xEF) return {2};
    if (byte == 0xF0) return {3, 0x90, 0xBF};
    if (byte == 0xF4) return {3, 0x80, 0x8F};
    if (byte >= 0xF1 && byte <= 0xF3) return {3};
    return {};
}

// Reads one point of more than one byte. A sequence that breaks off is replaced as a whole, and
// reading goes on at the byte that broke it.
char32_t read_sequence(std::string_view bytes, std::size_t& at, Halves halves) {
    const auto first = static_cast<unsigned char>(bytes[at++]);
    Lead lead = lead_of(first, halves);
    if (lead.tails == 0) return replacement;
    char32_t point = first & (0x3F >> lead.tails);
    for (; lead.tails > 0; --lead.tails) {
        if (at == bytes.size()) return replacement;
        const auto byte = static_cast<unsigned char>(bytes[at]);
        if (byte < lead.low || byte > lead.high) return replacement;
        point = point << 6 | (byte & 0x3F);
        lead.low = 0x80;
        lead.high = 0xBF;
        ++at;
    }
    return point;
}

bool is_high_surrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool is_low_surrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

bool same_folded(char16_t a, char16_t b) { return detail::folded(a) == detail::folded(b); }

// Most texts are ASCII from end to end, and such a beginning is the same in both forms.
template <class To, class From>
To ascii_beginning(From text) {
    using Unit = std::make_unsigned_t<typename From::value_type>;
    const auto end = std::find_if(text.begin(), text.end(),
                                  [](auto unit) { return static_cast<Unit>(unit) >= 0x80; });
    To out(static_cast<std::size_t>(end - text.begin()), 0);
    std::transform(text.begin(), end, out.begin(),
                   [](auto unit) { return static_cast<typename To::value_type>(unit); });
    return out;
}

template <class Number, class... Base>
Text digits(Number number, Base... base) {
    char buffer[32];
    const auto end = std::to_chars(std::begin(buffer), std::end(buffer), number, base...).ptr;
    return Text(std::begin(buffer), end);
}

Text text_of(std::string_view bytes, Halves halves) {
    auto out = ascii_beginning<Text>(bytes);
    out.reserve(bytes.size());
    for (std::size_t at = out.size(); at < bytes.size();) {
        if (static_cast<unsigned char>(bytes[at]) < 0x80) {
            out.push_back(static_cast<char16_t>(bytes[at++]));
        } else {
            append_utf16(out, read_sequence(bytes, at, halves));
        }
    }
    return out;
}

std::string bytes_of(TextView text, Halves halves) {
    auto out = ascii_beginning<std::string>(text);
    out.reserve(text.size());
    for (std::size_t at = out.size(); at < text.size(); ++at) {
        char32_t point = text[at];
        if (is_high_surrogate(text[at]) && at + 1 < text.size() && is_low_surrogate(text[at + 1])) {
            point = 0x10000 + ((point & 0x3FF) << 10) + (text[++at] & 0x3FF);
        } else if (halves == Halves::replaced &&
                   (is_high_surrogate(text[at]) || is_low_surrogate(text[at]))) {
            point = replacement;
        }
        append_utf8(out, point);
    }
    return out;
}

}  // namespace

Text from_utf8(std::string_view bytes) { return text_of(bytes, Halves::replaced); }
std::string to_utf8(TextView text) { return bytes_of(text, Halves::replaced); }

Text from_utf8_with_halves(std::string_view bytes) { return text_of(bytes, Halves::kept); }
std::string to_utf8_with_halves(TextView text) { return bytes_of(text, Halves::kept); }

bool is_well_formed(TextView text) {
    bool has_halves = false;
    for (const char16_t unit : text) has_halves |= (unit & 0xF800) == 0xD800;
    if (!has_halves) return true;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (is_low_surrogate(text[at])) return false;
        if (!is_high_surrogate(text[at])) continue;
        if (++at == text.size() || !is_low_surrogate(text[at])) return false;
    }
    return true;
}

bool equal_ignoring_case(TextView a, TextView b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same_folded);
}

int compare_ignoring_case(TextView a, TextView b) {
    const auto [in_a, in_b] = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), same_folded);
    if (in_a == a.end()) return in_b == b.end() ? 0 : -1;
    if (in_b == b.end()) return 1;
    return detail::folded(*in_a) < detail::folded(*in_b) ? -1 : 1;
}

Text lower(TextView text) {
    Text out(text);
    std::transform(out.begin(), out.end(), out.begin(), detail::folded);
    return out;
}

bool contains_ignoring_case(TextView text, TextView part) {
    return part.empty() || std::search(text.begin(), text.end(), part.begin(), part.end(),
                                       same_folded) != text.end();
}

Text trimmed(TextView text) {
    const auto first = text.find_first_not_of(u' ');
    if (first == TextView::npos) return {};
    return Text(text.substr(first, text.find_last_not_of(u' ') - first + 1));
}

std::vector<Text> split(TextView text, TextView separator) {
    std::vector<Text> pieces;
    if (text.empty()) return pieces;
    std::size_t start = 0;
    if (!separator.empty()) {
        for (auto at = text.find(separator); at != TextView::npos;
             at = text.find(separator, start)) {
            pieces.emplace_back(text.substr(start, at - start));
            start = at + separator.size();
        }
    }
    pieces.emplace_back(text.substr(start));
    return pieces;
}

Text replaced(TextView text, TextView from, TextView to) {
    if (from.empty()) return Text(text);
    Text out;
    std::size_t start = 0;
    for (auto at = text.find(from); at != TextView::npos; at = text.find(from, start)) {
        out.append(text.substr(start, at - start)).append(to);
        start = at + from.size();
    }
    return out.append(text.substr(start));
}

Text decimal(long long number) { return digits(number); }

Text hexadecimal(int number) {
    Text out = digits(static_cast<std::uint32_t>(number), 16);
    for (char16_t& digit : out) {
        if (digit >= u'a') digit = static_cast<char16_t>(digit - u'a' + u'A');
    }
    return out;
}

}  // namespace orvo
