#include "tests/host/engine/random_program.h"

#include <utility>

namespace orvo::script {
namespace {

constexpr const char* names[] = {"a", "b", "c", "d", "get", "set", "let", "of", "evil"};
constexpr const char* words[] = {"while",  "for",  "in", "if",  "function", "typeof", "catch",
                                 "return", "eval", "a",  "get", "'a b'",    "7"};
constexpr const char* members[] = {"a", "b", "length", "in", "while", "get", "eval", "return"};
constexpr const char* binary[] = {"+",   "-", "*", "/", "%",  "<",  ">",   "<=", "==", "===", "!=",
                                  "!==", "&", "|", "^", "<<", ">>", ">>>", "&&", "||", ","};
constexpr const char* unary[] = {"-", "+", "!", "~", "typeof ", "void "};
constexpr const char* assignment[] = {"=", "=", "-=", "*=", "/=", "%=", "|=", ">>>="};

}  // namespace

// Between two tokens, where a line may end.
std::string RandomProgram::gap() {
    static constexpr const char* gaps[] = {"",   " ",         " ",           " ",
                                           "\n", "/* ' / */", " // \" /*\n", "\t"};
    return one_of(gaps);
}

std::string RandomProgram::end() {
    static constexpr const char* ends[] = {";", ";", "; ", ";\n", "\n", "\n", " // end\n"};
    return one_of(ends);
}

std::string RandomProgram::variable() { return one_of(names); }

std::string RandomProgram::pattern() {
    static constexpr const char* patterns[] = {"/a/g", "/[/'\"]/", "/\\//", "/(.)b?/", "/^x|y$/i"};
    return one_of(patterns);
}

std::string RandomProgram::literal() {
    static constexpr const char* literals[] = {
        "0",  "1",        "2.5",  "1e3",   "0x1F", "'x'",       "\"it's\"", "'/*'",
        "''", "'a\\\nb'", "true", "false", "null", "undefined", "this",     ".5"};
    return one_of(literals);
}

std::string RandomProgram::object(int depth) {
    std::string made = "{" + gap();
    for (unsigned i = below(4); i > 0; --i) {
        const std::string key = one_of(words);
        switch (below(4)) {
            case 0:
                made += "get " + key + "()" + gap() + "{return " + value(depth - 1) + "}";
                break;
            case 1:
                made += "set " + key + "(v)" + gap() + "{" + statements(0) + "}";
                break;
            default:
                made += key + gap() + ":" + gap() + "(" + value(depth - 1) + ")";
        }
        if (i > 1) made += gap() + "," + gap();
    }
    return made + gap() + "}";
}

std::string RandomProgram::function(int depth, const std::string& name) {
    const int loops = std::exchange(loops_, 0);
    ++functions_;
    std::string made =
        "function " + name + "(" + (once_in(2) ? variable() : "") + ")" + gap() + "{";
    if (once_in(6)) made += "'use strict'" + end();
    made += statements(depth - 1) + "return " + value(depth - 1) + end() + "}";
    --functions_;
    loops_ = loops;
    return made;
}

std::string RandomProgram::evaluation(int depth) {
    std::string text = once_in(2) ? statements(depth - 1) : value(depth - 1);
    std::string quoted;
    for (const char c : text) {
        if (c == '\\' || c == '"') quoted += '\\';
        quoted += c == '\n' ? "\\n" : std::string(1, c);
    }
    static constexpr const char* callers[] = {"eval(", "eval(", "(0, eval)(", "Function("};
    const std::string caller = one_of(callers);
    return caller + "\"" + quoted + "\")" + (caller == "Function(" ? "()" : "");
}

std::string RandomProgram::call(int depth) {
    switch (below(6)) {
        case 0:
            return "(" + function(depth, "") + ")(" + value(depth - 1) + ")";
        case 1:
            return "[3, 1, " + value(0) + "].map(" + function(depth, "") + ").join()";
        case 2:
            return "String(" + value(depth - 1) + ").replace(" + pattern() + ", '<$1>')";
        case 3:
            return "new " + function(depth, "") + "(" + value(0) + ").a";
        case 4:
            return evaluation(depth);
        default:
            return "show(" + value(depth - 1) + ")";
    }
}

std::string RandomProgram::value(int depth) {
    if (depth <= 0) return once_in(2) ? variable() : literal();
    switch (below(11)) {
        case 0:
            return literal();
        case 1:
            return variable() + gap() + one_of(assignment) + gap() + "short(" + value(depth - 1) +
                   ")";
        case 2:
        case 3:
            return "(" + value(depth - 1) + gap() + " " + one_of(binary) + " " + gap() +
                   value(depth - 1) + ")";
        case 4:
            return one_of(unary) + value(depth - 1);
        case 5:
            return "(" + value(depth - 1) + gap() + "?" + gap() + object(depth - 1) + gap() + ":" +
                   gap() + value(depth - 1) + ")";
        case 6:
            return call(depth - 1);
        case 7:
            return "(" + object(depth - 1) + ")" + gap() + "." + gap() + one_of(members);
        case 8:
            return variable() + (once_in(2) ? "++" : "--") + " / 2 / " +
                   (once_in(2) ? "++" : "--") + variable();
        case 9:
            return pattern() + ".test(" + value(depth - 1) + ")";
        default:
            return "('a' in " + object(depth - 1) + ")";
    }
}

std::string RandomProgram::block(int depth) { return "{" + statements(depth - 1) + "}"; }

std::string RandomProgram::loop(int depth) {
    ++loops_;
    const std::string body = once_in(3) ? statement(depth - 1) : block(depth);
    std::string made;
    switch (below(5)) {
        case 0:
            made = "while" + gap() + "(fuel-- > 0 && " + value(depth - 1) + ")" + gap() + body;
            break;
        case 1:
            made = "do " + body + " while" + gap() + "(fuel-- > 0 && " + value(depth - 1) + ")" +
                   end();
            break;
        case 2:
            made = "for (" + std::string(once_in(2) ? "var " : "") + variable() +
                   " = 0; fuel-- > 0 && " + value(0) + ";" + gap() + value(depth - 1) + ")" +
                   gap() + body;
            break;
        case 3:
            made = "for (;;)" + gap() + "{if (fuel-- <= 0) break" + end() + body + "}";
            break;
        default:
            made = "for (" + std::string(once_in(2) ? "var " : "") + variable() + gap() + " in " +
                   object(depth - 1) + ")" + gap() + body;
    }
    --loops_;
    return made;
}

std::string RandomProgram::statement(int depth) {
    if (depth <= 0) return "show(" + value(1) + ")" + end();
    switch (below(13)) {
        case 0:
            return "var " + variable() + " = short(" + value(depth) + ")" + end();
        case 1:
            return "if" + gap() + "(" + value(depth - 1) + ")" + gap() + block(depth) + gap() +
                   "else " + statement(depth - 1);
        case 2:
        case 3:
            return loop(depth);
        case 4:
            return "try " + block(depth) + gap() + "catch (e)" + gap() + block(depth) + gap() +
                   (once_in(2) ? "finally " + block(depth) : "");
        case 5:
            return "switch (" + value(depth - 1) + ") {case " + value(0) + ":" + gap() +
                   statements(depth - 1) + "default:" + gap() + statements(depth - 1) + "}";
        case 6:
            return function(depth, "f" + std::to_string(++names_)) + gap();
        case 7:
            return "throw (" + value(depth - 1) + ")" + end();
        case 8:
            return loops_ > 0 ? (once_in(2) ? "break" : "continue") + end() : ";";
        case 9: {
            const std::string label = "l" + std::to_string(++names_);
            return label + ":" + gap() + loop(depth);
        }
        case 10:
            return "with (" + object(depth - 1) + ")" + gap() + block(depth);
        case 11:
            return functions_ > 0 ? "return" + end()
                                  : value(depth).insert(0, "show(") + ")" + end();
        default:
            return "show(" + value(depth) + ")" + end();
    }
}

std::string RandomProgram::statements(int depth) {
    std::string made = gap();
    for (unsigned i = 1 + below(3); i > 0; --i) made += statement(depth) + gap();
    return made;
}

std::string RandomProgram::make() {
    std::string made = once_in(8) ? "'use strict'" + end() : "";
    made +=
        "var fuel = 60, shown = 0, a = 1, b = 'x', c = {a: 2}, d, get = 3, set, let = 'l', of, "
        "evil;\n"
        // What is kept does not grow without end.
        "function short(v) { return typeof v === 'string' ? v.slice(0, 40) : v; }\n"
        "function show(v) { if (++shown < 200) print(typeof v === 'function' ? 'function' : "
        "typeof v === 'object' && v !== null ? Object.prototype.toString.call(v) : String(v)); "
        "return v; }\n"
        "try {\n";
    for (int i = 0; i < 6; ++i) made += statement(3) + gap();
    return made + "\n} catch (e) { print(e instanceof Error ? e.name + e.message : typeof e); }\n" +
           "show(a); show(b); show(d); show(fuel);\n";
}

}  // namespace orvo::script
