#pragma once

// The settings that all objects of a thread share.

#include "component/config/ServerInfo.h"

namespace orvo {

// The thread's own settings, made on first use and kept for the life of the thread.
ServerInfo* shared_server_info();

// Loads the site's configuration into them: what an object does when it is activated. As loaded
// values are kept, only the first activation on a thread fills them in full.
void load_site_configuration();

}  // namespace orvo
