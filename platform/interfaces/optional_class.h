#pragma once

#include "platform/values/object.h"
#include "platform/values/text.h"

namespace orvo {

// As create_object; null for a class that is not known or cannot be loaded.
Object create_object_if_known(const Text& progid);

}  // namespace orvo
