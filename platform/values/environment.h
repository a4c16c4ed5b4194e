#pragma once

// Any thread, while no other one changes the environment. Nothing fails; the text is a copy.

#include "platform/values/text.h"

namespace orvo {

// A variable of the process's environment; empty where there is none.
Text environment_variable(const char* name);

}  // namespace orvo
