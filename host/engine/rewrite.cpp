#include "host/engine/rewrite.h"

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

#include "host/engine/later_words.h"
#include "host/engine/structure.h"

namespace orvo::script {
namespace {

constexpr std::string_view tick = "__orvo_tick()";
constexpr std::string_view number_tick = "(0).__orvo_tick";
constexpr std::string_view counted_tick = "--__orvo_n<0&&(__orvo_n=__orvo_tick())";
constexpr std::string_view refused_assignment =
    "an assignment to this call cannot be carried out; keep the object in a variable and write "
    "object.Member(index) = value";

constexpr std::string_view assignment_signs[] = {
    "=", "+=", "-=", "*=", "/=", "%=", "<<=", ">>=", ">>>=", "&=", "|=", "^=", "**="};

// An `if` has no completion value that eval could show.
std::string as_statement(std::string_view expression) {
    return "if(" + std::string(expression) + ");";
}

// The name that is written, with its escapes \uXXXX read.
std::string unescaped(std::string_view name) {
    std::string read;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name.substr(i).starts_with("\\u") && i + 6 <= name.size()) {
            const unsigned long unit =
                std::strtoul(std::string(name.substr(i + 2, 4)).c_str(), nullptr, 16);
            read.push_back(unit < 0x80 ? static_cast<char>(unit) : '?');
            i += 5;
        } else {
            read.push_back(name[i]);
        }
    }
    return read;
}

class Rewriter {
public:
    Rewriter(std::string_view source, Within within)
        : source_(source), lexer_(source), has_with_(within != Within::nothing) {}

    std::string run() {
        for (;;) {
            const Token token = lexer_.next(!pieces_.ends_value());
            if (pieces_.size() > 0) refuse_later_words(pieces_, token);
            finish_call(token);
            finish_loop_head(token);
            if (token.kind == TokenKind::end) break;
            check_name(token);
            edits_.emplace_back();
            take(pieces_.add(token));
        }
        if (!pieces_.open().empty()) {
            const Token& opening = pieces_[pieces_.open().back().piece].token;
            throw SyntaxProblem(opening.line, "the '" + std::string(opening.text) +
                                                  "' of this line is never closed");
        }
        return assembled();
    }

private:
    static constexpr std::size_t nowhere = Piece::nowhere;

    // What becomes of a token.
    struct Edit {
        std::string before = {};
        std::optional<std::string> instead = {};
        std::string after = {};
        bool has_loop = false;  // of the brace that opens a function's body
    };

    static void check_name(const Token& token) {
        if (token.kind == TokenKind::name && unescaped(token.text).starts_with(reserved_prefix))
            throw SyntaxProblem(token.line, "names that begin with '" +
                                                std::string(reserved_prefix) +
                                                "' belong to the script engine");
    }

    void take(std::size_t index) {
        const Piece& piece = pieces_[index];
        const Token& token = piece.token;
        take_loop_body(index);
        if (token.is("(")) {
            if (piece.role == Role::loop && pieces_.follows_word(index, "while"))
                edits_[index].after = loop_tick() + ",";
        } else if (token.is("{")) {
            if (pieces_.follows_word(index, "finally") || follows_catch(index))
                edits_[index].after = as_statement(own_tick());
        } else if (token.is(")") && piece.role == Role::loop) {
            if (pieces_.closed().in_at != nowhere) for_in_body_ = index;
        } else if (token.is("}") &&
                   (piece.role == Role::body || piece.role == Role::expression_body)) {
            begin_body(piece.partner);
        } else if (token.is(";")) {
            if (!pieces_.open().empty() && pieces_.open().back().is_for_header &&
                pieces_.open().back().semicolons == 1)
                for_condition_ = index;
        } else if (token.is_word("in")) {
            if (!pieces_.open().empty() && pieces_.open().back().in_at == index)
                edits_[index].after = " " + loop_tick() + ",";
        } else if (token.is_word("with") && piece.is_reserved) {
            has_with_ = true;
        } else if (piece.is_prefix) {
            has_prefix_ = true;
        }
    }

