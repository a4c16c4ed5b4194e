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

// The system's numbers for the roots of its registry.
HKEY__* root(std::uint32_t number) {
    return reinterpret_cast<HKEY__*>(static_cast<std::intptr_t>(static_cast<std::int32_t>(number)));
}

struct Place {
    HKEY__* root;
    std::u16string path;
};

Place place_of(const std::u16string& key, Scope scope) {
    return {root(scope == Scope::machine ? 0x80000002u : 0x80000001u),
            u"Software\\Classes\\" + key};
}
// HKEY_CLASSES_ROOT shows both parts.
Place visible_place_of(const std::u16string& key) { return {root(0x80000000u), key}; }

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
bool open(const Place& place, Key& opened) {
    std::int32_t error = RegOpenKeyExW(place.root, place.path.c_str(), 0, key_read, opened.put());
    if (error == file_not_found) return false;
    check(error, place.path);
    return true;
}

void set(const Place& place, const char16_t* name, const std::u16string& value, Life life) {
    Key made;
    check(RegCreateKeyExW(place.root, place.path.c_str(), 0, nullptr,
                          life == Life::until_restart ? option_volatile : 0, key_write, nullptr,
                          made.put(), nullptr),
          place.path);
    check(RegSetValueExW(made.get(), name, 0, type_text, value.c_str(),
                         static_cast<std::uint32_t>((value.size() + 1) * 2)),
          place.path);
}

std::optional<std::u16string> value_at(const Place& place, const std::u16string& name) {
    Key opened;
    if (!open(place, opened)) return std::nullopt;
    std::u16string value(256, u'\0');
    for (;;) {
        auto size = static_cast<std::uint32_t>(value.size() * 2);
        std::int32_t error =
            RegQueryValueExW(opened.get(), name.c_str(), nullptr, nullptr, value.data(), &size);
        if (error == file_not_found) return u"";
        if (error != more_data) {
            check(error, place.path);
            value.resize(size / 2);
            return value.substr(0, value.find(u'\0'));
        }
        value.resize(size / 2 + 1);
    }
}

}  // namespace

void set_class_key(const std::u16string& key, const std::u16string& value, Scope scope, Life life) {
    set(place_of(key, scope), nullptr, value, life);
}

void set_class_value(const std::u16string& key, const std::u16string& name,
                     const std::u16string& value, Scope scope) {
    set(place_of(key, scope), name.c_str(), value, Life::lasting);
}

std::optional<std::u16string> class_key(const std::u16string& key, Scope scope) {
    return class_value(key, u"", scope);
}

std::optional<std::u16string> class_value(const std::u16string& key, const std::u16string& name,
                                          Scope scope) {
    return value_at(place_of(key, scope), name);
}

std::optional<std::u16string> visible_class_key(const std::u16string& key) {
    return value_at(visible_place_of(key), u"");
}

std::vector<std::u16string> subkeys(const std::u16string& key, Scope scope) {
    std::vector<std::u16string> names;
    Key opened;
    if (!open(place_of(key, scope), opened)) return names;
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
    const Place place = place_of(key, scope);
    std::int32_t error = RegDeleteTreeW(place.root, place.path.c_str());
    if (error != file_not_found) check(error, place.path);
}

}  // namespace orvo::runtime
