#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/client/installed_modules.h"
#include "tests/support/child_process.h"
#include "tests/support/pseudo_terminal.h"
#include "tests/support/test_directory.h"

namespace orvo {

// The program orvo on a site with the sample shop, on each kind of directory.
class OrvoSite : public InstalledModules, public testing::WithParamInterface<DirectoryKind> {
protected:
    struct Ended {
        int code = -1;
        std::string out, err;
    };

    // `orvo ...`, with this standard input.
    Ended orvo(const std::vector<std::string>& arguments, const std::string& input = {}) {
        const std::filesystem::path out = folder_.path() / "out", err = folder_.path() / "err";
        const std::filesystem::path in = folder_.write("in", input);
        std::vector<std::string> command{"/bin/sh", "-c",
                                         "exec \"$@\" <" + in.string() + " 2>" + err.string(), "sh",
                                         ORVO_ADMIN};
        command.insert(command.end(), arguments.begin(), arguments.end());
        std::filesystem::remove(out);
        Ended ended;
        ended.code = ChildProcess(command, out).wait();
        ended.out = content_of(out);
        ended.err = content_of(err);
        return ended;
    }
    // What it prints where it does all that was asked.
    std::string done(const std::vector<std::string>& arguments, const std::string& input = {}) {
        const Ended ended = orvo(arguments, input);
        EXPECT_EQ(ended.err, "");
        EXPECT_EQ(ended.code, 0);
        return ended.out;
    }
    // What it says where it does nothing.
    std::string refused(const std::vector<std::string>& arguments, const std::string& input = {}) {
        const Ended ended = orvo(arguments, input);
        EXPECT_EQ(ended.out, "");
        EXPECT_EQ(ended.code, 1);
        return ended.err;
    }

    std::unique_ptr<TestDirectory> directory_ = GetParam().make({.password_policy = true});

private:
    const Environment site_{"ORVO_SITE_CONFIG", directory_->site_ini().string()};
};

// For INSTANTIATE_TEST_SUITE_P.
inline std::string name_of_directory(const testing::TestParamInfo<DirectoryKind>& info) {
    return info.param.name;
}

}  // namespace orvo
