#pragma once

// A module: a shared library whose classes others create by ProgID. It has the standard exports
// (exports.cpp) and no others, and defines this_module(). Descriptions are constants, which any
// thread reads; the exports answer result codes and raise nothing.

#include <span>

#include "platform/interfaces/hosted.h"

namespace orvo {

// A class that a module offers for creation.
struct ModuleClass {
    const char* progid;
    abi::CLSID clsid;
    Object (*create)();
};

template <class C>
constexpr ModuleClass module_class() {
    return {class_of<C>.progid, class_of<C>.clsid, [] { return make<C>().object(); }};
}

struct ModuleDescription {
    const char* name;  // its file name without the ending
    std::span<const ModuleClass> classes;
    // On Windows, of the application in which objects of the module stand alone, in a process of
    // the system's; all zeros for a module whose objects always live in their callers' processes.
    abi::GUID app_id = {};
};

// Which classes this module has; defined once in each module.
const ModuleDescription& this_module();

}  // namespace orvo
