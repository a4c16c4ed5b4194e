#include "suite/directory/filters/matching_rule.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "platform/values/text.h"
#include "platform/values/text_forms.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/names/distinguished_name.h"
#include "suite/directory/schema/generalized_time.h"

namespace orvo::directory {
namespace {

struct Row {
    std::string_view name;  // in lower case
    std::string_view number;
    MatchingRule rule;
};
constexpr Row rows[] = {
    {"objectidentifiermatch", "2.5.13.0", MatchingRule::case_ignore},
    {"distinguishednamematch", "2.5.13.1", MatchingRule::distinguished_name},
    {"caseignorematch", "2.5.13.2", MatchingRule::case_ignore},
    {"caseignoreorderingmatch", "2.5.13.3", MatchingRule::case_ignore},
    {"caseexactmatch", "2.5.13.5", MatchingRule::case_exact},
    {"caseexactorderingmatch", "2.5.13.6", MatchingRule::case_exact},
    {"booleanmatch", "2.5.13.13", MatchingRule::boolean},
    {"integermatch", "2.5.13.14", MatchingRule::integer},
    {"integerorderingmatch", "2.5.13.15", MatchingRule::integer},
    {"octetstringmatch", "2.5.13.17", MatchingRule::octets},
    {"octetstringorderingmatch", "2.5.13.18", MatchingRule::octets},
    {"telephonenumbermatch", "2.5.13.20", MatchingRule::telephone},
    {"generalizedtimematch", "2.5.13.27", MatchingRule::time},
    {"generalizedtimeorderingmatch", "2.5.13.28", MatchingRule::time},
    {"caseexactia5match", "1.3.6.1.4.1.1466.109.114.1", MatchingRule::case_exact},
    {"caseignoreia5match", "1.3.6.1.4.1.1466.109.114.2", MatchingRule::case_ignore},
};

// What string preparation (RFC 4518, 2.2) makes of a character: a blank, nothing, or itself.
constexpr bool is_in(char16_t c, char16_t first, char16_t last) { return c >= first && c <= last; }
constexpr bool becomes_blank(char16_t c) {
    return c == ' ' || is_in(c, 0x09, 0x0D) || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           is_in(c, 0x2000, 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
           c == 0x3000;
}
constexpr bool becomes_nothing(char16_t c) {
    return c < 0x20 || is_in(c, 0x7F, 0x9F) || c == 0xAD || c == 0x034F || c == 0x1806 ||
           is_in(c, 0x180B, 0x180E) || is_in(c, 0x200B, 0x200F) || is_in(c, 0x202A, 0x202E) ||
           is_in(c, 0x2060, 0x2063) || is_in(c, 0x206A, 0x206F) || is_in(c, 0xFE00, 0xFE0F) ||
           c == 0xFEFF || is_in(c, 0xFFF9, 0xFFFC);
}

std::optional<std::string> mapped_ascii(MatchingRule rule, std::string_view text) {
    std::string result;
    result.reserve(text.size() + 2);
    for (char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) return std::nullopt;
        const auto wide = static_cast<char16_t>(c);
        if (becomes_blank(wide))
            result += ' ';
        else if (!becomes_nothing(wide))
            result += rule == MatchingRule::case_exact ? c : ascii::lower(c);
    }
    return result;
}

std::optional<std::string> mapped(MatchingRule rule, std::string_view text) {
    if (std::optional<std::string> plain = mapped_ascii(rule, text)) return plain;
    const Text read = from_utf8(text);
    if (to_utf8(read) != text) return std::nullopt;
    Text result;
    for (char16_t c : read) {
        if (becomes_blank(c))
            result += u' ';
        else if (!becomes_nothing(c))
            result += c;
    }
    return to_utf8(rule == MatchingRule::case_exact ? result : compatible_lower(result));
}

std::string without_blanks_and_hyphens(std::string text) {
    std::erase_if(text, [](char c) { return c == ' ' || c == '-'; });
    return text;
}

// Runs of blanks between words become two blanks, so that "a *" and "* b" both find "a b"; the ends
// get as many as asked for (RFC 4518, 2.6.1).
std::string spaced(std::string_view text, std::string_view before, std::string_view after) {
    std::string result(before);
    bool first = true;
    for (std::size_t at = text.find_first_not_of(' '); at != std::string_view::npos;) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        if (!first) result += "  ";
        first = false;
        result += text.substr(at, end - at);
        at = text.find_first_not_of(' ', end);
    }
    return result += after;
}

// Sign, count of digits in nine places, digits; of negative numbers the nines' complement of both,
// so that the lower number comes first.
std::optional<std::string> integer_key(std::string_view text) {
    const bool negative = !text.empty() && text.front() == '-';
    if (negative) text.remove_prefix(1);
    if (text.empty() || !std::all_of(text.begin(), text.end(), ascii::is_digit))
        return std::nullopt;
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    if (text.empty()) return "1";
    std::string length = std::to_string(text.size());
    std::string key = std::string(9 - std::min<std::size_t>(length.size(), 9), '0') + length;
    key += text;
    if (negative)
        for (char& c : key) c = static_cast<char>('0' + ('9' - c));
    return (negative ? '0' : '2') + key;
}

// The fraction of a time's seconds, cut out of it.
std::string take_fraction_of_seconds(std::string& text) {
    constexpr std::size_t behind_seconds = 14;
    if (text.size() <= behind_seconds || text.find_first_of(".,") != behind_seconds) return {};
    std::size_t end = behind_seconds + 1;
    while (end < text.size() && ascii::is_digit(text[end])) ++end;
    const std::string fraction = text.substr(behind_seconds + 1, end - behind_seconds - 1);
    if (!fraction.empty()) text.erase(behind_seconds, end - behind_seconds);
    return fraction;
}

// Seconds in thirteen places and the digits of their fraction.
std::optional<std::string> time_key(std::string_view value) {
    std::string text(value);
    const std::string fraction = take_fraction_of_seconds(text);
    const std::optional<Date> date = try_date(text);
    if (!date || (!fraction.empty() && !try_date(value))) return std::nullopt;
    constexpr double day_before_every_date = -700'000;
    constexpr double milliseconds = 24.0 * 60 * 60 * 1000;
    const double day = std::trunc(date->days);
    const double time = std::abs(date->days - day);  // counts forward on every day
    char digits[32];
    std::snprintf(digits, sizeof digits, "%016lld",
                  std::llround((day - day_before_every_date + time) * milliseconds));
    std::string key = digits;
    constexpr std::size_t seconds = 13;
    if (!fraction.empty()) key.replace(seconds, key.npos, fraction);
    key.resize(std::max(seconds, key.find_last_not_of('0') + 1));
    return key;
}

}  // namespace

