#pragma once

#include "platform/values/object.h"
#include "platform/values/text.h"

namespace orvo::audit {

// An item of the page that the calling thread runs ("Request", "Session"); an empty object where it
// runs none, or its page has none. Raises nothing.
Object item_of_calling_page(const Text& name) noexcept;

// The address of the browser whose page the calling thread runs, as the page's Request tells it
// (server variable REMOTE_ADDR); empty where it runs none. Raises nothing.
Text address_of_calling_page() noexcept;

// The GUID under which the browser has logged in whose page the calling thread runs
// (Session("QUENDRAID")); empty where it runs none, or nobody has. Raises nothing.
Text login_of_calling_page() noexcept;

// The identifier of the request that this page answers (server variable REQUEST_ID); empty where
// the thread runs none. Raises nothing.
Text request_of_calling_page() noexcept;

}  // namespace orvo::audit
