#pragma once

#include "platform/values/object.h"

namespace orvo {

// Whether any thread may call an object, and not its maker's alone. Objects of the house tell by
// their class; another's does where it says that it is agile, or has the platform's free-threaded
// marshaller. None of its own members is called. Called on a thread that may use the object.
bool serves_any_thread(const Object& object);

}  // namespace orvo
