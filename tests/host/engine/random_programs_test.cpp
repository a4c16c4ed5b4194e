// Programs made at random do here what they do in plain Duktape.
//
// ORVO_RANDOM_PROGRAMS is how many are made, ORVO_RANDOM_SEED the seed of the first.

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "host/engine/script_engine.h"
#include "tests/host/engine/random_program.h"

namespace orvo::script {
namespace {

constexpr const char* plain_engine = "/usr/bin/duk";
constexpr const char* refused = "no program\n";

unsigned setting(const char* name, unsigned otherwise) {
    const char* text = std::getenv(name);
    return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

std::string here(const std::string& source) {
    std::string shown;
    Engine engine;
    engine.set_function("print", [&](std::span<const Variant> values) {
        shown += to_utf8(values[0].text_view()) + "\n";
        return Variant();
    });
    engine.set_time_limit(std::chrono::seconds(20));
    try {
        engine.run(Program::compile(source, "random.js"));
    } catch (const ScriptError& error) {
        if (error.trouble == Trouble::syntax) return refused;
        shown += error.message + "\n";
    }
    return shown;
}

// What a command writes to its output.
std::string output_of(const std::string& command) {
    std::string written;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return "the command cannot be started";
    std::array<char, 4096> bytes;
    while (const std::size_t count = fread(bytes.data(), 1, bytes.size(), pipe))
        written.append(bytes.data(), count);
    pclose(pipe);
    return written;
}

class Folder {
public:
    Folder() {
        std::string name = testing::TempDir() + "orvo-programs-XXXXXX";
        path_ = mkdtemp(name.data());
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string file(const std::string& text) const {
        const std::string name = path_ + "/program.js";
        std::ofstream(name, std::ios::binary) << text;
        return name;
    }

private:
    std::string path_;
};

std::string in_plain_engine(const Folder& folder, const std::string& source) {
    const std::string shown =
        output_of("timeout 20 " + std::string(plain_engine) + " " + folder.file(source) + " 2>&1");
    return shown.starts_with("SyntaxError") ? refused : shown;
}

TEST(RandomPrograms, DoWhatTheyDoInPlainDuktape) {
    if (!std::filesystem::exists(plain_engine))
        GTEST_SKIP() << "there is no " << plain_engine << " here; scripts/setup installs it";
    const Folder folder;
    const unsigned first = setting("ORVO_RANDOM_SEED", 1);
    const unsigned count = setting("ORVO_RANDOM_PROGRAMS", 200);
    unsigned programs = 0;
    for (unsigned seed = first; seed != first + count; ++seed) {
        const std::string source = RandomProgram(seed).make();
        const std::string expected = in_plain_engine(folder, source);
        if (expected != refused) ++programs;
        ASSERT_EQ(here(source), expected) << "ORVO_RANDOM_SEED=" << seed << "\n" << source;
    }
    EXPECT_GE(programs, count / 2);
}

}  // namespace
}  // namespace orvo::script
