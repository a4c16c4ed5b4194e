#pragma once

// Values that stand elsewhere than in the configuration file, so that no password has to be in it:
//
//     MemScriptCode = @file:/run/secrets/service    what a file holds: one line
//     MemScriptCode = @credential:service           a file of systemd's, in $CREDENTIALS_DIRECTORY
//     MemScriptCode = @env:SHOP_SERVICE_CODE        a variable of the environment
//
// Any other value that begins with "@" is that text itself.

#include <filesystem>

#include "platform/values/text.h"

namespace orvo {

// Whether a configured value stands elsewhere.
bool is_reference(TextView configured);

// What a configured value stands for: itself, or what it refers to. A relative file is looked for
// in `folder`. Raises file_not_found, file_not_readable or malformed_file with a sentence that
// names what was looked for, and never shows what it holds. Any thread, while no other one changes
// the environment.
Text referred_value(TextView configured, const std::filesystem::path& folder);

}  // namespace orvo
