#pragma once

// The keys of Windows' class registry as texts: of the machine (HKEY_CLASSES_ROOT, which shows the
// user's own, too), or the user's own (HKEY_CURRENT_USER). Any thread. Failures are raised as
// Failure with the system's error number as a result code.

#include <optional>
#include <string>
#include <vector>

#include "platform/system/registration.h"

namespace orvo::runtime {

enum class Life { lasting, until_restart };

// Sets the default value of a key ("CLSID\\{…}\\ProgID"), or a named one, and makes the key where
// it does not exist.
void set_class_key(const std::u16string& key, const std::u16string& value,
                   Scope scope = Scope::machine, Life life = Life::lasting);
void set_class_value(const std::u16string& key, const std::u16string& name,
                     const std::u16string& value, Scope scope = Scope::machine);

// The default value of a key, or a named one; none when there is no such key, empty when there is
// no such value.
std::optional<std::u16string> class_key(const std::u16string& key, Scope scope = Scope::machine);
std::optional<std::u16string> class_value(const std::u16string& key, const std::u16string& name,
                                          Scope scope = Scope::machine);

std::vector<std::u16string> subkeys(const std::u16string& key, Scope scope = Scope::machine);

// Removes a key with all below it; nothing happens when it does not exist.
void remove_class_key(const std::u16string& key, Scope scope = Scope::machine);

}  // namespace orvo::runtime
