#pragma once

// The tokens of a script, and what its words and brackets are for: read from left to right,
// without a tree.

#include <cstddef>
#include <vector>

#include "host/engine/lexer.h"

namespace orvo::script {

// What a pair of brackets is for.
enum class Role {
    none,
    condition,  // ( ) of if, with, switch, catch
    loop,       // ( ) of while and for: a pattern or a statement follows
    call,       // ( ) behind what is called, or behind the name of a function
    group,      // any other ( )
    index,      // [ ] behind a value
    list,       // any other [ ]
    block,      // { } of statements
    body,       // { } of a function that is a statement
    expression_body,
    object,  // { } of properties
};

struct Piece {
    static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

    Token token;
    Role role = Role::none;         // of a bracket
    std::size_t partner = nowhere;  // of a bracket; known once both are read
    bool is_reserved = false;       // a word of the language, and used as such
    bool is_key = false;            // the name of a property in an object's braces
    bool is_prefix = false;         // of "++" and "--"
    bool is_conditional = false;    // of ":"
};

struct Bracket {
    std::size_t piece;
    int conditionals = 0;  // "?" that wait for their ":"
    int semicolons = 0;
    int commas = 0;
    bool is_for_header = false;
    std::size_t in_at = Piece::nowhere;  // of a for-in's header: its "in"
};

class Structure {
public:
    // Reads one token more; its index. Raises SyntaxProblem where it closes no bracket.
    std::size_t add(const Token& token);

    std::size_t size() const { return pieces_.size(); }
    const Piece& operator[](std::size_t index) const { return pieces_[index]; }
    // Those that are open, the innermost last.
    const std::vector<Bracket>& open() const { return open_; }
    // The one that the last token closed.
    const Bracket& closed() const { return closed_; }

    // Whether a value ends with this token, so that "(" calls it and "/" divides it.
    bool ends_value(std::size_t index) const;
    bool ends_value() const { return !pieces_.empty() && ends_value(pieces_.size() - 1); }
    // Whether the token before this one is that sign, or that word of the language.
    bool follows_sign(std::size_t index, std::string_view sign) const;
    bool follows_word(std::size_t index, std::string_view word) const;

private:
    Bracket& innermost() { return open_.empty() ? outermost_ : open_.back(); }
    bool is_in_object() const;
    void read_name(std::size_t index);
    void open(std::size_t index, Role role);
    void close(std::size_t index);
    Role paren_role(std::size_t index) const;
    Role brace_role(std::size_t index) const;
    Role body_role(std::size_t paren) const;
    bool is_in_expression(std::size_t word) const;

    std::vector<Piece> pieces_;
    std::vector<Bracket> open_;
    Bracket outermost_{Piece::nowhere};
    Bracket closed_{Piece::nowhere};
};

}  // namespace orvo::script
