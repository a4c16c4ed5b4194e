#include "host/engine/later_words.h"

#include <string>

namespace orvo::script {
namespace {

// Where the word can be a name, only what follows it tells.
enum class Use { always, before_name, before_name_or_brace };

struct LaterWord {
    std::string_view word;
    Use use;
    std::string_view advice;
};

constexpr LaterWord words[] = {
    {"let", Use::before_name_or_brace, "use \"var\""},
    {"class", Use::always, "use a function and its prototype"},
    {"import", Use::always, "include the file where scripts are started"},
    {"export", Use::always, "what a script defines is seen by the scripts behind it"},
    {"async", Use::before_name, "calls return when their work is done"},
    {"await", Use::before_name, "calls return when their work is done"},
    {"yield", Use::before_name, "fill an array"},
};

bool is_used(Use use, const Token& next) {
    if (use == Use::always) return true;
    if (next.begins_line) return false;
    if (use == Use::before_name_or_brace && next.is("{")) return true;
    if (next.kind == TokenKind::number || next.kind == TokenKind::text) return true;
    return next.kind == TokenKind::name && !next.is_word("in") && !next.is_word("instanceof");
}

[[noreturn]] void refuse(const Token& token, std::string_view word, std::string_view advice) {
    throw SyntaxProblem(
        token.line, "this language has no \"" + std::string(word) + "\"; " + std::string(advice));
}

// Names that are given values in the place where they are declared, and function*.
void refuse_later_parameters(const Structure& pieces, std::size_t last) {
    const Token& token = pieces[last].token;
    if (token.is("*") && pieces.follows_word(last, "function"))
        refuse(token, "function*", "fill an array");
    const bool is_pattern = token.is("{") || token.is("[");
    if (is_pattern && (pieces.follows_word(last, "var") || pieces.follows_word(last, "const")))
        refuse(token, "var " + std::string(token.text), "read the parts one by one");
    const std::size_t depth = pieces.open().size();
    // A bracket that opens here is the innermost one itself.
    if (depth < (is_pattern ? 2u : 1u)) return;
    const std::size_t around = pieces.open()[depth - (is_pattern ? 2 : 1)].piece;
    const bool is_list = pieces[around].token.is("(") &&
                         (pieces.follows_word(around, "function") ||
                          (around > 0 && pieces.follows_word(around - 1, "function")));
    if (is_list && token.is("="))
        refuse(token, "(a = 1)", "ask in the function: if (a === undefined) a = 1");
    if (is_list && is_pattern)
        refuse(token, token.is("{") ? "({a})" : "([a])",
               "take an object, and read its parts one by one");
}

}  // namespace

void refuse_later_words(const Structure& pieces, const Token& next) {
    const std::size_t last = pieces.size() - 1;
    const Piece& piece = pieces[last];
    const Token& token = piece.token;
    if (token.is("=>")) refuse(token, token.text, "write function (a) { return b; }");
    if (token.is("...")) refuse(token, token.text, "use concat, or apply for a call");
    if (token.is("?") && next.is("."))
        refuse(token, "?.", "ask first whether the object is there: a && a.b");
    if (token.is("?") && next.is("?")) refuse(token, "??", "write a != null ? a : b");
    refuse_later_parameters(pieces, last);
    if (token.kind != TokenKind::name || piece.is_key || pieces.follows_sign(last, ".")) return;
    for (const LaterWord& later : words)
        if (token.text == later.word && is_used(later.use, next))
            refuse(token, later.word, later.advice);
    const bool is_in_header = !pieces.open().empty() && pieces.open().back().is_for_header;
    if (token.is_word("of") && is_in_header && last > 0 && pieces.ends_value(last - 1))
        refuse(token, "of", "count with an index, or use \"in\" for names");
}

}  // namespace orvo::script
