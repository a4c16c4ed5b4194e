#pragma once

// The keys of Windows' class registry as texts, in the machine's part (HKEY_LOCAL_MACHINE) or the
// user's (HKEY_CURRENT_USER). Any thread. Failures are raised as Failure with the system's error
// number as a result code.

#include <optional>
#include <string>
#include <vector>

#include "platform/system/registration.h"

namespace orvo::runtime {

enum class Life { lasting, until_restart };

// Sets the default value of a key ("CLSID\\{…}\\ProgID"), or a named one, and makes the key where
// it does not exist.
void set_class_key(const std::u16string& key, const std::u16string& value, Scope scope,
                   Life life = Life::lasting);
void set_class_value(const std::u16string& key, const std::u16string& name,
                     const std::u16string& value, Scope scope);

// The default value of a key, or a named one; none when there is no such key, empty when there is
// no such value.
std::optional<std::u16string> class_key(const std::u16string& key, Scope scope);
std::optional<std::u16string> class_value(const std::u16string& key, const std::u16string& name,
                                          Scope scope);

// The default value that programs see, which is the user's where both parts have the key.
std::optional<std::u16string> visible_class_key(const std::u16string& key);

std::vector<std::u16string> subkeys(const std::u16string& key, Scope scope);

// Removes a key with all below it; nothing happens when it does not exist.
void remove_class_key(const std::u16string& key, Scope scope);

}  // namespace orvo::runtime
