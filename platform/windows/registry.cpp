#include "platform/windows/registry.h"

#include <cstdint>
#include <utility>

#include "platform/values/failure.h"

// The Windows functions that are needed, declared here: Windows' own headers declare again what
// platform/system/automation.h declares, in their words.
extern "C" {
struct HKEY__;
std::int32_t RegCreateKeyExW(HKEY__*, const char16_t*, std::uint32_t, const char16_t*,
                             std::uint32_t options, std::uint32_t access, void* security, HKEY__**,
                             std::uint32_t* disposition);
std::int32_t RegOpenKeyExW(HKEY__*, const char16_t*, std::uint32_t, std::uint32_t access, HKEY__**);
std::int32_t RegSetValueExW(HKEY__*, const char16_t* name, std::uint32_t, std::uint32_t type,
                            const void* data, std::uint32_t size);
std::int32_t RegQueryValueExW(HKEY__*, const char16_t* name, std::uint32_t*, std::uint32_t* type,
                              void* data, std::uint32_t* size);
std::int32_t RegEnumKeyExW(HKEY__*, std::uint32_t index, char16_t* name, std::uint32_t* length,
                           std::uint32_t*, char16_t*, std::uint32_t*, void*);
std::int32_t RegDeleteTreeW(HKEY__*, const char16_t* key);
std::int32_t RegCloseKey(HKEY__*);
}

namespace orvo::runtime {

namespace {

constexpr std::int32_t success = 0;
constexpr std::int32_t file_not_found = 2;
constexpr std::int32_t more_data = 234;
constexpr std::int32_t no_more_items = 259;
constexpr std::uint32_t key_read = 0x20019;
constexpr std::uint32_t key_write = 0x20006;
constexpr std::uint32_t type_text = 1;
constexpr std::uint32_t option_volatile = 1;
constexpr std::size_t longest_key_name = 256;

// A key of a scope, as the system takes it: HKEY_CLASSES_ROOT, or HKEY_CURRENT_USER with the
// classes below.
HKEY__* root(Scope scope) {
    const std::uint32_t number = scope == Scope::machine ? 0x80000000u : 0x80000001u;
    return reinterpret_cast<HKEY__*>(static_cast<std::intptr_t>(static_cast<std::int32_t>(number)));
}
std::u16string path_of(const std::u16string& key, Scope scope) {
    return scope == Scope::machine ? key : u"Software\\Classes\\" + key;
}

void check(std::int32_t error, const std::u16string& key) {
    if (error == success) return;
    throw Failure(error_number(0x80070000u | static_cast<std::uint32_t>(error)), {},
                  u"The registry key " + key + u" cannot be used: error " + decimal(error) + u".");
}

class Key {
public:
    explicit Key(HKEY__* handle = nullptr) : handle_(handle) {}
    ~Key() {
        if (handle_) RegCloseKey(handle_);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    HKEY__* get() const { return handle_; }
    HKEY__** put() { return &handle_; }

private:
    HKEY__* handle_;
};

// False when there is no such key.
bool open(const std::u16string& key, Scope scope, Key& opened) {
    std::int32_t error =
        RegOpenKeyExW(root(scope), path_of(key, scope).c_str(), 0, key_read, opened.put());
    if (error == file_not_found) return false;
    check(error, key);
    return true;
}

void set(const std::u16string& key, const char16_t* name, const std::u16string& value, Scope scope,
         Life life) {
    Key made;
    check(RegCreateKeyExW(root(scope), path_of(key, scope).c_str(), 0, nullptr,
                          life == Life::until_restart ? option_volatile : 0, key_write, nullptr,
                          made.put(), nullptr),
          key);
    check(RegSetValueExW(made.get(), name, 0, type_text, value.c_str(),
                         static_cast<std::uint32_t>((value.size() + 1) * 2)),
          key);
}

}  // namespace

void set_class_key(const std::u16string& key, const std::u16string& value, Scope scope, Life life) {
    set(key, nullptr, value, scope, life);
}

void set_class_value(const std::u16string& key, const std::u16string& name,
                     const std::u16string& value, Scope scope) {
    set(key, name.c_str(), value, scope, Life::lasting);
}

std::optional<std::u16string> class_key(const std::u16string& key, Scope scope) {
    return class_value(key, u"", scope);
}

std::optional<std::u16string> class_value(const std::u16string& key, const std::u16string& name,
                                          Scope scope) {
    Key opened;
    if (!open(key, scope, opened)) return std::nullopt;
    std::u16string value(256, u'\0');
    for (;;) {
        auto size = static_cast<std::uint32_t>(value.size() * 2);
        std::int32_t error =
            RegQueryValueExW(opened.get(), name.c_str(), nullptr, nullptr, value.data(), &size);
        if (error == file_not_found) return u"";
        if (error != more_data) {
            check(error, key);
            value.resize(size / 2);
            return value.substr(0, value.find(u'\0'));
        }
        value.resize(size / 2 + 1);
    }
}

std::vector<std::u16string> subkeys(const std::u16string& key, Scope scope) {
    std::vector<std::u16string> names;
    Key opened;
    if (!open(key, scope, opened)) return names;
    for (std::uint32_t i = 0;; ++i) {
        char16_t name[longest_key_name];
        std::uint32_t length = longest_key_name;
        std::int32_t error =
            RegEnumKeyExW(opened.get(), i, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (error == no_more_items) return names;
        check(error, key);
        names.emplace_back(name, length);
    }
}

void remove_class_key(const std::u16string& key, Scope scope) {
    std::int32_t error = RegDeleteTreeW(root(scope), path_of(key, scope).c_str());
    if (error != file_not_found) check(error, key);
}

}  // namespace orvo::runtime
