#include <cstdint>
#include <set>

#include "platform/system/registration.h"
#include "platform/values/failure.h"
#include "platform/values/guid.h"
#include "platform/windows/registry.h"

extern "C" {
int GetModuleHandleExW(std::uint32_t flags, const char16_t* address, void** module);
std::uint32_t GetModuleFileNameW(void* module, char16_t* name, std::uint32_t size);
}

namespace orvo::runtime {

namespace {

constexpr std::uint32_t from_address = 4;
constexpr std::uint32_t unchanged_count = 2;
constexpr std::uint32_t longest_path = 32768;

// This function is linked into the module; so its address lies in the module's file.
std::u16string own_module() {
    void* module = nullptr;
    auto* address = reinterpret_cast<const char16_t*>(&own_module);
    std::u16string name(longest_path, u'\0');
    std::uint32_t length = 0;
    if (GetModuleHandleExW(from_address | unchanged_count, address, &module))
        length = GetModuleFileNameW(module, name.data(), longest_path);
    if (length == 0 || length == longest_path)
        throw Failure(abi::e_fail, {},
                      u"The system does not tell the file of the module to be registered.");
    name.resize(length);
    return name;
}

void register_class(const std::u16string& module, const ClassEntry& entry, Scope scope) {
    const auto set = [&](const std::u16string& key, const std::u16string& value) {
        set_class_key(key, value, scope);
    };
    std::u16string clsid = from_utf8(braced(entry.clsid));
    std::u16string versioned = entry.progid + u".1";
    std::u16string key = u"CLSID\\" + clsid;
    set(key, entry.progid);
    set(key + u"\\InprocServer32", module);
    set_class_value(key + u"\\InprocServer32", u"ThreadingModel", u"Apartment", scope);
    set(key + u"\\ProgID", versioned);
    set(key + u"\\VersionIndependentProgID", entry.progid);
    set(key + u"\\Programmable", u"");
    set(versioned, entry.progid);
    set(versioned + u"\\CLSID", clsid);
    set(entry.progid, entry.progid);
    set(entry.progid + u"\\CLSID", clsid);
    set(entry.progid + u"\\CurVer", versioned);
}

// A ProgID may have been given to another class since.
void forget_progid(const std::optional<std::u16string>& progid, const std::u16string& clsid,
                   Scope scope) {
    if (!progid || progid->empty()) return;
    std::optional<std::u16string> owner = class_key(*progid + u"\\CLSID", scope);
    if (owner && equal_ignoring_case(*owner, clsid)) remove_class_key(*progid, scope);
}

// What is known of a module are the classes whose server is the module's file. The AppIDs that they
// had, which stay.
std::set<std::u16string> remove_classes(Scope scope) {
    std::set<std::u16string> app_ids;
    const std::u16string module = own_module();
    for (const std::u16string& clsid : subkeys(u"CLSID", scope)) {
        std::u16string key = u"CLSID\\" + clsid;
        std::optional<std::u16string> server = class_key(key + u"\\InprocServer32", scope);
        if (!server || !equal_ignoring_case(*server, module)) continue;
        forget_progid(class_key(key + u"\\ProgID", scope), clsid, scope);
        forget_progid(class_key(key + u"\\VersionIndependentProgID", scope), clsid, scope);
        const std::optional<std::u16string> app_id = class_value(key, u"AppID", scope);
        if (app_id && !app_id->empty()) app_ids.insert(*app_id);
        remove_class_key(key, scope);
    }
    return app_ids;
}

}  // namespace

// An AppID keeps what the administrator has set there.
void register_module(const std::u16string&, std::span<const ClassEntry> classes, Scope scope) {
    remove_classes(scope);
    std::u16string module = own_module();
    for (const ClassEntry& entry : classes) register_class(module, entry, scope);
}

void register_surrogate(const abi::GUID& app_id, const std::u16string& name,
                        std::span<const ClassEntry> classes, Scope scope) {
    const std::u16string id = from_utf8(braced(app_id));
    for (const ClassEntry& entry : classes)
        set_class_value(u"CLSID\\" + from_utf8(braced(entry.clsid)), u"AppID", id, scope);
    set_class_key(u"AppID\\" + id, name, scope);
    // Empty: the system's own surrogate.
    set_class_value(u"AppID\\" + id, u"DllSurrogate", u"", scope);
}

void unregister_module(const std::u16string&, Scope scope) {
    for (const std::u16string& app_id : remove_classes(scope))
        remove_class_key(u"AppID\\" + app_id, scope);
}

}  // namespace orvo::runtime
