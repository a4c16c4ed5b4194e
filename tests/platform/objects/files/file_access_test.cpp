// What pages may do with files: nothing outside of the folders that their site allows.

#include "platform/objects/files/file_access.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/interfaces/late_call.h"
#include "platform/objects/context/app_server.h"
#include "platform/objects/files/file_system.h"
#include "platform/objects/stream/stream.h"
#include "tests/support/temp_folder.h"

namespace orvo {

// A context with one item, or none.
class OneItem : public ObjectContext {
public:
    explicit OneItem(Object item) : item_(std::move(item)) {}

    Variant CreateInstance(const Text&) override { return {}; }
    void SetComplete() override {}
    void SetAbort() override {}
    void EnableCommit() override {}
    void DisableCommit() override {}
    bool IsInTransaction() override { return false; }
    bool IsSecurityEnabled() override { return false; }
    bool IsCallerInRole(const Text&) override { return true; }
    std::int32_t Count() override { return item_ ? 1 : 0; }
    Variant Item(const Text& name) override {
        if (!item_ || name != file_access_item) raise_runtime_error(runtime_error::invalid_call);
        return item_;
    }

private:
    Object item_;
};

template <>
inline constexpr auto class_of<OneItem> = describe_class<ObjectContext>("Test.Context");

namespace {

namespace fs = std::filesystem;

class FileAccess : public testing::Test {
protected:
    FileAccess() {
        fs::create_directories(allowed / "sub");
        fs::create_directories(folder.path() / "allowed-not");
        folder.write("allowed/in.txt", "in");
        folder.write("outside.txt", "out");
        folder.write("allowed-not/x.txt", "x");
        allow(make_file_access({allowed}));
    }
    ~FileAccess() override { AppServerObject().Establish({}); }

    void allow(Object item) { AppServerObject().Establish(make<OneItem>(std::move(item))); }
    Text path(const std::string& name) const { return from_utf8((folder.path() / name).string()); }
    // The number that was raised; 0 where nothing was.
    template <class Body>
    static std::int32_t raised(Body body) {
        try {
            body();
            return 0;
        } catch (const Failure& failure) {
            return failure.number;
        }
    }
    std::int32_t reading(const std::string& name) {
        return raised([&] { files.OpenTextFile(path(name), ForReading, false, TristateFalse); });
    }
    std::int32_t writing(const std::string& name) {
        return raised([&] { files.CreateTextFile(path(name), true, false); });
    }

