#include "host/engine/rewrite.h"

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

namespace orvo::script {
namespace {

constexpr std::string_view tick_call = "__orvo_tick()";
constexpr std::string_view counted_tick = "++__orvo_n&255||__orvo_tick()";
constexpr std::string_view refused_assignment =
    "an assignment to this call cannot be carried out; keep the object in a variable and write "
    "object.Member(index) = value";

constexpr std::string_view assignment_signs[] = {
    "=", "+=", "-=", "*=", "/=", "%=", "<<=", ">>=", ">>>=", "&=", "|=", "^=", "**="};

// Words before an expression.
constexpr std::string_view operator_words[] = {"return", "typeof", "in",    "instanceof", "new",
                                               "void",   "delete", "throw", "case"};
constexpr std::string_view other_words[] = {
    "break",    "catch", "continue", "debugger", "default", "do",    "else", "finally", "for",
    "function", "if",    "switch",   "try",      "var",     "while", "with", "const"};

bool is_one_of(std::string_view word, std::span<const std::string_view> words) {
    return std::ranges::find(words, word) != words.end();
}

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

class Rewriter {
public:
    explicit Rewriter(std::string_view source) : source_(source), lexer_(source) {}

    std::string run() {
        for (;;) {
            Piece piece{lexer_.next(pattern_allowed())};
            finish_call(piece.token);
            if (piece.token.kind == TokenKind::end) break;
            check_name(piece.token);
            pieces_.push_back(std::move(piece));
            take(pieces_.size() - 1);
        }
        if (!open_.empty())
            throw SyntaxProblem(pieces_[open_.back().piece].token.line,
                                "the '" + std::string(pieces_[open_.back().piece].token.text) +
                                    "' of this line is never closed");
        return assembled();
    }

private:
    static constexpr std::size_t nowhere = static_cast<std::size_t>(-1);

    struct Piece {
        Token token;
        Role role = Role::none;         // of a bracket
        std::size_t partner = nowhere;  // of a bracket
        bool is_prefix = false;         // of "++" and "--"
        bool is_conditional = false;    // of ":"
        std::string before = {};
        std::optional<std::string> instead = {};
        std::string after = {};
    };

    struct Bracket {
        std::size_t piece;
        int conditionals = 0;  // "?" that wait for their ":"
        bool is_for_header = false;
        int semicolons = 0;
        bool has_loop = false;  // of a function's body
    };

    Bracket& innermost() { return open_.empty() ? outermost_ : open_.back(); }
    bool is_in_object() const {
        return !open_.empty() && pieces_[open_.back().piece].role == Role::object;
    }

    // The token before `index`; nothing at the beginning.
    const Piece* before(std::size_t index) const {
        return index > 0 ? &pieces_[index - 1] : nullptr;
    }

    // Whether the name is a word of the language here: behind a dot it is a member's name.
    bool is_reserved(std::size_t index) const {
        const Piece& piece = pieces_[index];
        if (piece.token.kind != TokenKind::name) return false;
        if (const Piece* previous = before(index); previous && previous->token.is("."))
            return false;
        return is_one_of(piece.token.text, operator_words) ||
               is_one_of(piece.token.text, other_words);
    }

