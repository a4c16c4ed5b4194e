#pragma once

// Classes of a program itself. Any thread may register one, and create its objects for itself.
// Raises Failure where the system refuses the registration.

#include <functional>

#include "platform/interfaces/hosted.h"
#include "platform/module/class_factory.h"
#include "platform/system/registration.h"

namespace orvo {

// Makes a class known to this process alone, while the object lives: a host's own classes, a
// test's recording ones. It is found before any module's class of that name.
class LocalClass {
public:
    LocalClass(const Text& progid, const abi::CLSID& clsid, std::function<Object()> create)
        : factory_(to_utf8(progid), std::move(create)),
          registration_(progid, clsid, factory_.get()) {}

private:
    detail::ClassFactory factory_;
    runtime::ProcessRegistration registration_;
};

template <class C>
LocalClass local_class() {
    return LocalClass(from_utf8(class_of<C>.progid), class_of<C>.clsid,
                      [] { return make<C>().object(); });
}

}  // namespace orvo
