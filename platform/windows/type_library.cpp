// Of the Windows functions only the few that are needed are declared, here: the platform's headers
// declare what platform/system/automation.h declares.

#include "platform/system/type_library.h"

#include "platform/values/error_info.h"
#include "platform/values/guid.h"
#include "platform/values/object.h"
#include "platform/windows/registry.h"

namespace orvo::abi {
extern "C" {

std::int32_t GetModuleHandleExW(std::uint32_t flags, const void* address, void** module);
std::uint32_t GetModuleFileNameW(void* module, char16_t* name, std::uint32_t capacity);
void* FindResourceW(void* module, const char16_t* name, const char16_t* type);
HRESULT LoadTypeLibEx(const char16_t* file, std::int32_t kind, IUnknown** library);
HRESULT UnRegisterTypeLib(const GUID& id, std::uint16_t major, std::uint16_t minor, LCID locale,
                          std::int32_t system);

}  // extern "C"
}  // namespace orvo::abi

namespace orvo::runtime {
namespace {

// How LoadTypeLibEx treats what it loads.
enum : std::int32_t { registers_it = 1, only_loads_it = 2 };

enum : std::size_t {
    slot_get_type_info_of_guid = 6,
    slot_get_library_attributes = 7,
    slot_release_library_attributes = 12,
};

struct LibraryAttributes {
    abi::GUID id;
    abi::LCID locale;
    std::int32_t system;
    std::uint16_t major;
    std::uint16_t minor;
    std::uint16_t flags;
};

void check(abi::HRESULT code) {
    if (abi::failed(code)) detail::raise_result(code);
}

void* this_module_handle() {
    static const char inside = 0;
    constexpr std::uint32_t by_address_uncounted = 4 | 2;
    void* module = nullptr;
    if (!abi::GetModuleHandleExW(by_address_uncounted, &inside, &module))
        throw Failure(abi::e_unexpected, {}, u"The module's own handle cannot be found");
    return module;
}

Text file_of(void* module) {
    Text name(260, u'\0');
    for (;;) {
        const std::uint32_t length =
            abi::GetModuleFileNameW(module, name.data(), static_cast<std::uint32_t>(name.size()));
        if (length < name.size()) {
            name.resize(length);
            return name;
        }
        name.resize(name.size() * 2);
    }
}

// Empty for a module without a library.
Object load_library(std::int32_t kind) {
    void* module = this_module_handle();
    const auto* first = reinterpret_cast<const char16_t*>(std::uintptr_t{1});
    if (abi::FindResourceW(module, first, u"TYPELIB") == nullptr) return {};
    Object library;
    check(abi::LoadTypeLibEx(file_of(module).c_str(), kind, library.put()));
    return library;
}

LibraryAttributes attributes_of(const Object& library) {
    LibraryAttributes* borrowed = nullptr;
    check(abi::call_slot<abi::HRESULT, LibraryAttributes**>(
        library.get(), slot_get_library_attributes, &borrowed));
    const LibraryAttributes attributes = *borrowed;
    abi::call_slot<void, LibraryAttributes*>(library.get(), slot_release_library_attributes,
                                             borrowed);
    return attributes;
}

Text key_form(const abi::GUID& id) { return from_utf8(braced(id)); }

}  // namespace

void register_type_library(std::span<const ClassEntry> classes) {
    const Object library = load_library(registers_it);
    if (!library) return;
    const LibraryAttributes attributes = attributes_of(library);
    for (const ClassEntry& entry : classes) {
        const Text key = u"CLSID\\" + key_form(entry.clsid);
        set_class_key(key + u"\\TypeLib", key_form(attributes.id));
        set_class_key(key + u"\\Version",
                      decimal(attributes.major) + u"." + decimal(attributes.minor));
    }
}

void unregister_type_library() {
    constexpr abi::HRESULT not_registered = abi::result(0x8002801C);
    const Object library = load_library(only_loads_it);
    if (!library) return;
    const LibraryAttributes attributes = attributes_of(library);
    const abi::HRESULT code = abi::UnRegisterTypeLib(
        attributes.id, attributes.major, attributes.minor, attributes.locale, attributes.system);
    if (code != not_registered) check(code);
}

abi::IUnknown* try_type_info(const abi::IID& iid) noexcept {
    try {
        const Object library = load_library(only_loads_it);
        Object info;
        if (library)
            abi::call_slot<abi::HRESULT, const abi::IID*, abi::IUnknown**>(
                library.get(), slot_get_type_info_of_guid, &iid, info.put());
        return info.detach();
    } catch (const Failure&) {
        return nullptr;  // a caller who asks gets no description then, and works without
    }
}

}  // namespace orvo::runtime
