#pragma once

#include "host/engine/lexer.h"
#include "host/engine/structure.h"

namespace orvo::script {

// Raises SyntaxProblem where the last token is one of the language's later editions and cannot be
// anything else; `next` is the token behind it.
void refuse_later_words(const Structure& pieces, const Token& next);

}  // namespace orvo::script
