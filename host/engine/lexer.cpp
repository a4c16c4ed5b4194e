#include "host/engine/lexer.h"

#include <string>

namespace orvo::script {
namespace {

// Longer ones stand before those they begin with.
constexpr std::string_view signs[] = {
    ">>>=", "===", "!==", ">>>", "<<=", ">>=", "...", "**=", "=>", "<=", ">=", "==", "!=",
    "++",   "--",  "<<",  ">>",  "&&",  "||",  "+=",  "-=",  "*=", "/=", "%=", "&=", "|=",
    "^=",   "**",  "{",   "}",   "(",   ")",   "[",   "]",   ".",  ";",  ",",  "<",  ">",
    "+",    "-",   "*",   "/",   "%",   "&",   "|",   "^",   "!",  "~",  "?",  ":",  "=",
};

constexpr std::string_view wide_line_ends[] = {"\xE2\x80\xA8", "\xE2\x80\xA9"};

// Blanks beyond ASCII: no-break space, byte order mark, the space separators.
constexpr std::string_view wide_blanks[] = {
    "\xC2\xA0",     "\xEF\xBB\xBF", "\xE1\x9A\x80", "\xE1\xA0\x8E", "\xE2\x80\x80", "\xE2\x80\x81",
    "\xE2\x80\x82", "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87",
    "\xE2\x80\x88", "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE3\x80\x80",
};

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool begins_name(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$' || c == '\\' ||
           static_cast<unsigned char>(c) >= 0x80;
}

}  // namespace

Lexer::Lexer(std::string_view source) : source_(source) {}

char Lexer::at(std::size_t offset) const {
    return position_ + offset < source_.size() ? source_[position_ + offset] : '\0';
}

bool Lexer::starts_with(std::string_view text) const {
    return source_.substr(position_).starts_with(text);
}

std::size_t Lexer::line_end() const {
    if (at() == '\n') return 1;
    if (at() == '\r') return at(1) == '\n' ? 2 : 1;
    for (std::string_view end : wide_line_ends)
        if (starts_with(end)) return end.size();
    return 0;
}

std::size_t Lexer::blank() const {
    const char c = at();
    if (c == ' ' || c == '\t' || c == '\v' || c == '\f') return 1;
    if (static_cast<unsigned char>(c) < 0x80) return 0;
    for (std::string_view wide : wide_blanks)
        if (starts_with(wide)) return wide.size();
    return 0;
}

void Lexer::skip_line() {
    while (position_ < source_.size() && line_end() == 0) ++position_;
}

void Lexer::skip_between() {
    while (position_ < source_.size()) {
        if (const std::size_t end = line_end()) {
            position_ += end;
            ++line_;
            begins_line_ = true;
        } else if (const std::size_t skipped = blank()) {
            position_ += skipped;
        } else if (starts_with("//") || starts_with("<!--") ||
                   (begins_line_ && starts_with("-->"))) {
            skip_line();
        } else if (starts_with("/*")) {
            const int line = line_;
            for (position_ += 2; !starts_with("*/");) {
                if (position_ >= source_.size())
                    throw SyntaxProblem(line, "the comment that begins here has no end");
                if (const std::size_t end = line_end()) {
                    position_ += end;
                    ++line_;
                    begins_line_ = true;
                } else {
                    ++position_;
                }
            }
            position_ += 2;
        } else {
            return;
        }
    }
}

std::size_t Lexer::name_length() const {
    std::size_t length = 0;
    while (begins_name(at(length)) || is_digit(at(length))) {
        const std::string_view rest = source_.substr(position_ + length);
        for (std::string_view end : wide_line_ends)
            if (rest.starts_with(end)) return length;
        for (std::string_view wide : wide_blanks)
            if (rest.starts_with(wide)) return length;
        ++length;
    }
    return length;
}

std::size_t Lexer::number_length() const {
    std::size_t length = 0;
    const bool hexadecimal = at() == '0' && (at(1) == 'x' || at(1) == 'X');
    for (;; ++length) {
        const char c = at(length);
        if (is_digit(c) || c == '.' || (begins_name(c) && static_cast<unsigned char>(c) < 0x80))
            continue;
        const char before = length > 0 ? at(length - 1) : '\0';
        if ((c == '+' || c == '-') && !hexadecimal && (before == 'e' || before == 'E')) continue;
        return length;
    }
}

void Lexer::read_text(char quote) {
    const int line = line_;
    for (++position_; at() != quote; ++position_) {
        if (at() == '\\') {
            ++position_;
            if (const std::size_t end = line_end()) {
                position_ += end - 1;
                ++line_;
            }
        } else if (position_ >= source_.size() || at() == '\n' || at() == '\r') {
            throw SyntaxProblem(line, "the text that begins here has no end");
        } else if (line_end() != 0) {
            ++line_;
        }
        if (position_ >= source_.size())
            throw SyntaxProblem(line, "the text that begins here has no end");
    }
    ++position_;
}

void Lexer::read_pattern() {
    bool in_class = false;
    for (++position_; in_class || at() != '/'; ++position_) {
        const bool escapes = at() == '\\';
        if (escapes) ++position_;
        if (position_ >= source_.size() || line_end() != 0)
            throw SyntaxProblem(line_, "the regular expression that begins here has no end");
        if (escapes) continue;
        if (at() == '[') in_class = true;
        if (at() == ']') in_class = false;
    }
    ++position_;
    position_ += name_length();
}

Token Lexer::next(bool pattern_allowed) {
    skip_between();
    Token token;
    token.line = line_;
    token.begins_line = begins_line_;
    begins_line_ = false;
    const std::size_t start = position_;
    auto take = [&](TokenKind kind) {
        token.kind = kind;
        token.text = source_.substr(start, position_ - start);
        return token;
    };
    if (start >= source_.size()) return take(TokenKind::end);
    const char c = at();
    if (begins_name(c)) {
        position_ += name_length();
        return take(TokenKind::name);
    }
    if (is_digit(c) || (c == '.' && is_digit(at(1)))) {
        position_ += number_length();
        return take(TokenKind::number);
    }
    if (c == '"' || c == '\'') {
        read_text(c);
        return take(TokenKind::text);
    }
    if (c == '/' && pattern_allowed) {
        read_pattern();
        return take(TokenKind::pattern);
    }
    for (std::string_view sign : signs) {
        if (!starts_with(sign)) continue;
        position_ += sign.size();
        return take(TokenKind::sign);
    }
    throw SyntaxProblem(
        line_, c == '`' ? "this language has no texts between ` and `; join texts with \"+\""
                        : "a character that no script has");
}

}  // namespace orvo::script
