#pragma once

#include "host/engine/script_engine.h"

namespace orvo::script {

// What the copies of a program share: compiled code, and where its lines come from.
struct Program::Content {
    std::string file;
    LineMap lines;
    std::string code;  // as the language's engine dumps it

    // The place that a person wrote, for a line of the source that was compiled.
    Place place_of(int line) const;
};

// The compiled form of rewritten source, for duk_load_function; flags are duk_compile's. Raises
// SyntaxProblem.
std::string compiled(const std::string& source, const std::string& file, unsigned flags);

}  // namespace orvo::script
