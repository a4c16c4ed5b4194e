#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/system/automation.h"
#include "tests/support/temp_folder.h"

namespace orvo::testing {

// The class of the sample module, and one of its manifest that the module itself does not know.
inline constexpr abi::CLSID sample_class{0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};
inline constexpr abi::CLSID unknown_class{0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 9}};
inline constexpr const char* sample_class_text = "{11111111-2222-3333-0102-030405060708}";
inline constexpr const char* unknown_class_text = "{11111111-2222-3333-0102-030405060709}";

// Folders "front", "second" (both in ORVO_COMPONENTS) and "home" of a test's own; what the machine
// itself has registered for the user stays out of the way.
class ComponentFolders : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    std::filesystem::path folder(const char* name) const { return root_.path() / name; }

    // Writes a manifest; `module` defaults to the sample module.
    void write(const std::filesystem::path& file, const std::string& content) const;
    static std::string manifest(const std::string& classes,
                                const std::string& module = SAMPLE_MODULE);

    // What the thread's error object says, which is taken away; empty when there is none.
    static std::string error_text();

private:
    TempFolder root_;
};

std::string narrow(const std::u16string& ascii);

}  // namespace orvo::testing
