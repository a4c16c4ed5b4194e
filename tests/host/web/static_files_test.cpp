#include "host/web/static_files.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

TEST(StaticFiles, AreOfKnownKindsOnly) {
    EXPECT_EQ(content_type_of("/a/style.CSS"), "text/css; charset=utf-8");
    EXPECT_EQ(content_type_of("logo.svg"), "image/svg+xml");
    for (const char* file : {"page.asp", "head.inc", "site.ini", "a", "a.", "key.pem", "x.asp~",
                             "x.asp.bak", "data.db", ".css"})
        EXPECT_EQ(content_type_of(file), "") << file;
}

TEST(StaticFiles, AreSentOnceUntilTheyChange) {
    TempFolder folder;
    const auto file = folder.path() / "a.txt";
    std::ofstream(file) << "content\n";
    HttpRequest request;
    const HttpResponse first = static_file(file, request);
    EXPECT_EQ(first.status, 200);
    EXPECT_EQ(first.body, "content\n");
    EXPECT_EQ(first.content_type, "text/plain; charset=utf-8");
    ASSERT_EQ(first.headers.front().first, "Last-Modified");
    request.headers = {{"If-Modified-Since", first.headers.front().second}};
    const HttpResponse second = static_file(file, request);
    EXPECT_EQ(second.status, 304);
    EXPECT_EQ(second.body, "");
    std::filesystem::last_write_time(
        file, std::filesystem::last_write_time(file) + std::chrono::seconds(5));
    EXPECT_EQ(static_file(file, request).status, 200);
}

}  // namespace
}  // namespace orvo::web
