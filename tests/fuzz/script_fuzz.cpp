// Scripts: what plain Duktape compiles, it compiles rewritten, too.

#include <duktape.h>

#include <algorithm>
#include <optional>

#include "host/engine/rewrite.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

bool compiles(const std::string& source) {
    duk_context* context = duk_create_heap_default();
    const bool compiled =
        duk_pcompile_lstring(context, 0, source.data(), source.size()) == DUK_EXEC_SUCCESS;
    duk_destroy_heap(context);
    return compiled;
}

// Lines as the language counts them.
int lines_of(std::string_view source) {
    int lines = 1;
    for (std::size_t i = 0; i < source.size(); ++i) {
        const std::string_view rest = source.substr(i);
        if (rest.starts_with("\r\n")) ++i;
        if (rest[0] == '\n' || rest[0] == '\r' || rest.starts_with("\xE2\x80\xA8") ||
            rest.starts_with("\xE2\x80\xA9"))
            ++lines;
    }
    return lines;
}

bool may_be_refused(std::string_view problem) {
    return problem.find("__orvo_") != problem.npos ||
           problem.find("an assignment to this call") != problem.npos;
}

}  // namespace

void script_properties(std::string_view input) {
    const std::string source(input);
    std::optional<std::string> made;
    std::string problem;
    try {
        made = script::rewritten(source);
    } catch (const script::SyntaxProblem& refused) {
        problem = refused.what();
        require(refused.line >= 1 && refused.line <= lines_of(input),
                "a refusal tells a line of the source");
    }
    if (made) require(lines_of(*made) == lines_of(source), "every line stays where it was");
    if (!compiles(source)) return;
    require(made || may_be_refused(problem), "a program is refused for its own names alone");
    require(!made || compiles(*made), "a program is one after it has been rewritten");
}

}  // namespace orvo::fuzz