    static constexpr std::int32_t denied = runtime_error::permission_denied;
    TempFolder folder;
    const fs::path allowed = folder.path() / "allowed";
    FileSystem files;
};

TEST_F(FileAccess, FilesBelowTheFoldersAreReadAndWritten) {
    EXPECT_EQ(reading("allowed/in.txt"), 0);
    EXPECT_EQ(writing("allowed/sub/new.txt"), 0);
    EXPECT_EQ(reading("allowed/sub/../in.txt"), 0);
    EXPECT_TRUE(files.FolderExists(path("allowed")));
}

TEST_F(FileAccess, NothingElseIs) {
    for (const char* name : {"outside.txt", "allowed/../outside.txt", "allowed-not/x.txt", ".",
                             "allowed/sub/../../outside.txt", "allowed/none/../../outside.txt"}) {
        EXPECT_EQ(reading(name), denied) << name;
        EXPECT_EQ(writing(name), denied) << name;
        EXPECT_EQ(raised([&] { files.FileExists(path(name)); }), denied) << name;
        EXPECT_EQ(raised([&] { files.GetFile(path(name)); }), denied) << name;
        EXPECT_EQ(raised([&] { files.DeleteFile(path(name), true); }), denied) << name;
        EXPECT_EQ(raised([&] { files.CopyFile(path(name), path("allowed/copy"), true); }), denied);
        EXPECT_EQ(raised([&] { files.CopyFile(path("allowed/in.txt"), path(name), true); }),
                  denied);
        EXPECT_EQ(raised([&] { files.MoveFile(path("allowed/in.txt"), path(name)); }), denied);
        EXPECT_EQ(raised([&] { files.CreateFolder(path(name) + u"x"); }), denied) << name;
    }
    EXPECT_EQ(content_of(folder.path() / "outside.txt"), "out");
    EXPECT_EQ(raised([&] { files.GetStandardStream(1, false); }), denied);
}

TEST_F(FileAccess, LinksCountForWhatTheyLeadTo) {
    fs::create_symlink(folder.path() / "outside.txt", allowed / "file");
    fs::create_directory_symlink(folder.path() / "allowed-not", allowed / "folder");
    fs::create_symlink(folder.path() / "made-outside.txt", allowed / "dangling");
    fs::create_symlink(allowed / "in.txt", allowed / "inner");
    EXPECT_EQ(reading("allowed/file"), denied);
    EXPECT_EQ(reading("allowed/folder/x.txt"), denied);
    EXPECT_EQ(writing("allowed/folder/new.txt"), denied);
    EXPECT_EQ(writing("allowed/dangling"), denied);
    EXPECT_FALSE(fs::exists(folder.path() / "made-outside.txt"));
    EXPECT_EQ(reading("allowed/inner"), 0);
    EXPECT_EQ(
        raised([&] { files.CopyFolder(path("allowed"), path("allowed/../allowed/c"), true); }),
        denied);
    files.DeleteFolder(path("allowed/sub"), false);
    EXPECT_EQ(raised([&] { files.DeleteFolder(path("allowed/folder"), true); }), denied);
    EXPECT_TRUE(fs::exists(folder.path() / "allowed-not/x.txt"));
}

TEST_F(FileAccess, ObjectsAskAgainWhenTheyAreUsed) {
    const Object file = files.GetFile(path("allowed/in.txt"));
    EXPECT_EQ(late::get(file, u"Size").to<std::int32_t>(), 2);
    allow({});
    EXPECT_EQ(raised([&] { late::get(file, u"Size"); }), denied);
    EXPECT_EQ(raised([&] { late::call(file, u"Delete"); }), denied);
}

TEST_F(FileAccess, FoldersListAndMakeOnlyWhatIsInside) {
    const Object inside = files.GetFolder(path("allowed"));
    EXPECT_EQ(late::get(late::get(inside, u"Files").to<Object>(), u"Count").to<std::int32_t>(), 1);
    EXPECT_EQ(raised([&] { late::get(late::get(inside, u"ParentFolder").to<Object>(), u"Name"); }),
              denied);
    EXPECT_EQ(raised([&] { late::call(inside, u"CreateTextFile", {u"../escaped.txt"}); }), denied);
}

TEST_F(FileAccess, AContextThatSaysNothingAllowsNothing) {
    allow({});
    EXPECT_EQ(reading("allowed/in.txt"), denied);
    AppServerObject().Establish({});
    EXPECT_EQ(reading("outside.txt"), 0);
}

TEST_F(FileAccess, StreamsKeepToItToo) {
    Stream stream;
    stream.Open(Variant::missing(), adModeUnknown, -1, {}, {});
    EXPECT_EQ(raised([&] { stream.LoadFromFile(path("outside.txt")); }), denied);
    EXPECT_EQ(raised([&] { stream.SaveToFile(path("outside.txt"), adSaveCreateOverWrite); }),
              denied);
    stream.LoadFromFile(path("allowed/in.txt"));
    EXPECT_EQ(stream.Size(), 2);
}

TEST_F(FileAccess, WhatIsNoFileIsNotOpened) {
    const fs::path pipe = allowed / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(reading("allowed/pipe"), denied);
}

TEST_F(FileAccess, ExceptedFilesAreNotUsedWhateverWayTheyWouldCome) {
    allow(make_file_access({allowed}, [this](const fs::path& file) {
        return file.parent_path() == allowed && file.extension() == ".asp";
    }));
    EXPECT_EQ(writing("allowed/page.asp"), denied);
    EXPECT_EQ(writing("allowed/sub/page.asp"), 0);
    EXPECT_EQ(
        raised([&] { files.CopyFile(path("allowed/in.txt"), path("allowed/page.asp"), true); }),
        denied);
    EXPECT_EQ(
        raised([&] { late::put(files.GetFile(path("allowed/in.txt")), u"Name", u"page.asp"); }),
        denied);
    EXPECT_EQ(raised([&] { files.MoveFolder(path("allowed/sub"), path("allowed/other")); }), 0);
    EXPECT_TRUE(fs::exists(allowed / "other/page.asp"));
    EXPECT_FALSE(fs::exists(allowed / "sub"));
    EXPECT_EQ(raised([&] { files.MoveFile(path("allowed/other/*"), path("allowed/")); }), denied);
    EXPECT_FALSE(fs::exists(allowed / "page.asp"));
}

TEST_F(FileAccess, APatternsFoldersAreAllDeletedOrNone) {
    folder.write("allowed/part-1/a.txt", "a");
    folder.write("allowed/part-2/page.asp", "the page");
    folder.write("allowed/part-3.txt", "a file");
    allow(make_file_access({allowed},
                           [](const fs::path& file) { return file.extension() == ".asp"; }));
    EXPECT_EQ(raised([&] { files.DeleteFolder(path("allowed/part-*"), true); }), denied);
    EXPECT_TRUE(fs::exists(allowed / "part-1/a.txt"));
    allow(make_file_access({allowed}, [](const fs::path&) { return false; }));
    fs::permissions(allowed / "part-2/page.asp", fs::perms::owner_read);
    EXPECT_EQ(raised([&] { files.DeleteFolder(path("allowed/part-*"), false); }), denied);
    EXPECT_TRUE(fs::exists(allowed / "part-1/a.txt"));
    EXPECT_EQ(raised([&] { files.DeleteFolder(path("allowed/part-*"), true); }), 0);
    EXPECT_FALSE(fs::exists(allowed / "part-1"));
    EXPECT_FALSE(fs::exists(allowed / "part-2"));
    EXPECT_TRUE(fs::exists(allowed / "part-3.txt"));
    EXPECT_EQ(raised([&] { files.DeleteFolder(path("allowed/part-*"), true); }),
              runtime_error::path_not_found);
}

TEST_F(FileAccess, NamesWithANulAreRefused) {
    constexpr std::int32_t invalid = runtime_error::invalid_call;
    const Text nul(1, u'\0');
    const Text name = u"page.asp" + nul + u".txt";
    const Text whole = path("allowed/") + name;
    const Object file = files.GetFile(path("allowed/in.txt"));
    const Object sub = files.GetFolder(path("allowed/sub"));
    EXPECT_EQ(raised([&] { late::put(file, u"Name", name); }), invalid);
    EXPECT_EQ(raised([&] { late::put(sub, u"Name", name); }), invalid);
    EXPECT_EQ(raised([&] { late::call(sub, u"CreateTextFile", {name}); }), invalid);
    EXPECT_EQ(raised([&] { late::call(file, u"Copy", {whole}); }), invalid);
    EXPECT_EQ(raised([&] { late::call(file, u"Move", {whole}); }), invalid);
    EXPECT_EQ(raised([&] { late::get(sub, u"Files", {u"x" + nul}); }), invalid);
    EXPECT_EQ(raised([&] { files.CopyFile(path("allowed/in.txt"), whole, true); }), invalid);
    EXPECT_EQ(raised([&] { files.CreateFolder(whole); }), invalid);
    Stream stream;
    stream.Open(Variant::missing(), adModeUnknown, -1, {}, {});
    EXPECT_EQ(raised([&] { stream.SaveToFile(whole, adSaveCreateOverWrite); }), invalid);
    EXPECT_EQ(raised([&] { stream.LoadFromFile(path("allowed/in.txt") + nul); }), invalid);
    EXPECT_FALSE(fs::exists(allowed / "page.asp"));
    EXPECT_TRUE(fs::exists(allowed / "in.txt"));
}

TEST_F(FileAccess, FoldersThatHoldExceptedFilesStayAsTheyAre) {
    folder.write("allowed/pages/in/page.asp", "the page");
    folder.write("allowed/pages/a.txt", "a");
    folder.write("allowed/plain/a.txt", "plain");
    fs::create_directories(allowed / "linked");
    fs::create_symlink(allowed / "in.txt", allowed / "linked/page.asp");
    allow(make_file_access({allowed},
                           [](const fs::path& file) { return file.extension() == ".asp"; }));
    for (const char* name : {"allowed/pages", "allowed/linked"}) {
        const Text pages = path(name), target = path("allowed/target");
        EXPECT_EQ(raised([&] { files.DeleteFolder(pages, true); }), denied) << name;
        EXPECT_EQ(raised([&] { files.MoveFolder(pages, target); }), denied) << name;
        EXPECT_EQ(raised([&] { files.CopyFolder(pages, target, true); }), denied) << name;
        EXPECT_EQ(raised([&] { files.CopyFolder(path("allowed/plain"), pages, true); }), denied);
        EXPECT_EQ(raised([&] { late::put(files.GetFolder(pages), u"Name", u"target"); }), denied);
        EXPECT_EQ(raised([&] { late::call(files.GetFolder(pages), u"Delete", {true}); }), denied);
        EXPECT_FALSE(fs::exists(allowed / "target")) << name;
    }
    EXPECT_EQ(content_of(allowed / "pages/in/page.asp"), "the page");
    EXPECT_EQ(content_of(allowed / "pages/a.txt"), "a");
    EXPECT_TRUE(fs::is_symlink(allowed / "linked/page.asp"));
    EXPECT_EQ(raised([&] { files.CopyFolder(path("allowed/plain"), path("allowed/new"), true); }),
              0);
    EXPECT_EQ(raised([&] { files.DeleteFolder(path("allowed/plain"), false); }), 0);
    EXPECT_EQ(content_of(allowed / "new/a.txt"), "plain");
}

}  // namespace
}  // namespace orvo
