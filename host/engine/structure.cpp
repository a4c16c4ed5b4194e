#include "host/engine/structure.h"

#include <algorithm>
#include <span>
#include <string>

namespace orvo::script {
namespace {

// Words before an expression.
constexpr std::string_view operator_words[] = {"return", "typeof", "in",    "instanceof", "new",
                                               "void",   "delete", "throw", "case"};
constexpr std::string_view other_words[] = {
    "break",    "catch", "continue", "debugger", "default", "do",    "else", "finally", "for",
    "function", "if",    "switch",   "try",      "var",     "while", "with", "const"};

bool is_one_of(std::string_view word, std::span<const std::string_view> words) {
    return std::ranges::find(words, word) != words.end();
}

}  // namespace

bool Structure::follows_sign(std::size_t index, std::string_view sign) const {
    return index > 0 && pieces_[index - 1].token.is(sign);
}

bool Structure::follows_word(std::size_t index, std::string_view word) const {
    return index > 0 && pieces_[index - 1].is_reserved && pieces_[index - 1].token.is_word(word);
}

bool Structure::is_in_object() const {
    return !open_.empty() && pieces_[open_.back().piece].role == Role::object;
}

bool Structure::ends_value(std::size_t index) const {
    const Piece& piece = pieces_[index];
    switch (piece.token.kind) {
        case TokenKind::name:
            return !piece.is_reserved;
        case TokenKind::number:
        case TokenKind::text:
        case TokenKind::pattern:
            return true;
        case TokenKind::sign:
            break;
        case TokenKind::end:
            return false;
    }
    if (piece.token.is(")")) return piece.role == Role::call || piece.role == Role::group;
    if (piece.token.is("}"))
        return piece.role == Role::object || piece.role == Role::expression_body;
    if (piece.token.is("++") || piece.token.is("--")) return !piece.is_prefix;
    return piece.token.is("]");
}

std::size_t Structure::add(const Token& token) {
    const std::size_t index = pieces_.size();
    pieces_.push_back({token});
    if (token.kind != TokenKind::sign) {
        read_name(index);
    } else if (token.is("(")) {
        open(index, paren_role(index));
    } else if (token.is("[")) {
        open(index, index > 0 && ends_value(index - 1) ? Role::index : Role::list);
    } else if (token.is("{")) {
        open(index, brace_role(index));
    } else if (token.is(")") || token.is("]") || token.is("}")) {
        close(index);
    } else if (token.is("++") || token.is("--")) {
        pieces_[index].is_prefix = index == 0 || !ends_value(index - 1) || token.begins_line;
    } else if (token.is("?")) {
        ++innermost().conditionals;
    } else if (token.is(":") && innermost().conditionals > 0) {
        --innermost().conditionals;
        pieces_[index].is_conditional = true;
    } else if (token.is(";")) {
        innermost().conditionals = 0;
        ++innermost().semicolons;
    } else if (token.is(",")) {
        ++innermost().commas;
    }
    return index;
}

void Structure::read_name(std::size_t index) {
    Piece& piece = pieces_[index];
    if (is_in_object()) {
        const bool begins_property = follows_sign(index, ",") || index - 1 == open_.back().piece;
        const Piece& before = pieces_[index - 1];
        piece.is_key =
            begins_property ||
            (before.is_key && (before.token.is_word("get") || before.token.is_word("set")));
    }
    if (piece.token.kind != TokenKind::name || piece.is_key || follows_sign(index, ".")) return;
    piece.is_reserved =
        is_one_of(piece.token.text, operator_words) || is_one_of(piece.token.text, other_words);
    Bracket& around = innermost();
    if (piece.token.is_word("in") && around.is_for_header && around.semicolons == 0 &&
        around.in_at == Piece::nowhere)
        around.in_at = index;
}

void Structure::open(std::size_t index, Role role) {
    pieces_[index].role = role;
    Bracket bracket{index};
    bracket.is_for_header = role == Role::loop && pieces_[index - 1].token.is_word("for");
    open_.push_back(bracket);
}

void Structure::close(std::size_t index) {
    Piece& piece = pieces_[index];
    const std::string_view expected = piece.token.is(")") ? "(" : piece.token.is("]") ? "[" : "{";
    if (open_.empty() || !pieces_[open_.back().piece].token.is(expected))
        throw SyntaxProblem(piece.token.line,
                            "this '" + std::string(piece.token.text) + "' closes nothing");
    closed_ = open_.back();
    open_.pop_back();
    piece.partner = closed_.piece;
    pieces_[closed_.piece].partner = index;
    piece.role = pieces_[closed_.piece].role;
}

Role Structure::paren_role(std::size_t index) const {
    if (index == 0) return Role::group;
    if (pieces_[index - 1].is_reserved) {
        const std::string_view word = pieces_[index - 1].token.text;
        if (word == "while" || word == "for") return Role::loop;
        if (word == "if" || word == "with" || word == "switch" || word == "catch")
            return Role::condition;
        return word == "function" ? Role::call : Role::group;
    }
    return ends_value(index - 1) ? Role::call : Role::group;
}

Role Structure::brace_role(std::size_t index) const {
    if (index == 0) return Role::block;
    const Piece& previous = pieces_[index - 1];
    const Token& token = previous.token;
    if (token.is(")")) {
        if (previous.role == Role::condition || previous.role == Role::loop) return Role::block;
        return body_role(previous.partner);
    }
    if (token.kind == TokenKind::name)
        return previous.is_reserved && is_one_of(token.text, operator_words) ? Role::object
                                                                             : Role::block;
    if (token.kind != TokenKind::sign || token.is(";") || token.is("{") || token.is("}") ||
        token.is("]"))
        return Role::block;
    if (token.is(":"))
        return is_in_object() || previous.is_conditional ? Role::object : Role::block;
    return Role::object;
}

// What braces are behind the parentheses that open at `paren`.
Role Structure::body_role(std::size_t paren) const {
    if (paren > 0 && pieces_[paren - 1].is_key) return Role::expression_body;
    const std::size_t word = follows_word(paren, "function") ? paren - 1 : paren - 2;
    if (paren < word || !pieces_[word].is_reserved || !pieces_[word].token.is_word("function"))
        return Role::block;
    return is_in_expression(word) ? Role::expression_body : Role::body;
}

// Whether the function of this word is part of an expression.
bool Structure::is_in_expression(std::size_t word) const {
    if (word == 0 || ends_value(word - 1)) return false;
    const Piece& previous = pieces_[word - 1];
    const Token& token = previous.token;
    if (token.kind == TokenKind::name) return is_one_of(token.text, operator_words);
    if (token.is(":")) return is_in_object() || previous.is_conditional;
    return !(token.is(";") || token.is("{") || token.is("}") || token.is(")"));
}

}  // namespace orvo::script
