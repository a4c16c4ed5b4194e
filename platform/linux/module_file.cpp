#include "platform/linux/module_file.h"

#include <dlfcn.h>

#include <map>
#include <vector>

namespace orvo::runtime {

using namespace abi;

namespace {

std::string last_load_error() {
    const char* text = dlerror();
    return text ? text : "no reason is given";
}

struct ModuleTable {
    std::mutex lock;
    std::map<std::filesystem::path, ModuleFile> modules;
};

// Never destroyed: modules may ask for others while the process ends.
ModuleTable& module_table() {
    static ModuleTable& table = *new ModuleTable;
    return table;
}

}  // namespace

HRESULT ModuleFile::get_class_object(const CLSID& clsid, const IID& iid, void** out,
                                     std::string& reason) {
    GetClassObject entry = entry_.load();
    if (!entry) {
        HRESULT outcome = load(entry, reason);
        if (failed(outcome)) return outcome;
    }
    return entry(&clsid, &iid, out);
}

HRESULT ModuleFile::load(GetClassObject& entry, std::string& reason) {
    std::lock_guard guard(loading_);
    entry = entry_.load();
    if (entry) return s_ok;
    void* handle = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        reason = "The module " + path_.string() + " cannot be loaded: " + last_load_error();
        return co_e_dllnotfound;
    }
    entry = reinterpret_cast<GetClassObject>(dlsym(handle, "DllGetClassObject"));
    if (!entry) {
        dlclose(handle);
        reason = "The module " + path_.string() + " does not export DllGetClassObject.";
        return co_e_errorindll;
    }
    handle_ = handle;
    can_unload_now_ = reinterpret_cast<CanUnloadNow>(dlsym(handle, "DllCanUnloadNow"));
    entry_.store(entry);
    return s_ok;
}

void ModuleFile::unload_if_unused() {
    // Closed without the lock: what the module's end calls may come back here.
    if (void* handle = take_unused()) dlclose(handle);
}

void* ModuleFile::take_unused() {
    std::lock_guard guard(loading_);
    if (!handle_ || !can_unload_now_ || can_unload_now_() != s_ok) return nullptr;
    // A call that has begun before this is counted; one that begins after it finds no entry and
    // waits. What a call has made in between, the second question tells.
    GetClassObject entry = entry_.exchange(nullptr);
    if (calls_.load() != 0 || can_unload_now_() != s_ok) {
        entry_.store(entry);
        return nullptr;
    }
    can_unload_now_ = nullptr;
    return std::exchange(handle_, nullptr);
}

ModuleFile& module_at(const std::filesystem::path& path) {
    ModuleTable& table = module_table();
    std::lock_guard guard(table.lock);
    return table.modules.try_emplace(path, path).first->second;
}

void unload_unused_modules() {
    ModuleTable& table = module_table();
    std::vector<ModuleFile*> modules;
    {
        std::lock_guard guard(table.lock);
        for (auto& [path, module] : table.modules) modules.push_back(&module);
    }
    for (ModuleFile* module : modules) module->unload_if_unused();
}

}  // namespace orvo::runtime
