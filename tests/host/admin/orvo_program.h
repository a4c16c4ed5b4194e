#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace orvo {

// The program orvo, as an administrator meets it, with files in a folder of the test's own.
class OrvoProgram : public testing::Test {
protected:
    // `orvo directory ...`: what it prints on either stream; its exit code is in `code` then.
    std::string directory(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {std::string(ORVO_ADMIN), "directory"});
        const std::filesystem::path log = folder.path() / "log";
        std::filesystem::remove(log);
        code = ChildProcess(arguments, log).wait();
        return content_of(log);
    }
    std::string path(const std::string& name) { return (folder.path() / name).string(); }
    // A store with the sample shop.
    std::string shop(const std::string& name = "shop.db") {
        directory({"create", path(name), "--base", "o=Shop"});
        EXPECT_EQ(code, 0);
        directory({"import", path(name), sample});
        EXPECT_EQ(code, 0);
        return path(name);
    }

    const std::string sample = ORVO_SOURCE_DIR "/examples/directory/shop.ldif";
    TempFolder folder;
    int code = -1;
};

}  // namespace orvo
