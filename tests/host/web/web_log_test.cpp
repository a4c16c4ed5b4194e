#include "host/web/site/web_log.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <regex>

#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

TEST(WebLog, KeepsNoQueryNoCookieAndNoForm) {
    TempFolder folder;
    const auto file = folder.path() / "access.log";
    {
        WebLog log(file);
        const HttpRequest request{.method = "POST",
                                  .target = "/login.asp?password=secret1",
                                  .headers = {{"Cookie", "QUENDRAID=secret2"}},
                                  .body = RequestBody("password=secret3"),
                                  .remote_address = "127.0.0.1",
                                  .id = "yN1-4_.x"};
        HttpResponse response;
        response.status = 302;
        response.body = "12345";
        log.request(request, response, std::chrono::milliseconds(12), "note");
        log.request({.method = "GET", .target = "/a%0Ab\"\x01\\", .remote_address = "::1"}, {},
                    std::chrono::milliseconds(0), "two\nlines");
    }
    const std::string text = content_of(file);
    const std::regex lines(
        "\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ 127\\.0\\.0\\.1 POST /login\\.asp 302 5 12ms "
        "yN1-4_\\.x \"note\"\n"
        "\\S+Z ::1 GET /a%0Ab\"\\\\x01\\\\x5C 200 0 0ms - \"two\\\\x0Alines\"\n");
    EXPECT_TRUE(std::regex_match(text, lines)) << text;
    EXPECT_EQ(text.find("secret"), std::string::npos);
}

TEST(WebLog, GivesEachFailureAReferenceToFindItBy) {
    WebLog log({});
    testing::internal::CaptureStderr();
    const std::string reference = log.failure("/a.asp", "line 1\nline 2");
    const std::string second = log.failure("/b.asp", "line", "yN1");
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_EQ(reference.size(), 8u);
    EXPECT_NE(text.find("Z orvo-web " + reference + " /a.asp: line 1\\x0Aline 2\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("Z orvo-web " + second + " yN1 /b.asp: line\n"), std::string::npos)
        << "with the request, where one failed";
}

// While it lives, no file of this process grows beyond a size.
class FullDisk {
public:
    explicit FullDisk(rlim_t size) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit full{size, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    void (*const handler_)(int);
    rlimit before_{};
};

TEST(WebLog, AFullDiskCostsLinesAndTheirNumberIsToldWhenThereIsRoomAgain) {
    TempFolder folder;
    folder.write("access.log", std::string(10'000, '-') + "\n");
    const auto file = folder.path() / "access.log";
    WebLog log(file);
    const auto request = [&](const char* target) {
        log.request({.target = target, .remote_address = "::1"}, {}, std::chrono::seconds(0), {});
    };
    request("/1");
    testing::internal::CaptureStderr();
    {
        const FullDisk full(std::filesystem::file_size(file) + 10);
        for (const char* target : {"/2", "/3", "/4"}) request(target);
    }
    const std::string said = testing::internal::GetCapturedStderr();
    request("/5");
    request("/6");
    const std::string text = content_of(file).substr(10'001);
    const std::regex lines(
        "\\S+Z ::1 GET /1 200 0 0ms -\n"
        ".{10}\n"
        "\\S+Z orvo-web: 3 lines were lost since \\d{4}-\\d\\d-\\d\\dT\\S+Z \\(File too large\\)\n"
        "\\S+Z ::1 GET /5 200 0 0ms -\n"
        "\\S+Z ::1 GET /6 200 0 0ms -\n");
    EXPECT_TRUE(std::regex_match(text, lines)) << text;
    EXPECT_TRUE(std::regex_match(said, std::regex("\\S+Z orvo-web: requests are not logged until "
                                                  "there is room: File too large\n")))
        << said;
}

TEST(WebLog, FailuresArePassedOnAfterTheErrorStreamWasFull) {
    WebLog log({});
    testing::internal::CaptureStderr();
    {
        const FullDisk full(0);
        log.failure("/a.asp", "one");
    }
    const std::string reference = log.failure("/a.asp", "two");
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_NE(text.find("Z orvo-web: 1 lines were lost since "), std::string::npos) << text;
    EXPECT_NE(text.find("Z orvo-web " + reference + " /a.asp: two\n"), std::string::npos) << text;
}

TEST(WebLog, GoesOnInANewFileAfterTheOldOneWasMovedAway) {
    TempFolder folder;
    const auto file = folder.path() / "logs/access.log";
    std::filesystem::create_directory(folder.path() / "logs");
    WebLog log(file);
    const auto request = [&](const char* target) {
        log.request({.target = target}, {}, std::chrono::seconds(0), {});
    };
    request("/1");
    std::filesystem::rename(file, folder.path() / "old");
    request("/2");
    log.reopen();
    request("/3");
    const auto has = [&](const auto& name, const char* what) {
        return content_of(name).find(what) != std::string::npos;
    };
    EXPECT_TRUE(has(folder.path() / "old", "/1") && has(folder.path() / "old", "/2"));
    EXPECT_TRUE(has(file, "/3"));
    std::filesystem::rename(folder.path() / "logs", folder.path() / "gone");
    testing::internal::CaptureStderr();
    log.reopen();
    EXPECT_NE(
        testing::internal::GetCapturedStderr().find("the log cannot be written: No such file"),
        std::string::npos);
    request("/4");
    EXPECT_TRUE(has(folder.path() / "gone/access.log", "/4")) << "the old one stays";
}

TEST(WebLog, SaysWhereItCannotBeWritten) {
    EXPECT_THROW(WebLog("/none/access.log"), std::runtime_error);
}

}  // namespace
}  // namespace orvo::web
