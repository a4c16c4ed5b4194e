#include <algorithm>
#include <optional>
#include <string_view>

#include "suite/directory/filters/filter.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::directory {
namespace {

using Kind = Filter::Kind;

constexpr std::size_t nowhere = TextView::npos;
constexpr std::size_t shown_of_long_text = 200;

constexpr TextView a_parenthesis_is_open = u"the parenthesis is not closed";
constexpr TextView a_filter_follows =
    u"another filter begins; several are joined by '&' or '|' before the first";

constexpr bool is_blank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }

// A character outside ASCII is none that the grammar knows.
constexpr char ascii_of(char16_t c) { return c < 0x80 ? static_cast<char>(c) : '\0'; }

constexpr bool is_name_character(char16_t c) {
    const char one = ascii_of(c);
    return ascii::is_alphanumeric(one) || one == '-' || one == '.' || one == ';';
}

bool is_number(std::string_view text) {
    std::size_t arcs = 0;
    while (true) {
        const std::size_t end = std::min(text.find('.'), text.size());
        const std::string_view arc = text.substr(0, end);
        if (arc.empty() || !std::all_of(arc.begin(), arc.end(), ascii::is_digit)) return false;
        if (arc.size() > 1 && arc.front() == '0') return false;
        ++arcs;
        if (end == text.size()) return arcs > 1;
        text.remove_prefix(end + 1);
    }
}

bool is_key(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return ascii::is_alphanumeric(c) || c == '-';
    });
}

bool is_type(std::string_view text) {
    return (is_key(text) && ascii::is_letter(text.front())) || is_number(text);
}

// A type and options (RFC 4512, 2.5).
bool is_description(std::string_view text) {
    std::size_t end = std::min(text.find(';'), text.size());
    if (!is_type(text.substr(0, end))) return false;
    while (end < text.size()) {
        text.remove_prefix(end + 1);
        end = std::min(text.find(';'), text.size());
        if (!is_key(text.substr(0, end))) return false;
    }
    return true;
}

class Reader {
public:
    explicit Reader(TextView text) : text_(text) {}

    Filter read() {
        if (text_.size() > Filter::longest)
            refuse(Filter::longest,
                   u"the filter has more than " + decimal(Filter::longest) + u" characters");
        if (!is_well_formed(text_))
            refuse(half_of_a_pair(), u"half of a surrogate pair stands alone");
        skip_blanks();
        if (at_end()) refuse(position_, u"the filter is empty");
        Filter filter = peek() == u'(' ? parenthesised() : content();
        skip_blanks();
        if (at_end()) return filter;
        if (peek() == u'(') refuse(position_, a_filter_follows);
        if (peek() == u')') refuse(position_, u"the parenthesis closes nothing");
        refuse(position_, u"the filter has ended before this");
    }

private:
    // Where the first one stands. In UTF-8 it would be U+FFFD, which other values may hold.
    std::size_t half_of_a_pair() const {
        std::size_t at = 0;
        const auto is_in = [&](char16_t first, char16_t last) {
            return at < text_.size() && text_[at] >= first && text_[at] <= last;
        };
        for (;; ++at) {
            if (is_in(0xDC00, 0xDFFF)) return at;
            if (!is_in(0xD800, 0xDBFF)) continue;
            ++at;
            if (!is_in(0xDC00, 0xDFFF)) return at - 1;
        }
    }

    // One level of the tree, or one pair of parentheses too many.
    class Level {
    public:
        explicit Level(Reader& reader) : depth_(reader.depth_) {
            if (++depth_ > Filter::deepest)
                reader.refuse(reader.position_, u"more than " + decimal(Filter::deepest) +
                                                    u" filters stand one inside another");
        }
        ~Level() { --depth_; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        std::size_t& depth_;
    };

    Filter parenthesised() {
        const Level level(*this);
        const std::size_t begin = position_++;
        skip_blanks();
        if (at_end()) refuse(begin, a_parenthesis_is_open);
        if (peek() == u')') refuse(begin, u"the parentheses are empty");
        Filter filter = peek() == u'(' ? parenthesised() : content();
        skip_blanks();
        if (at_end()) refuse(begin, a_parenthesis_is_open);
        if (peek() == u'(') refuse(position_, a_filter_follows);
        if (peek() != u')') refuse(position_, u"')' is expected");
        ++position_;
        return filter;
    }

