#pragma once

#include "platform/values/text.h"

namespace orvo {

// A variable of the process's environment; empty where there is none.
Text environment_variable(const char* name);

}  // namespace orvo
