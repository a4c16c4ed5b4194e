// Of the Windows functions only the few that are needed are declared, here: the platform's headers
// declare what platform/system/automation.h declares.

#include "platform/system/type_library.h"

#include <vector>

#include "platform/system/type_information.h"
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

}  // extern "C"
}  // namespace orvo::abi

namespace orvo::runtime {
namespace {

// How LoadTypeLibEx treats what it loads: it loads it only.
constexpr std::int32_t without_registering = 2;

// Slots of a library.
enum : std::size_t {
    slot_get_type_info_count = 3,
    slot_get_type_info_at = 4,
    slot_get_type_info_of_guid = 6,
    slot_get_library_attributes = 7,
    slot_get_documentation = 9,
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

constexpr std::uint16_t is_for_automation = 0x100;

// The system's own proxies and stubs, which read a type library.
constexpr const char16_t* automation_marshaller = u"{00020424-0000-0000-C000-000000000046}";

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

Text key_form(const abi::GUID& id) { return from_utf8(braced(id)); }

// Attributes that the library, or what it says of a type, lends for a moment.
template <class Attributes>
Attributes attributes_of(const Object& described, std::size_t get, std::size_t release) {
    Attributes* borrowed = nullptr;
    check(abi::call_slot<abi::HRESULT, Attributes**>(described.get(), get, &borrowed));
    const Attributes attributes = *borrowed;
    abi::call_slot<void, Attributes*>(described.get(), release, borrowed);
    return attributes;
}

Text taken(abi::BSTR text) {
    const Text value(text ? text : u"", abi::SysStringLen(text));
    abi::SysFreeString(text);
    return value;
}

// One library in the module's file, with the keys that are its own.
class Library {
public:
    // `number`: of the resource, from 1. `file`: the module's.
    Library(const Text& file, std::uint32_t number)
        : place_(number == 1 ? file : file + u"\\" + decimal(number)),
          folder_(file.substr(0, file.find_last_of(u"\\/"))) {
        check(abi::LoadTypeLibEx(place_.c_str(), without_registering, library_.put()));
        attributes_ = attributes_of<LibraryAttributes>(library_, slot_get_library_attributes,
                                                       slot_release_library_attributes);
    }

    Text id() const { return key_form(attributes_.id); }
    // As the system writes and looks for it.
    Text version() const {
        return lower(hexadecimal(attributes_.major) + u"." + hexadecimal(attributes_.minor));
    }
    Object try_type_info(const abi::IID& iid) const {
        Object info;
        abi::call_slot<abi::HRESULT, const abi::IID*, abi::IUnknown**>(
            library_.get(), slot_get_type_info_of_guid, &iid, info.put());
        return info;
    }

    void add_keys(Scope scope) const {
        const Text key = version_key();
        abi::BSTR description = nullptr;
        check(abi::call_slot<abi::HRESULT, std::int32_t, abi::BSTR*, abi::BSTR*, std::uint32_t*,
                             abi::BSTR*>(library_.get(), slot_get_documentation, -1, nullptr,
                                         &description, nullptr, nullptr));
        set_class_key(key, taken(description), scope);
        set_class_key(place_key(), place_, scope);
        set_class_key(key + u"\\FLAGS", decimal(attributes_.flags), scope);
        set_class_key(key + u"\\HELPDIR", folder_, scope);
        for_each_interface([&](const Text& interface_key, const Text& name) {
            // Also seen by the user: an interface of the machine's is somebody's as well. One that
            // has a marshaller of its own may name no library.
            const auto owner = visible_class_key(interface_key + u"\\TypeLib");
            const bool is_there = visible_class_key(interface_key) ||
                                  visible_class_key(interface_key + u"\\ProxyStubClsid32");
            if (is_there && (!owner || !equal_ignoring_case(*owner, id()))) return;
            set_class_key(interface_key, name, scope);
            set_class_key(interface_key + u"\\ProxyStubClsid", automation_marshaller, scope);
            set_class_key(interface_key + u"\\ProxyStubClsid32", automation_marshaller, scope);
            set_class_key(interface_key + u"\\TypeLib", id(), scope);
            set_class_value(interface_key + u"\\TypeLib", u"Version", version(), scope);
        });
    }

    void remove_keys(Scope scope) const {
        const auto registered = class_key(place_key(), scope);
        if (!registered || !equal_ignoring_case(*registered, place_)) return;
        for_each_interface([&](const Text& interface_key, const Text&) {
            const auto owner = class_key(interface_key + u"\\TypeLib", scope);
            if (owner && equal_ignoring_case(*owner, id())) remove_class_key(interface_key, scope);
        });
        remove_class_key(version_key(), scope);
        if (subkeys(library_key(), scope).empty()) remove_class_key(library_key(), scope);
    }

private:
    Text library_key() const { return u"TypeLib\\" + id(); }
    Text version_key() const { return library_key() + u"\\" + version(); }
    Text place_key() const { return version_key() + u"\\0\\win64"; }

    // Calls visit(key, name) for each interface that the system's marshaller can serve. 32-bit
    // programs have keys of their own.
    template <class Visit>
    void for_each_interface(Visit visit) const {
        const auto count = abi::call_slot<std::uint32_t>(library_.get(), slot_get_type_info_count);
        for (std::uint32_t index = 0; index < count; ++index) {
            Object info;
            check(abi::call_slot<abi::HRESULT, std::uint32_t, abi::IUnknown**>(
                library_.get(), slot_get_type_info_at, index, info.put()));
            const auto type = attributes_of<abi::TypeAttributes>(
                info, abi::slot_type_get_attributes, abi::slot_type_release_attributes);
            if (!(type.flags & (abi::type_is_dual | is_for_automation))) continue;
            abi::BSTR name = nullptr;
            check(abi::call_slot<abi::HRESULT, std::int32_t, abi::BSTR*, abi::BSTR*, std::uint32_t*,
                                 abi::BSTR*>(info.get(), abi::slot_type_get_documentation, -1,
                                             &name, nullptr, nullptr, nullptr));
            const Text called = taken(name);
            for (const char16_t* root : {u"", u"Wow6432Node\\"})
                visit(Text(root) + u"Interface\\" + key_form(type.id), called);
        }
    }

    Text place_;
    Text folder_;
    Object library_;
    LibraryAttributes attributes_;
};

// Those in the module's file; resources are numbered from 1.
std::vector<Library> libraries() {
    std::vector<Library> all;
    void* module = this_module_handle();
    for (std::uint32_t number = 1;
         abi::FindResourceW(module, reinterpret_cast<const char16_t*>(std::uintptr_t{number}),
                            u"TYPELIB") != nullptr;
         ++number)
        all.emplace_back(file_of(module), number);
    return all;
}

}  // namespace

void register_type_libraries(std::span<const ClassEntry> classes, Scope scope) {
    const std::vector<Library> all = libraries();
    for (const Library& library : all) library.add_keys(scope);
    if (all.empty()) return;
    for (const ClassEntry& entry : classes) {
        const Text key = u"CLSID\\" + key_form(entry.clsid);
        set_class_key(key + u"\\TypeLib", all.front().id(), scope);
        set_class_key(key + u"\\Version", all.front().version(), scope);
    }
}

void unregister_type_libraries(Scope scope) {
    for (const Library& library : libraries()) library.remove_keys(scope);
}

abi::IUnknown* try_type_info(const abi::IID& iid) noexcept {
    try {
        for (const Library& library : libraries())
            if (Object info = library.try_type_info(iid)) return info.detach();
    } catch (const Failure&) {
        // A caller who asks gets no description then, and works without.
    }
    return nullptr;
}

}  // namespace orvo::runtime