    // What parentheses enclose. It ends before the ')' that closes them, or with the text.
    Filter content() {
        switch (peek()) {
            case u'&':
                return list(Kind::all_of);
            case u'|':
                return list(Kind::any_of);
            case u'!':
                return negation();
            default:
                return item();
        }
    }

    Filter list(Kind kind) {
        ++position_;
        Filter filter{kind};
        for (skip_blanks(); !at_end() && peek() != u')'; skip_blanks()) {
            if (peek() != u'(') refuse(position_, u"'(' is expected");
            filter.parts.push_back(parenthesised());
        }
        return filter;
    }

    Filter negation() {
        ++position_;
        skip_blanks();
        if (at_end() || peek() == u')') refuse(position_, u"a filter is expected after '!'");
        Filter filter{Kind::negation};
        if (peek() == u'(') {
            filter.parts.push_back(parenthesised());
        } else {
            const Level level(*this);
            filter.parts.push_back(content());
        }
        return filter;
    }

    Filter item() {
        Filter filter;
        filter.attribute = description();
        skip_blanks();
        const char16_t first = at_end() ? u'\0' : peek();
        if (first == u':') return extensible(std::move(filter));
        if (first == u'=') {
            ++position_;
            return equality(std::move(filter));
        }
        filter.kind = first == u'>'   ? Kind::at_least
                      : first == u'<' ? Kind::at_most
                      : first == u'~' ? Kind::similar
                                      : Kind::equality;
        if (filter.kind == Kind::equality || !next_is(1, u'='))
            refuse(position_, u"an operator ('=', '>=', '<=', '~=' or ':=') is expected");
        position_ += 2;
        filter.value = filter.kind == Kind::similar ? value_without_wildcards()
                                                    : std::move(pieces(Asterisk::literal).front());
        return filter;
    }

    // Empty only before a ':'.
    std::string description() {
        const std::size_t begin = position_;
        const std::string name = word();
        if (name.empty() && !at_end() && peek() == u':') return name;
        if (name.empty()) refuse(begin, u"an attribute's name is expected");
        if (!is_description(name)) refuse(begin, u"this is not an attribute's name");
        return name;
    }

    Filter extensible(Filter filter) {
        filter.kind = Kind::extensible;
        while (!at_end() && peek() == u':' && !next_is(1, u'=')) {
            ++position_;
            skip_blanks();
            const std::size_t begin = position_;
            std::string name = word();
            if (!filter.of_name && filter.rule.empty() && ascii::equal_ignoring_case(name, "dn"))
                filter.of_name = true;
            else if (filter.rule.empty() && is_type(name))
                filter.rule = std::move(name);
            else
                refuse(begin, u"a matching rule is expected");
            skip_blanks();
        }
        if (at_end() || peek() != u':') refuse(position_, u"':=' is expected");
        if (filter.attribute.empty() && filter.rule.empty())
            refuse(position_, u"an attribute or a matching rule is expected before ':='");
        position_ += 2;
        filter.value = value_without_wildcards();
        return filter;
    }

    Filter equality(Filter filter) {
        std::vector<std::string> found = pieces(Asterisk::wildcard);
        if (found.size() == 1) {
            filter.kind = Kind::equality;
            filter.value = std::move(found.front());
            return filter;
        }
        found.erase(std::remove(found.begin() + 1, found.end() - 1, std::string()),
                    found.end() - 1);
        const bool anything = found.size() == 2 && found[0].empty() && found[1].empty();
        filter.kind = anything ? Kind::presence : Kind::substrings;
        if (!anything) filter.pieces = std::move(found);
        return filter;
    }

    std::string value_without_wildcards() { return std::move(pieces(Asterisk::refused).front()); }