MatchingRule matching_rule_of(Syntax syntax) {
    switch (syntax) {
        case Syntax::integer:
            return MatchingRule::integer;
        case Syntax::boolean:
            return MatchingRule::boolean;
        case Syntax::time:
            return MatchingRule::time;
        case Syntax::bytes:
            return MatchingRule::octets;
        case Syntax::text:
            break;
    }
    return MatchingRule::case_ignore;
}

MatchingRule matching_rule_of(const AttributeType& type) {
    return try_matching_rule(type.equality).value_or(matching_rule_of(type.syntax));
}

std::optional<MatchingRule> try_matching_rule(std::string_view name) {
    for (const Row& row : rows)
        if (row.number == name || ascii::equal_ignoring_case(row.name, name)) return row.rule;
    return std::nullopt;
}

bool is_text(MatchingRule rule) {
    return rule == MatchingRule::case_ignore || rule == MatchingRule::case_exact ||
           rule == MatchingRule::telephone;
}

bool has_order(MatchingRule rule) {
    return rule != MatchingRule::boolean && rule != MatchingRule::telephone &&
           rule != MatchingRule::distinguished_name;
}

std::optional<std::string> matching_key(MatchingRule rule, std::string_view value) {
    switch (rule) {
        case MatchingRule::integer:
            return integer_key(value);
        case MatchingRule::boolean:
            if (ascii::equal_ignoring_case(value, "TRUE")) return "1";
            if (ascii::equal_ignoring_case(value, "FALSE")) return "0";
            return std::nullopt;
        case MatchingRule::time:
            return time_key(value);
        case MatchingRule::distinguished_name: {
            const auto name = DistinguishedName::try_parse(from_utf8(value));
            if (!name) return std::nullopt;
            return name->key();
        }
        case MatchingRule::octets:
            return std::string(value);
        case MatchingRule::case_ignore:
        case MatchingRule::case_exact:
        case MatchingRule::telephone:
            break;
    }
    std::optional<std::string> text = mapped(rule, value);
    if (!text) return std::nullopt;
    if (rule == MatchingRule::telephone) return without_blanks_and_hyphens(std::move(*text));
    return spaced(*text, " ", " ");
}

std::optional<std::string> piece_key(MatchingRule rule, std::string_view piece, Place place) {
    std::optional<std::string> text = mapped(rule, piece);
    if (!text) return std::nullopt;
    if (rule == MatchingRule::telephone) return without_blanks_and_hyphens(std::move(*text));
    if (text->find_first_not_of(' ') == std::string::npos) return " ";
    const bool before = place == Place::initial || text->front() == ' ';
    const bool after = place == Place::final || text->back() == ' ';
    return spaced(*text, before ? " " : "", after ? " " : "");
}

std::optional<std::vector<std::string>> piece_keys(MatchingRule rule,
                                                   const std::vector<std::string>& pieces) {
    std::vector<std::string> keys(pieces.size());
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (pieces[i].empty()) continue;
        const Place place = i == 0                  ? Place::initial
                            : i + 1 < pieces.size() ? Place::any
                                                    : Place::final;
        std::optional<std::string> key = piece_key(rule, pieces[i], place);
        if (!key) return std::nullopt;
        keys[i] = std::move(*key);
    }
    return keys;
}

// Pieces are found from the front, each as early as possible; the last one at the end.
bool has_pieces(std::string_view key, const std::vector<std::string>& piece_keys) {
    const std::string& first = piece_keys.front();
    const std::string& last = piece_keys.back();
    if (!key.starts_with(first)) return false;
    std::size_t at = first.size();
    for (std::size_t i = 1; i + 1 < piece_keys.size(); ++i) {
        at = key.find(piece_keys[i], at);
        if (at == std::string_view::npos) return false;
        at += piece_keys[i].size();
    }
    return key.size() - at >= last.size() && key.ends_with(last);
}

}  // namespace orvo::directory
