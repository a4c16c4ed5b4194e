#include "host/web/web_log.h"

#include <gtest/gtest.h>

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
                                  .remote_address = "127.0.0.1"};
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
        "\"note\"\n"
        "\\S+Z ::1 GET /a%0Ab\"\\\\x01\\\\x5C 200 0 0ms \"two\\\\x0Alines\"\n");
    EXPECT_TRUE(std::regex_match(text, lines)) << text;
    EXPECT_EQ(text.find("secret"), std::string::npos);
}

TEST(WebLog, GivesEachFailureAReferenceToFindItBy) {
    WebLog log({});
    testing::internal::CaptureStderr();
    const std::string reference = log.failure("/a.asp", "line 1\nline 2");
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_EQ(reference.size(), 8u);
    EXPECT_NE(text.find("Z orvo-web " + reference + " /a.asp: line 1\\x0Aline 2\n"),
              std::string::npos)
        << text;
}

TEST(WebLog, SaysWhereItCannotBeWritten) {
    EXPECT_THROW(WebLog("/none/access.log"), std::runtime_error);
}

}  // namespace
}  // namespace orvo::web
