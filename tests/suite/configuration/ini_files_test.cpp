#include "suite/configuration/ini_files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

void set_age(const fs::path& file, std::chrono::seconds age) {
    fs::last_write_time(file, fs::file_time_type::clock::now() - age);
}

std::string value_of(const std::shared_ptr<const IniValues>& values) {
    const Text* found = values->find(u"s", u"a");
    return found ? to_utf8(*found) : "(none)";
}

void expect_refusal(const fs::path& file, std::int32_t number, const std::string& reason) {
    try {
        load_ini_file(file);
        FAIL() << file << " was accepted";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, number);
        EXPECT_EQ(failure.source, u"Quendra.Configuration");
        EXPECT_EQ(to_utf8(failure.description), file.string() + reason);
    }
}

TEST(IniFiles, AMissingFileIsNotFound) {
    const TempFolder folder;
    expect_refusal(folder.path() / "no.ini", 53, ": there is no such file");
    expect_refusal(folder.path() / "no" / "no.ini", 53, ": there is no such file");
}

TEST(IniFiles, AFolderIsNoFile) {
    const TempFolder folder;
    expect_refusal(folder.path(), 75, ": this is not a file");
}

TEST(IniFiles, AFileThatTheSystemRefusesIsNamedWithTheSystemsReason) {
    const TempFolder folder;
    expect_refusal(folder.path() / std::string(300, 'n'), 75,
                   ": it cannot be read (File name too long)");
    fs::create_symlink("loop", folder.path() / "loop");
    expect_refusal(folder.path() / "loop", 75,
                   ": it cannot be read (Too many levels of symbolic links)");
}

TEST(IniFiles, AFileOfTheLargestSizeIsReadAndALargerOneRefused) {
    const TempFolder folder;
    const std::string start = "[s]\na=1\n;";
    const auto fits = folder.write("fits", start + std::string(1048576 - start.size(), 'x'));
    EXPECT_EQ(value_of(load_ini_file(fits)), "1");
    const auto larger = folder.write("larger", start + std::string(1048577 - start.size(), 'x'));
    expect_refusal(larger, 75, ": it is larger than 1048576 bytes");
}

TEST(IniFiles, AMalformedFileIsNamedWithItsLine) {
    const TempFolder folder;
    const auto file = folder.write("bad.ini", "[s]\nnothing\n");
    expect_refusal(file, error_number(0x80040201),
                   ":2: the line is no \"[section]\", no \"key = value\" and no comment");
}

TEST(IniFiles, AFileAtRestIsReadOnceAndShared) {
    const TempFolder folder;
    const auto file = folder.write("site.ini", "[s]\na=1\n");
    set_age(file, std::chrono::seconds(10));
    EXPECT_EQ(load_ini_file(file), load_ini_file(file));
}

TEST(IniFiles, AChangedFileIsReadAnew) {
    const TempFolder folder;
    const auto file = folder.write("site.ini", "[s]\na=1\n");
    set_age(file, std::chrono::seconds(10));
    EXPECT_EQ(value_of(load_ini_file(file)), "1");
    folder.write("site.ini", "[s]\na=2\n");
    EXPECT_EQ(value_of(load_ini_file(file)), "2") << "the same size, another time";
    const auto time = fs::last_write_time(file);
    folder.write("site.ini", "[s]\na=30\n");
    fs::last_write_time(file, time);
    EXPECT_EQ(value_of(load_ini_file(file)), "30") << "the same time, another size";
}

TEST(IniFiles, AChangeThatLeavesTimeAndSizeIsSeenWhileTheFileIsYoung) {
    const TempFolder folder;
    const auto file = folder.write("site.ini", "[s]\na=1\n");
    const auto time = fs::last_write_time(file);
    EXPECT_EQ(value_of(load_ini_file(file)), "1");
    folder.write("site.ini", "[s]\na=2\n");
    fs::last_write_time(file, time);
    EXPECT_EQ(value_of(load_ini_file(file)), "2");
}

TEST(IniFiles, ReloadingLooksAtTheFileWhateverWasReadBefore) {
    const TempFolder folder;
    const auto file = folder.write("site.ini", "[s]\na=1\n");
    set_age(file, std::chrono::seconds(10));
    const auto time = fs::last_write_time(file);
    EXPECT_EQ(value_of(load_ini_file(file)), "1");
    folder.write("site.ini", "[s]\na=2\n");
    fs::last_write_time(file, time);
    EXPECT_EQ(value_of(load_ini_file(file)), "1") << "time and size are all that is compared";
    EXPECT_EQ(value_of(reload_ini_file(file)), "2");
    EXPECT_EQ(value_of(load_ini_file(file)), "2");
}

TEST(IniFiles, AFileThatBecameMalformedIsRefusedAlthoughItWasReadBefore) {
    const TempFolder folder;
    const auto file = folder.write("site.ini", "[s]\na=1\n");
    set_age(file, std::chrono::seconds(10));
    load_ini_file(file);
    folder.write("site.ini", "a=1\n");
    expect_refusal(file, error_number(0x80040201), ":1: the key stands outside any [section]");
}

TEST(IniFiles, ManyThreadsReadManyFilesAtOnce) {
    const TempFolder folder;
    std::vector<fs::path> files;
    for (int i = 0; i < 100; ++i) {
        files.push_back(folder.write(std::to_string(i), "[s]\na=" + std::to_string(i) + "\n"));
        if (i % 2 == 0) set_age(files.back(), std::chrono::seconds(10));
    }
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            for (int round = 0; round < 3; ++round)
                for (std::size_t i = 0; i < files.size(); ++i)
                    EXPECT_EQ(value_of(load_ini_file(files[i])), std::to_string(i));
        });
    for (auto& thread : threads) thread.join();
}

TEST(PathOf, TakesABackslashForASeparator) {
    EXPECT_EQ(path_of(u"/etc/orvo\\Config\\M\u00FCller.ini"), "/etc/orvo/Config/M\xC3\xBCller.ini");
}

TEST(PathOf, RefusesATextThatNamesNoFile) {
    try {
        path_of(u"");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 53);
        EXPECT_EQ(failure.description, u"no configuration file is named");
    }
    try {
        path_of(TextView(u"/etc/passwd\0.ini", 16));
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 53);
        EXPECT_EQ(failure.description, u"the name of the configuration file holds a NUL");
    }
}

}  // namespace
}  // namespace orvo
