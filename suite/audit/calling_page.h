#pragma once

#include "platform/values/text.h"

namespace orvo::audit {

// The address of the browser whose page the calling thread runs, as the page's Request tells it
// (server variable REMOTE_ADDR); empty where it runs none. Raises nothing.
Text address_of_calling_page() noexcept;

}  // namespace orvo::audit
