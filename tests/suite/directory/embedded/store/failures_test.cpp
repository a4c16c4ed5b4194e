// A file that cannot be written to.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>

#include "tests/suite/directory/embedded/store/child.h"
#include "tests/suite/directory/embedded/store/store_fixture.h"

namespace orvo::directory::embedded {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::string text_of(const Failure& failure) { return to_utf8(failure.description); }

// No file of this process grows beyond a size.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{size, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signal_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before_{};
    void (*signal_)(int);
};

using AFullDisk = AStore;

TEST_F(AFullDisk, FailsTheWriterWithTheReasonAndLosesNothing) {
    add({"cn=before,o=Shop", {{"sn", {"x"}}}});
    const auto log = path.string() + "-wal";
    {
        const FileSizeLimit limit(std::filesystem::file_size(log) + 50'000);
        Writing writing = store->write();
        const Failure failure = failure_of([&] {
            for (int i = 0; i < 100; ++i)
                writing.add({"cn=" + std::to_string(i) + ",o=Shop",
                             {{"userPassword", {std::string(10'000, 'x')}}}});
            writing.commit();
        });
        EXPECT_THAT(text_of(failure), StartsWith("(80) "));
        EXPECT_THAT(text_of(failure), HasSubstr("'" + path.string() + "': disk I/O error ("));
    }
    EXPECT_FALSE(find("cn=0,o=Shop"));
    EXPECT_TRUE(find("cn=before,o=Shop"));
    add({"cn=after,o=Shop", {{"sn", {"x"}}}});
    EXPECT_TRUE(find("cn=after,o=Shop"));
    EXPECT_THAT(store->read().problems(), IsEmpty());
}

// SQLite brings the log into the file page by page; here it comes to an end half way.
TEST_F(AFullDisk, LosesNothingWhereTheLogCannotBeBroughtIn) {
    int told = 0;
    {
        const FileSizeLimit limit(6'000'000);
        const Failure failure = failure_of([&] {
            for (; told < 1000; ++told)
                add({"cn=" + std::to_string(told) + ",o=Shop",
                     {{"userPassword", {std::string(50'000, 'x')}}}});
        });
        EXPECT_THAT(text_of(failure), HasSubstr("disk I/O error ("));
        store.reset();
        store = Store::open(path);
        EXPECT_THAT(store->read().problems(), IsEmpty());
        store.reset();
    }
    store = Store::open(path);
    EXPECT_THAT(store->read().problems(), IsEmpty());
    for (int i = 0; i < told; ++i) EXPECT_TRUE(find("cn=" + std::to_string(i) + ",o=Shop")) << i;
    EXPECT_GT(told, 100);
    add({"cn=after,o=Shop", {}});
}

TEST_F(AFullDisk, LeavesNoHalfBackup) {
    add({"cn=a,o=Shop", {{"userPassword", {std::string(200'000, 'x')}}}});
    const FileSizeLimit limit(100'000);
    EXPECT_THAT(
        text_of(failure_of([&] { store->backup(folder.path() / "copy", [](int, int) {}); })),
        StartsWith("(80) "));
    for (const auto& file : std::filesystem::directory_iterator(folder.path()))
        EXPECT_THAT(file.path().filename(), StartsWith("shop.directory"));
}

// A superuser may write to every file, so the child is somebody else.
TEST(AFileThatMayNotBeWrittenTo, IsReadAndFailsTheWriterWithTheReason) {
    TempFolder folder;
    const auto path = folder.path() / "a";
    Store::create(path, sample_schema());
    constexpr uid_t somebody = 65534;
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(folder.path().c_str(), somebody, somebody), 0);
        ASSERT_EQ(::chown(path.c_str(), somebody, somebody), 0);
    }
    ASSERT_EQ(::chmod(path.c_str(), 0400), 0);
    Child child([&](int descriptor) {
        if (::geteuid() == 0 && (::setgid(somebody) != 0 || ::setuid(somebody) != 0)) ::_exit(1);
        const Failure failure = failure_of([&] {
            const auto store = Store::open(path);
            write_all(descriptor, "opened, ");
            store->read().setting("a");
            write_all(descriptor, "read, ");
            Writing writing = store->write();
            writing.set_setting("a", "b");
            writing.commit();
        });
        write_all(descriptor, text_of(failure));
    });
    EXPECT_THAT(child.read_all(),
                testing::MatchesRegex("opened, read, \\(80\\) .*'" + path.string() +
                                      "': attempt to write a readonly database \\(8\\)\\."));
}

}  // namespace
}  // namespace orvo::directory::embedded
