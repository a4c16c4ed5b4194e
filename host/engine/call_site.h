#pragma once

#include <duktape.h>

namespace orvo::script {

// Whether what the running trap of a proxy answers is called at once, as in `o.Member(1)`, or only
// read. Only within a trap; false where no script's function asked.
bool is_called_at_once(duk_context* context);

}  // namespace orvo::script