    // Whether a value ends with this token, so that "(" calls it and "/" divides it.
    bool ends_value(std::size_t index) const {
        const Piece& piece = pieces_[index];
        switch (piece.token.kind) {
            case TokenKind::name:
                return !is_reserved(index);
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

    bool value_ended() const { return !pieces_.empty() && ends_value(pieces_.size() - 1); }
    bool pattern_allowed() const { return !value_ended(); }

    static void check_name(const Token& token) {
        if (token.kind != TokenKind::name) return;
        std::string name(token.text);
        for (std::string_view underscore : {"\\u005f", "\\u005F"})
            for (std::size_t at; (at = name.find(underscore)) != std::string::npos;)
                name.replace(at, underscore.size(), "_");
        if (name.starts_with(reserved_prefix))
            throw SyntaxProblem(token.line, "names that begin with '" +
                                                std::string(reserved_prefix) +
                                                "' belong to the script engine");
    }

    void take(std::size_t index) {
        const Token token = pieces_[index].token;
        finish_for_header(token);
        if (token.kind != TokenKind::sign) return;
        if (token.is("(")) {
            open(index, paren_role(index));
        } else if (token.is("[")) {
            open(index, index > 0 && ends_value(index - 1) ? Role::index : Role::list);
        } else if (token.is("{")) {
            open(index, brace_role(index));
        } else if (token.is(")") || token.is("]") || token.is("}")) {
            close(index);
        } else if (token.is("++") || token.is("--")) {
            const bool is_postfix = index > 0 && ends_value(index - 1) && !token.begins_line;
            pieces_[index].is_prefix = !is_postfix;
            if (!is_postfix) has_prefix_ = true;
        } else if (token.is("?")) {
            ++innermost().conditionals;
        } else if (token.is(":")) {
            if (innermost().conditionals > 0) {
                --innermost().conditionals;
                pieces_[index].is_conditional = true;
            }
        } else if (token.is(";")) {
            innermost().conditionals = 0;
            if (innermost().is_for_header && ++innermost().semicolons == 1) for_condition_ = index;
        }
    }

    void open(std::size_t index, Role role) {
        pieces_[index].role = role;
        Bracket bracket{index};
        if (role == Role::loop) {
            if (pieces_[index - 1].token.text == "for")
                bracket.is_for_header = true;
            else
                pieces_[index].after = loop_tick() + ",";
        }
        open_.push_back(bracket);
    }

    void close(std::size_t index) {
        Piece& piece = pieces_[index];
        const std::string_view expected = piece.token.is(")")   ? "("
                                          : piece.token.is("]") ? "["
                                                                : "{";
        if (open_.empty() || !pieces_[open_.back().piece].token.is(expected))
            throw SyntaxProblem(piece.token.line,
                                "this '" + std::string(piece.token.text) + "' closes nothing");
        const Bracket bracket = open_.back();
        open_.pop_back();
        piece.partner = bracket.piece;
        pieces_[bracket.piece].partner = index;
        piece.role = pieces_[bracket.piece].role;
        if (piece.role == Role::body || piece.role == Role::expression_body) begin_body(bracket);
    }

    Role paren_role(std::size_t index) const {
        if (index == 0) return Role::group;
        if (is_reserved(index - 1)) {
            const std::string_view word = pieces_[index - 1].token.text;
            if (word == "while" || word == "for") return Role::loop;
            if (word == "if" || word == "with" || word == "switch" || word == "catch")
                return Role::condition;
            return word == "function" ? Role::call : Role::group;
        }
        return ends_value(index - 1) ? Role::call : Role::group;
    }

    Role brace_role(std::size_t index) const {
        const Piece* previous = before(index);
        if (previous == nullptr) return Role::block;
        const Token& token = previous->token;
        if (token.is(")")) {
            if (previous->role == Role::condition || previous->role == Role::loop)
                return Role::block;
            return is_expression_function(previous->partner) ? Role::expression_body : Role::body;
        }
        if (token.kind == TokenKind::name && !is_one_of(token.text, operator_words))
            return Role::block;
        if (token.kind == TokenKind::name)
            return is_reserved(index - 1) ? Role::object : Role::block;
        if (token.kind != TokenKind::sign || token.is(";") || token.is("{") || token.is("}") ||
            token.is("]"))
            return Role::block;
        if (token.is(":"))
            return is_in_object() || previous->is_conditional ? Role::object : Role::block;
        return Role::object;
    }

    // Whether the function whose parameters open at `paren` is part of an expression.
    bool is_expression_function(std::size_t paren) const {
        std::size_t word = paren;
        for (int back = 0; back < 2 && word > 0; ++back)
            if (pieces_[--word].token.is_word("function")) break;
        if (!pieces_[word].token.is_word("function") || !is_reserved(word)) return true;
        const Piece* previous = before(word);
        if (previous == nullptr || ends_value(word - 1)) return false;
        const Token& token = previous->token;
        if (token.kind == TokenKind::name) return is_one_of(token.text, operator_words);
        if (token.is(":")) return is_in_object() || previous->is_conditional;
        return !(token.is(";") || token.is("{") || token.is("}") || token.is(")"));
    }

    // The tick of a loop that begins here.
    std::string loop_tick() {
        for (auto bracket = open_.rbegin(); bracket != open_.rend(); ++bracket) {
            const Role role = pieces_[bracket->piece].role;
            if (role != Role::body && role != Role::expression_body) continue;
            bracket->has_loop = true;
            return std::string(counted_tick);
        }
        return std::string(tick_call);
    }

    // Behind the first ";" of a for: now that the next token is known.
    void finish_for_header(const Token& next) {
        if (for_condition_ == nowhere) return;
        const bool has_condition = !next.is(";");
        pieces_[for_condition_].after = loop_tick() + (has_condition ? "," : "");
        for_condition_ = nowhere;
    }

    // Whether a text ends as a statement of its own where this token follows it.
    static bool ends_directive(const Token& follower) {
        if (follower.is("}")) return true;
        if (!follower.begins_line) return false;
        return follower.kind != TokenKind::sign || follower.is("{") || follower.is("!") ||
               follower.is("~") || follower.is("++") || follower.is("--");
    }

    // The statement that a function begins with stands behind its directives ("use strict").
    void begin_body(const Bracket& bracket) {
        std::size_t last = bracket.piece;
        while (pieces_[last + 1].token.kind == TokenKind::text) {
            const Piece& follower = pieces_[last + 2];
            if (follower.token.is(";"))
                last += 2;
            else if (ends_directive(follower.token))
                ++last;
            else
                break;
        }
        std::string& after = pieces_[last].after;
        const bool needs_end = last != bracket.piece && !pieces_[last].token.is(";");
        after = (needs_end ? ";" : "") + std::string(tick_call) + ";" +
                (bracket.has_loop ? "var __orvo_n=0;" : "") + after;
    }

    // Now that the token behind a call is known: whether something is assigned to the call.
    void finish_call(const Token& next) {
        if (pieces_.empty()) return;
        const std::size_t closing = pieces_.size() - 1;
        if (!pieces_[closing].token.is(")") || pieces_[closing].role != Role::call) return;
        const bool assigned = next.kind == TokenKind::sign &&
                              (is_one_of(next.text, assignment_signs) ||
                               ((next.is("++") || next.is("--")) && !next.begins_line));
        const bool goes_on = next.is(".") || next.is("(") || next.is("[");
        if (!assigned && (goes_on || !has_prefix_)) return;
        const std::optional<std::size_t> start = callee_start(closing);
        if (!assigned && !(start && *start > 0 && pieces_[*start - 1].is_prefix)) return;
        if (!start)
            throw SyntaxProblem(pieces_[closing].token.line, std::string(refused_assignment));
        make_slot(*start, closing);
    }

    // Where the whole expression begins whose last call closes at `closing`; nothing for one that
    // cannot be assigned to.
    std::optional<std::size_t> callee_start(std::size_t closing) const {
        std::size_t at = closing;
        int calls = 0;
        for (;;) {
            const Piece& piece = pieces_[at];
            if (piece.token.is(")") || piece.token.is("]")) {
                at = piece.partner;
                const Role role = pieces_[at].role;
                if (role == Role::call) ++calls;
                if (role == Role::call || role == Role::index) {
                    --at;
                    continue;
                }
                if (role != Role::group) return std::nullopt;
            } else if (piece.token.kind != TokenKind::name || is_reserved(at)) {
                return std::nullopt;
            }
            if (at > 0 && pieces_[at - 1].token.is(".")) {
                at -= 2;
                continue;
            }
            break;
        }
        // "new" takes the first call for itself; its result can be called on.
        for (; at > 0 && pieces_[at - 1].token.is_word("new") && is_reserved(at - 1); --at) --calls;
        if (calls < 1) return std::nullopt;
        return at;
    }

    void make_slot(std::size_t start, std::size_t closing) {
        Piece& opening = pieces_[pieces_[closing].partner];
        const std::size_t callee = pieces_[closing].partner - 1;
        std::string name = "null";
        if (pieces_[callee].token.kind == TokenKind::name && callee > 0 &&
            pieces_[callee - 1].token.is(".")) {
            name = "\"" + std::string(pieces_[callee].token.text) + "\"";
            pieces_[callee - 1].instead = ",";
            pieces_[callee].instead = name;
            opening.instead = ",[";
        } else if (pieces_[callee].token.is("]")) {
            pieces_[pieces_[callee].partner].instead = ",(";
            pieces_[callee].instead = ")";
            opening.instead = ",[";
        } else {
            opening.instead = ",null,[";
        }
        pieces_[start].before = std::string(slot_name) + "(" + pieces_[start].before;
        pieces_[closing].instead = "]).value";
    }

    std::string assembled() const {
        std::string out;
        out.reserve(source_.size() + source_.size() / 4);
        std::size_t copied = 0;
        for (const Piece& piece : pieces_) {
            const auto begin = static_cast<std::size_t>(piece.token.text.data() - source_.data());
            out.append(source_.substr(copied, begin - copied));
            out += piece.before;
            out += piece.instead ? std::string_view(*piece.instead) : piece.token.text;
            out += piece.after;
            copied = begin + piece.token.text.size();
        }
        out.append(source_.substr(copied));
        return out;
    }

    std::string_view source_;
    Lexer lexer_;
    std::vector<Piece> pieces_;
    std::vector<Bracket> open_;
    Bracket outermost_{nowhere};
    std::size_t for_condition_ = nowhere;
    bool has_prefix_ = false;  // whether any "++" or "--" stands before its operand
};

}  // namespace

std::string rewritten(std::string_view source) {
    if (source.starts_with("\xEF\xBB\xBF")) source.remove_prefix(3);
    return Rewriter(source).run();
}

}  // namespace orvo::script
