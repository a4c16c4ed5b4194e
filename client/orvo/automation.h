#pragma once

// In the source tree; what is installed here is the header itself.
#include "platform/system/automation.h"
