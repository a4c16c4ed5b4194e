#pragma once

// Objects by name. The object belongs to the calling thread.

#include "platform/interfaces/ref.h"
#include "platform/values/object.h"
#include "platform/values/text.h"

namespace orvo {

// Plain creation by ProgID, as the platform's CreateObject. Raises 429 ("ActiveX component can't
// create object") for a class that is not known or cannot be loaded, with the reason behind the
// text where the system gives one; and what the class itself raised while it was made.
Object create_object(const Text& progid);

}  // namespace orvo
