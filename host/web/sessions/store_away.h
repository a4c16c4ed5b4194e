#pragma once

#include "host/web/messages/http_message.h"

namespace orvo::web {

// The site's shared store cannot be reached, so nothing is known of what it keeps, and nothing can
// be kept.
struct StoreAway : Refusal {
    StoreAway() : Refusal(503, "The site cannot look up who you are now. Please try again.") {}
};

}  // namespace orvo::web
