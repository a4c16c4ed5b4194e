#pragma once

// The settings that all objects of a thread share.

#include "component/config/ServerInfo.h"

namespace orvo {

// The thread's own settings, made on first use and kept for the life of the thread. Borrowed: they
// are for this thread alone, and nobody else's to release.
ServerInfo* shared_server_info();

// The same for a method that has a failure of its own for a thread without settings, which it
// raises with this number, source and description. Settings are made when they are asked for, so no
// caller has seen one of these failures; their numbers and words are published all the same.
ServerInfo& settings_or_raise(std::int32_t number, const char16_t* source,
                              const char16_t* description);

// Loads the site's configuration into them: what an object does when it is activated. As loaded
// values are kept, only the first activation on a thread fills them in full. Raises what the
// configuration raises, told by HandleError.
void load_site_configuration();

}  // namespace orvo
