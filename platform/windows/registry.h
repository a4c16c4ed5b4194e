#pragma once

// The keys of Windows' class registry (HKEY_CLASSES_ROOT), as texts. Any thread. Failures are
// raised as Failure with the system's error number as a result code.

#include <optional>
#include <string>
#include <vector>

namespace orvo::runtime {

enum class Life { lasting, until_restart };

// Sets the default value of a key ("CLSID\\{…}\\ProgID"), or a named one, and makes the key where
// it does not exist.
void set_class_key(const std::u16string& key, const std::u16string& value,
                   Life life = Life::lasting);
void set_class_value(const std::u16string& key, const std::u16string& name,
                     const std::u16string& value);

// The default value of a key; none when there is no such key.
std::optional<std::u16string> class_key(const std::u16string& key);

std::vector<std::u16string> subkeys(const std::u16string& key);

// Removes a key with all below it; nothing happens when it does not exist.
void remove_class_key(const std::u16string& key);

}  // namespace orvo::runtime
