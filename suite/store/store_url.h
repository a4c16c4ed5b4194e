#pragma once

// The text of StoreURL.

#include <string>
#include <string_view>

#include "suite/store/store_settings.h"

namespace orvo::store {

// Puts addresses, encryption, user and database into the settings; an address without a port gets
// 0. Answers what there is against the text, a sentence that does not show it; empty: nothing.
std::string read_url(std::string_view url, Settings& settings);

}  // namespace orvo::store
