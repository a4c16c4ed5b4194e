#include "host/web/files/static_files.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/child_process.h"
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

class StaticFilesTest : public testing::Test {
protected:
    HttpResponse get(const Headers& headers = {}) {
        return files_.answer(file_, {.headers = headers});
    }
    static std::string header(const HttpResponse& response, std::string_view name) {
        std::string all;
        for (const auto& [key, value] : response.headers)
            if (key == name) all += value;
        return all;
    }
    // What goes out: the bytes in memory, or those of the file.
    static std::string content(const HttpResponse& response) {
        if (!response.file) return response.body;
        std::string bytes(response.file->length, '\0');
        bytes.resize(response.file->file->read(response.file->offset, bytes));
        return bytes;
    }

    TempFolder folder_;
    const std::filesystem::path file_ = folder_.write("a.txt", "0123456789");
    StaticFiles files_;
};

TEST_F(StaticFilesTest, AreSentOnceUntilTheyChange) {
    const HttpResponse first = get();
    EXPECT_EQ(first.status, 200);
    EXPECT_EQ(content(first), "0123456789");
    EXPECT_EQ(first.content_type, "text/plain; charset=utf-8");
    EXPECT_EQ(header(first, "Accept-Ranges"), "bytes");
    const std::string tag = header(first, "ETag"), modified = header(first, "Last-Modified");
    const std::vector<Headers> copies{{{"If-Modified-Since", modified}},
                                      {{"If-Modified-Since", "Sun, 06 Nov 2094 08:49:37 GMT"}},
                                      {{"If-None-Match", tag}},
                                      {{"If-None-Match", "\"other\", W/" + tag}},
                                      {{"If-None-Match", "*"}}};
    for (const Headers& copy : copies) {
        const HttpResponse second = get(copy);
        EXPECT_EQ(second.status, 304) << copy.front().second;
        EXPECT_EQ(content(second), "");
        EXPECT_EQ(header(second, "ETag"), tag);
    }
    for (const Headers& other :
         std::vector<Headers>{{{"If-Modified-Since", "Sun, 06 Nov 1994 08:49:37 GMT"}},
                              {{"If-Modified-Since", "yesterday"}},
                              {{"If-None-Match", "\"other\""}, {"If-Modified-Since", modified}}})
        EXPECT_EQ(get(other).status, 200) << other.front().second;
    std::filesystem::last_write_time(
        file_, std::filesystem::last_write_time(file_) + std::chrono::milliseconds(1));
    EXPECT_EQ(get({{"If-None-Match", tag}}).status, 200);
    std::filesystem::last_write_time(
        file_, std::filesystem::last_write_time(file_) + std::chrono::seconds(5));
    EXPECT_EQ(get({{"If-Modified-Since", modified}}).status, 200);
}

TEST_F(StaticFilesTest, AreSentInPartWhereThatIsAsked) {
    const HttpResponse part = get({{"Range", "bytes=2-4"}});
    EXPECT_EQ(part.status, 206);
    EXPECT_EQ(content(part), "234");
    EXPECT_EQ(header(part, "Content-Range"), "bytes 2-4/10");
    const HttpResponse none = get({{"Range", "bytes=10-"}});
    EXPECT_EQ(none.status, 416);
    EXPECT_EQ(header(none, "Content-Range"), "bytes */10");
    EXPECT_EQ(get({{"Range", "bytes=0-1,4-5"}}).status, 200) << "several";
    EXPECT_EQ(files_.answer(file_, {.method = "HEAD", .headers = {{"Range", "bytes=2-4"}}}).status,
              200);
}

TEST_F(StaticFilesTest, AreSentInPartOnlyToWhomHasAPartOfTheSame) {
    const HttpResponse whole = get();
    const std::string tag = header(whole, "ETag"), modified = header(whole, "Last-Modified");
    const auto status = [&](const std::string& condition) {
        return get({{"Range", "bytes=2-4"}, {"If-Range", condition}}).status;
    };
    EXPECT_EQ(status(tag), 206);
    EXPECT_EQ(status(modified), 206);
    EXPECT_EQ(status("W/" + tag), 200);
    EXPECT_EQ(status("\"other\""), 200);
    EXPECT_EQ(status("Sun, 06 Nov 2094 08:49:37 GMT"), 200);
}

TEST_F(StaticFilesTest, OfTextAreCompressedForWhoTakesIt) {
    std::string text;
    for (int i = 0; i < 2000; ++i) text += "line " + std::to_string(i) + '\n';
    folder_.write("a.txt", text);
    const HttpResponse plain = get();
    EXPECT_EQ(header(plain, "Vary"), "Accept-Encoding");
    EXPECT_EQ(header(plain, "Content-Encoding"), "");
    const HttpResponse compressed = get({{"Accept-Encoding", "br, gzip"}});
    EXPECT_EQ(header(compressed, "Vary"), "Accept-Encoding");
    EXPECT_EQ(header(compressed, "Content-Encoding"), "gzip");
    EXPECT_LT(compressed.body.size(), text.size() / 2);
    const auto packed = folder_.write("packed.gz", compressed.body);
    EXPECT_TRUE(output_of({"/bin/gzip", "-dc", packed}) == text);
    const std::string tag = header(compressed, "ETag");
    EXPECT_NE(tag, header(plain, "ETag")) << "it is another one";
    EXPECT_EQ(get({{"If-None-Match", tag}, {"Accept-Encoding", "gzip"}}).status, 304);
    const HttpResponse part = get({{"Accept-Encoding", "gzip"}, {"Range", "bytes=0-3"}});
    EXPECT_EQ(content(part), "line") << "parts are parts of the file";
    EXPECT_EQ(header(part, "Content-Encoding"), "");

    const auto picture = folder_.write("a.png", text);
    const HttpResponse other = files_.answer(picture, {.headers = {{"Accept-Encoding", "gzip"}}});
    EXPECT_EQ(header(other, "Content-Encoding"), "");
    EXPECT_EQ(header(other, "Vary"), "");
}

TEST_F(StaticFilesTest, ThatCannotBeReadAreRefused) {
    EXPECT_THROW(files_.answer(folder_.path() / "none.txt", {}), Refusal);
    EXPECT_THROW(files_.answer(folder_.path(), {}), Refusal);
}

TEST(CompressedFiles, KeepWhatWasUsedLastWithinTheirRoom) {
    const TempFolder folder;
    const auto file = OpenFile::try_open(folder.write("a.txt", std::string(2000, 'x')));
    CompressedFiles files(1000);
    const auto first = files.of("0", *file);
    ASSERT_TRUE(first);
    EXPECT_EQ(files.of("0", *file), first) << "it is the kept one";
    for (int i = 1; i < 50; ++i) {
        EXPECT_EQ(files.of("0", *file), first) << i;
        files.of(std::to_string(i), *file);
    }
    EXPECT_LE(files.kept(), 1000u);
    for (int i = 1; i < 50; ++i) files.of(std::to_string(i), *file);
    EXPECT_NE(files.of("0", *file), first);

    EXPECT_FALSE(files.of("small", *OpenFile::try_open(folder.write("b.txt", "x"))));
    std::string noise(1000, '\0');
    std::mt19937 random(1);
    for (char& c : noise) c = static_cast<char>(random());
    EXPECT_FALSE(files.of("noise", *OpenFile::try_open(folder.write("c.txt", noise))));
}

}  // namespace
}  // namespace orvo::web