    // A value up to the ')' that is not its own, or to the end of the text, cut at wildcards.
    enum class Asterisk { wildcard, literal, refused };
    std::vector<std::string> pieces(Asterisk asterisk) {
        skip_blanks();
        std::vector<std::string> result(1);
        Text run;  // what stands for itself, since the last octet or wildcard
        const auto end_run = [&] {
            result.back() += to_utf8(run);
            run.clear();
        };
        std::size_t open = 0;
        std::size_t opened_at = nowhere;
        for (; !at_end() && (open > 0 || peek() != u')'); ++position_) {
            const char16_t c = peek();
            if (c == u'\\' && is_hexadecimal(1) && is_hexadecimal(2)) {
                end_run();
                result.back() += static_cast<char>(digit(1) * 16 + digit(2));
                position_ += 2;
                continue;
            }
            if (c == u'*' && asterisk == Asterisk::refused)
                refuse(position_,
                       u"a wildcard is not possible here; an asterisk is written '\\2a'");
            if (c == u'*' && asterisk == Asterisk::wildcard) {
                end_run();
                result.emplace_back();
                continue;
            }
            if (c == u'(') {
                if (begins_like_a_filter(position_ + 1))
                    refuse(position_,
                           u"another filter begins before this one is closed; a parenthesis that "
                           u"belongs to the value is written '\\28'");
                if (open++ == 0) opened_at = position_;
            }
            if (c == u')') --open;
            run += c;
        }
        if (open > 0) refuse(opened_at, a_parenthesis_is_open);
        while (!run.empty() && is_blank(run.back())) run.pop_back();
        end_run();
        return result;
    }

    // Whether what follows a '(' would be read as a filter, as far as its beginning tells.
    bool begins_like_a_filter(std::size_t at) const {
        at = after_blanks(at);
        if (at == text_.size()) return false;
        if (text_[at] == u'&' || text_[at] == u'|') {
            at = after_blanks(at + 1);
            return at < text_.size() && text_[at] == u'(';
        }
        if (text_[at] == u'!') {
            at = after_blanks(at + 1);
            if (at < text_.size() && text_[at] == u'(') return true;
        }
        const std::size_t name = at;
        while (at < text_.size() && is_name_character(text_[at])) ++at;
        if (at == name) return false;
        at = after_blanks(at);
        if (at == text_.size()) return false;
        if (text_[at] == u'=') return true;
        return at + 1 < text_.size() && text_[at + 1] == u'=' &&
               TextView(u"<>~:").find(text_[at]) != nowhere;
    }

    std::string word() {
        const std::size_t begin = position_;
        while (!at_end() && is_name_character(peek())) ++position_;
        return to_utf8(text_.substr(begin, position_ - begin));
    }

    bool at_end() const { return position_ == text_.size(); }
    char16_t peek() const { return text_[position_]; }
    bool next_is(std::size_t ahead, char16_t c) const {
        return position_ + ahead < text_.size() && text_[position_ + ahead] == c;
    }
    bool is_hexadecimal(std::size_t ahead) const {
        return position_ + ahead < text_.size() &&
               ascii::is_hexadecimal(ascii_of(text_[position_ + ahead]));
    }
    int digit(std::size_t ahead) const {
        return ascii::digit_value(ascii_of(text_[position_ + ahead]));
    }
    std::size_t after_blanks(std::size_t at) const {
        while (at < text_.size() && is_blank(text_[at])) ++at;
        return at;
    }
    void skip_blanks() { position_ = after_blanks(position_); }

    [[noreturn]] void refuse(std::size_t at, TextView reason) const {
        constexpr int filter_error = 87;
        Text message = u"Character " + decimal(static_cast<long long>(at) + 1) + u": ";
        message += reason;
        message += u". The filter is '";
        message += text_.size() > Filter::longest
                       ? Text(text_.substr(0, shown_of_long_text)) + u"...'."
                       : Text(text_) + u"'.";
        throw directory_failure(filter_error, {}, to_utf8(message));
    }

    TextView text_;
    std::size_t position_ = 0;
    std::size_t depth_ = 0;
};

}  // namespace

Filter Filter::parse(TextView text) { return Reader(text).read(); }

}  // namespace orvo::directory
