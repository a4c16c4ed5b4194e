#include "tests/platform/releases.h"

#include <dlfcn.h>

#include "platform/system/automation.h"

namespace orvo {
namespace {

thread_local Releases* watching = nullptr;

}  // namespace

namespace abi {

// In front of the runtime's own, for all of this process.
extern "C" void SysFreeString(BSTR text) {
    static const auto release = reinterpret_cast<void (*)(BSTR)>(dlsym(RTLD_NEXT, "SysFreeString"));
    if (watching && text) watching->note({text, SysStringLen(text)});
    release(text);
}

}  // namespace abi

Releases::Releases() { watching = this; }
Releases::~Releases() { watching = nullptr; }

std::vector<Text> Releases::as_long_as(const Text& text) const {
    std::vector<Text> found;
    for (const Text& released : texts_)
        if (released.size() == text.size()) found.push_back(released);
    return found;
}

}  // namespace orvo
