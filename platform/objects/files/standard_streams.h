#pragma once

// The program's own streams as text streams, in UTF-8. Ending one ends the object, not the stream.

#include "platform/values/object.h"

namespace orvo {

enum class StandardStream { input, output, errors };

Object standard_stream(StandardStream stream);

}  // namespace orvo
