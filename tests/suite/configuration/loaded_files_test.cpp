#include "suite/configuration/loaded_files.h"

#include <gtest/gtest.h>

#include <fstream>

#include "suite/configuration/ini_files.h"
#include "suite/configuration/suite_configuration.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

class LoadedFiles : public testing::Test {
protected:
    void load(const char* name, const char* content) {
        std::ofstream(folder_.path() / name) << content;
        SuiteConfiguration().LoadConfigurationFile(text_of(folder_.path() / name));
    }
    static std::string latest() { return loaded_files().back().path.filename().string(); }

    TempFolder folder_;
};

TEST_F(LoadedFiles, AreThoseThatAnyObjectHasLoadedTheLatestLast) {
    load("a.ini", "[A]\nx=1\n");
    load("b.ini", "[B]\nx=1\n");
    EXPECT_EQ(latest(), "b.ini");
    EXPECT_EQ(*loaded_files().back().values->find(u"B", u"x"), u"1");
}

TEST_F(LoadedFiles, TakeNoNoticeOfAFileThatIsTheSame) {
    load("a.ini", "[A]\nx=1\n");
    load("b.ini", "[B]\nx=1\n");
    const std::uint64_t before = loaded_files_generation();
    load("a.ini", "[A]\nx=1\n");
    EXPECT_EQ(loaded_files_generation(), before);
    EXPECT_EQ(latest(), "b.ini");
    load("a.ini", "[A]\nx=2\n");
    EXPECT_NE(loaded_files_generation(), before);
    EXPECT_EQ(latest(), "a.ini");
    EXPECT_EQ(*loaded_files().back().values->find(u"A", u"x"), u"2");
}

}  // namespace
}  // namespace orvo
