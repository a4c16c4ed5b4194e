#pragma once

// For the calling thread alone. Without memory for an error object none is left.

#include <string_view>

namespace orvo::runtime {

// Makes a failure of the runtime itself the thread's error object; an empty description takes away
// what is there, so that nobody takes an older error for this failure's.
void set_thread_error(std::string_view description_in_utf8);

}  // namespace orvo::runtime
