#include "component_folders.h"

#include <cstdlib>
#include <fstream>

#include "platform/linux/runtime_calls.h"

namespace orvo::testing {

using namespace abi;

void ComponentFolders::SetUp() {
    for (const char* name : {"front", "second", "home"})
        std::filesystem::create_directories(folder(name));
    setenv("ORVO_COMPONENTS", (folder("front").string() + ":" + folder("second").string()).c_str(),
           1);
    setenv("HOME", folder("home").c_str(), 1);
    unsetenv("XDG_DATA_HOME");
    SetErrorInfo(0, nullptr);
}

void ComponentFolders::TearDown() {
    CoFreeUnusedLibraries();
    runtime::OrvoForgetManifests();
}

void ComponentFolders::write(const std::filesystem::path& file, const std::string& content) const {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << content;
}

std::string ComponentFolders::manifest(const std::string& classes, const std::string& module) {
    return "# test\n\nmodule = " + module + "\n" + classes;
}

std::string ComponentFolders::error_text() {
    IUnknown* error = nullptr;
    if (GetErrorInfo(0, &error) != s_ok) return {};
    BSTR text = nullptr;
    call_slot<HRESULT, BSTR*>(error, slot_error_get_description, &text);
    std::string result = narrow(std::u16string(text, SysStringLen(text)));
    SysFreeString(text);
    release(error);
    return result;
}

std::string narrow(const std::u16string& ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace orvo::testing
