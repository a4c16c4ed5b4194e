#pragma once

// What the suite's tests need of the system around them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace orvo::test {

// A folder of its own, removed with everything in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "orvo-test-XXXXXX").string();
        if (!mkdtemp(name.data())) ADD_FAILURE() << "no temporary folder";
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    // Writes a file, and the folders above it, and answers its path.
    std::filesystem::path write(const std::string& name, std::string_view content) const {
        const auto file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
        return file;
    }

private:
    std::filesystem::path path_;
};

inline std::string content_of(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    EXPECT_TRUE(stream.is_open()) << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Sets one variable of the environment, or unsets it, and puts it back as it was.
class Environment {
public:
    Environment(const char* name, std::optional<std::string> value) : name_(name) {
        if (const char* before = std::getenv(name)) before_ = before;
        put(value);
    }
    ~Environment() { put(before_); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    void put(const std::optional<std::string>& value) {
        if (value)
            setenv(name_, value->c_str(), 1);
        else
            unsetenv(name_);
    }

    const char* name_;
    std::optional<std::string> before_;
};

}  // namespace orvo::test
