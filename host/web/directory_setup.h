#pragma once

#include "host/web/site.h"

namespace orvo::web {

// Tells the directory provider how the site keeps connections and entries, where it says so. Raises
// what the provider refuses, by the name of the setting.
void set_up_directory(const Site& site);

}  // namespace orvo::web
