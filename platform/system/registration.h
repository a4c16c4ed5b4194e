#pragma once

// How classes become known to the system: by module, for good, or by a program, for its own life.
//
// On Linux a module is known through one manifest file, `<module name>.manifest`, in a search path:
// the folders of the environment variable ORVO_COMPONENTS (separated by ":"), then the user's
// `$XDG_DATA_HOME/orvo/components` (by default `~/.local/share/orvo/components`), then that of the
// tree in which the runtime library is installed (`share/orvo/components`), then
// `/usr/local/share/orvo/components` and `/usr/share/orvo/components`. The first that has a ProgID
// wins. On Windows it is the registry: the machine's, or that of the user who registers.
//
// Any thread; two that register one module at the same time leave the entries of either.

#include <span>
#include <string>

#include "platform/system/automation.h"

namespace orvo::runtime {

// One class of a module. `progid` is the version-independent form ("OrvoMembership.User"); the
// versioned one ("OrvoMembership.User.1") is registered beside it.
struct ClassEntry {
    abi::CLSID clsid;
    std::u16string progid;
};

// Who finds the classes of a module on Windows. On Linux it makes no difference.
enum class Scope : unsigned char { machine, user };

// Makes the module that holds the calling code known with its classes; replaces what was known of
// it. The manifest goes to the first folder of ORVO_COMPONENTS, otherwise to the user's folder.
// `module_name` is the file name without its ending ("OrvoMembership").
// Raises Failure (file and reason) when it cannot be written.
void register_module(const std::u16string& module_name, std::span<const ClassEntry> classes,
                     Scope scope = Scope::machine);

// Lets the system make objects of these classes, which are registered already, in a process of
// their own (an application with `app_id`, which administrators see by this name, and the system's
// surrogate). Nothing on Linux, where there is no such process.
void register_surrogate(const abi::GUID& app_id, const std::u16string& name,
                        std::span<const ClassEntry> classes, Scope scope = Scope::machine);

// Forgets the module, and the application of its classes; nothing happens when it is not known.
void unregister_module(const std::u16string& module_name, Scope scope = Scope::machine);

// Registers a class for this process while the object lives; it is found before any module's.
// `factory` (a class object with IClassFactory) is held until then. Any thread.
class ProcessRegistration {
public:
    ProcessRegistration(const std::u16string& progid, const abi::CLSID& clsid,
                        abi::IUnknown* factory);
    ~ProcessRegistration();
    ProcessRegistration(const ProcessRegistration&) = delete;
    ProcessRegistration& operator=(const ProcessRegistration&) = delete;

private:
    std::uint32_t cookie_;
};

}  // namespace orvo::runtime
