#pragma once

// A module: a shared library whose classes others create by ProgID. It has exactly the four
// standard exports, and defines this_module().

#include <functional>
#include <span>

#include "platform/abi/hosted.h"
#include "platform/runtime/registration.h"

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
};

// Which classes this module has; defined once in each module.
const ModuleDescription& this_module();

namespace detail {

// A class object: makes objects through a function of its own.
class ClassFactory {
public:
    // source: what failures of the creation are attributed to where they carry no source.
    ClassFactory(std::string source, std::function<Object()> create);
    ClassFactory(const ClassFactory&) = delete;
    ClassFactory& operator=(const ClassFactory&) = delete;

    // Borrowed: a class object is not counted and lives as long as its owner.
    abi::IUnknown* get() { return reinterpret_cast<abi::IUnknown*>(&slots_); }
    Object create() const { return create_(); }
    const char* source() const { return source_.c_str(); }

private:
    const abi::Slot* slots_;
    std::string source_;
    std::function<Object()> create_;
};

}  // namespace detail

// Makes a class known to this process alone, while the object lives: a host's own classes, a
// test's recording ones. It is found before any module's class of that name.
class LocalClass {
public:
    LocalClass(const Text& progid, const abi::CLSID& clsid, std::function<Object()> create)
        : factory_(to_utf8(progid), std::move(create)),
          registration_(progid, clsid, factory_.get()) {}

private:
    detail::ClassFactory factory_;
    runtime::ProcessClass registration_;
};

template <class C>
LocalClass local_class() {
    return LocalClass(from_utf8(class_of<C>.progid), class_of<C>.clsid,
                      [] { return make<C>().object(); });
}

}  // namespace orvo