    bool follows_catch(std::size_t brace) const {
        return pieces_.follows_sign(brace, ")") && pieces_[brace - 1].role == Role::condition &&
               pieces_.follows_word(pieces_[brace - 1].partner, "catch");
    }

    std::string_view own_tick() const { return has_with_ ? number_tick : tick; }

    // The tick of a loop that is read just now.
    std::string loop_tick() {
        if (has_with_) return std::string(number_tick);
        for (auto bracket = pieces_.open().rbegin(); bracket != pieces_.open().rend(); ++bracket) {
            const Role role = pieces_[bracket->piece].role;
            if (role != Role::body && role != Role::expression_body) continue;
            edits_[bracket->piece].has_loop = true;
            return std::string(counted_tick);
        }
        return std::string(tick);
    }

    // Behind the first ";" of a for: now that the next token is known.
    void finish_loop_head(const Token& next) {
        if (for_condition_ == nowhere) return;
        edits_[for_condition_].after = loop_tick() + (next.is(";") ? ",true" : ",");
        for_condition_ = nowhere;
    }

    // The statement that a for-in carries out begins with a tick, wherever it has room for one:
    // loops have ticks of their own, and what leaves the loop needs none.
    void take_loop_body(std::size_t index) {
        if (for_in_body_ == nowhere) return;
        const Token& token = pieces_[index].token;
        if (token.is("{")) {
            edits_[index].after = as_statement(loop_tick());
        } else if (token.is("(") && pieces_[index].role == Role::condition) {
            edits_[index].after = loop_tick() + ",";
        } else if (pieces_[index].is_reserved) {
            for (std::string_view word : {"if", "switch", "with", "try"})
                if (token.is_word(word)) return;
            for (std::string_view word : {"typeof", "new", "void", "delete"})
                if (token.is_word(word)) edits_[index - 1].after += " " + loop_tick() + ",";
        } else if (token.kind == TokenKind::name && Lexer(lexer_).next(false).is(":")) {
            return;  // a label
        } else if (token.is(":") && index > for_in_body_ + 1) {
            return;
        } else if (!token.is(";") && !token.is("}")) {
            edits_[index - 1].after += " " + loop_tick() + ",";
        }
        for_in_body_ = nowhere;
    }

    // Whether a text ends as a statement of its own where this token follows it.
    static bool ends_directive(const Token& follower) {
        if (follower.is("}")) return true;
        if (!follower.begins_line || follower.is_word("in") || follower.is_word("instanceof"))
            return false;
        return follower.kind != TokenKind::sign || follower.is("{") || follower.is("!") ||
               follower.is("~") || follower.is("++") || follower.is("--");
    }

    // The statement that a function begins with stands behind its directives ("use strict").
    void begin_body(std::size_t opening) {
        std::size_t last = opening;
        while (pieces_[last + 1].token.kind == TokenKind::text) {
            const Token& follower = pieces_[last + 2].token;
            if (follower.is(";"))
                last += 2;
            else if (ends_directive(follower))
                ++last;
            else
                break;
        }
        std::string& after = edits_[last].after;
        const bool needs_end = last != opening && !pieces_[last].token.is(";");
        after = (needs_end ? ";" : "") +
                std::string(edits_[opening].has_loop ? "var __orvo_n=" : "") +
                std::string(own_tick()) + ";" + after;
    }

