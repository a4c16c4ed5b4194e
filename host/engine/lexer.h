#pragma once

// ECMAScript 5 text in tokens, as far as rewriting needs them. Everything between tokens (blanks,
// comments) is skipped; numbers and texts are not looked into.

#include <stdexcept>
#include <string_view>

namespace orvo::script {

// Text that is no script; the line counts from 1.
struct SyntaxProblem : std::runtime_error {
    SyntaxProblem(int line, const std::string& message) : std::runtime_error(message), line(line) {}
    int line;
};

enum class TokenKind {
    name,     // identifiers and reserved words alike
    number,   //
    text,     // 'a' and "a"
    pattern,  // /a/g
    sign,     // one of the punctuators
    end,
};

struct Token {
    TokenKind kind = TokenKind::end;
    std::string_view text;  // a piece of the source
    int line = 1;
    bool begins_line = false;  // a line ended between the token before it and this one

    bool is(std::string_view sign) const { return kind == TokenKind::sign && text == sign; }
    bool is_word(std::string_view word) const { return kind == TokenKind::name && text == word; }
};

class Lexer {
public:
    // `source` outlives the lexer and its tokens.
    explicit Lexer(std::string_view source);

    // The next token; of kind `end`, with empty text, behind the last one. Only the reader knows
    // whether "/" divides or begins a pattern. Raises SyntaxProblem.
    Token next(bool pattern_allowed);

private:
    char at(std::size_t offset = 0) const;
    bool starts_with(std::string_view text) const;
    // The length of what ends a line here, or of a blank; 0 where there is none.
    std::size_t line_end() const;
    std::size_t blank() const;
    void skip_between();
    void skip_line();
    std::size_t name_length() const;
    std::size_t number_length() const;
    void read_text(char quote);
    void read_pattern();

    std::string_view source_;
    std::size_t position_ = 0;
    int line_ = 1;
    bool begins_line_ = true;
};

}  // namespace orvo::script