    // Now that the token behind a call is known: whether something is assigned to the call, or
    // whether it is a call of eval.
    void finish_call(const Token& next) {
        if (pieces_.size() == 0) return;
        const std::size_t closing = pieces_.size() - 1;
        if (!pieces_[closing].token.is(")") || pieces_[closing].role != Role::call) return;
        const bool assigned =
            next.kind == TokenKind::sign &&
            (std::ranges::find(assignment_signs, next.text) != std::end(assignment_signs) ||
             ((next.is("++") || next.is("--")) && !next.begins_line));
        const bool goes_on = next.is(".") || next.is("(") || next.is("[");
        if (!assigned && (goes_on || !has_prefix_)) return take_evaluation(closing);
        const std::optional<std::size_t> start = callee_start(closing);
        if (!assigned && !(start && *start > 0 && pieces_[*start - 1].is_prefix))
            return take_evaluation(closing);
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
            } else if (piece.token.kind != TokenKind::name || piece.is_reserved) {
                return std::nullopt;
            }
            if (pieces_.follows_sign(at, ".")) {
                if (at < 2) return std::nullopt;
                at -= 2;
                continue;
            }
            break;
        }
        // "new" takes the first call for itself; its result can be called on.
        for (; pieces_.follows_word(at, "new"); --at) --calls;
        if (calls < 1) return std::nullopt;
        return at;
    }

    void make_slot(std::size_t start, std::size_t closing) {
        const std::size_t opening = pieces_[closing].partner;
        const std::size_t callee = opening - 1;
        if (pieces_[callee].token.kind == TokenKind::name && pieces_.follows_sign(callee, ".")) {
            edits_[callee - 1].instead = ",";
            edits_[callee].instead = "\"" + std::string(pieces_[callee].token.text) + "\"";
            edits_[opening].instead = ",[";
        } else if (pieces_[callee].token.is("]")) {
            edits_[pieces_[callee].partner].instead = ",(";
            edits_[callee].instead = ")";
            edits_[opening].instead = ",[";
        } else {
            edits_[opening].instead = ",null,[";
        }
        edits_[start].before = std::string(slot_name) + "(" + edits_[start].before;
        edits_[closing].instead = "]).value";
    }

    // A call of eval by its name and with one argument sees the variables around it. Others are
    // calls of a function like any other, among the globals.
    void take_evaluation(std::size_t closing) {
        const std::size_t opening = pieces_[closing].partner;
        if (opening == 0 || opening + 1 == closing || pieces_.closed().commas > 0) return;
        const std::size_t word = opening - 1;
        if (!pieces_[word].token.is_word("eval") || pieces_[word].is_key ||
            pieces_.follows_sign(word, ".") || pieces_.follows_word(word, "new") ||
            pieces_.follows_word(word, "function"))
            return;
        const bool ends_statement =
            pieces_[word].token.begins_line && word > 0 && pieces_.ends_value(word - 1);
        edits_[word].instead = std::string(ends_statement ? ";(" : "(") + evaluate_name;
        edits_[closing].instead = "),eval(" + std::string(text_name) + "(eval)))";
    }

    std::string assembled() const {
        std::string out;
        out.reserve(source_.size() + source_.size() / 4);
        std::size_t copied = 0;
        for (std::size_t i = 0; i < pieces_.size(); ++i) {
            const std::string_view text = pieces_[i].token.text;
            const auto begin = static_cast<std::size_t>(text.data() - source_.data());
            out.append(source_.substr(copied, begin - copied));
            out += edits_[i].before;
            out += edits_[i].instead ? std::string_view(*edits_[i].instead) : text;
            out += edits_[i].after;
            copied = begin + text.size();
        }
        out.append(source_.substr(copied));
        return out;
    }

    std::string_view source_;
    Lexer lexer_;
    Structure pieces_;
    std::vector<Edit> edits_;  // one for each piece
    std::size_t for_condition_ = nowhere;
    std::size_t for_in_body_ = nowhere;  // the ")" before it
    bool has_with_;                      // whether there may be a `with` around what is read
    bool has_prefix_ = false;            // whether any "++" or "--" stands before its operand
};

}  // namespace

std::string rewritten(std::string_view source, Within within) {
    if (source.starts_with("\xEF\xBB\xBF")) source.remove_prefix(3);
    return Rewriter(source, within).run();
}

}  // namespace orvo::script
