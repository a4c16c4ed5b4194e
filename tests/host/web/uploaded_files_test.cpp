#include "host/web/intrinsics/uploaded_files.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>

#include "host/web/intrinsics/request_object.h"
#include "platform/interfaces/enumerator.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "tests/host/web/test_site.h"

namespace orvo::web {
namespace {

static_assert(slot_of<&Request::TotalBytes> == 14);
static_assert(slot_of<&Request::BinaryRead> == 15);

class UploadedFilesTest : public testing::Test {
protected:
    void send(std::string body, const std::string& type = "multipart/form-data; boundary=XX") {
        page_ = site_.request({.method = "POST",
                               .target = "/p.asp?q=1",
                               .headers = {{"Content-Type", type}},
                               .body = RequestBody(std::move(body))});
        request_ = make<RequestObject>(page_).object();
    }
    void send_files() {
        const std::string disposition = "Content-Disposition: form-data; name=";
        send("--XX\r\n" + disposition + "\"first\"; filename=\"a.txt\"\r\n" +
             "Content-Type: text/plain\r\n\r\none\r\n--XX\r\n" + disposition +
             "\"second\"; filename=\"b.bin\"\r\n\r\n" + std::string(100'000, 'b') + "\r\n--XX\r\n" +
             disposition + "\"text\"\r\n\r\nv\r\n--XX--");
    }
    Object files() { return late::get(request_, u"Files").to<Object>(); }
    Object file(const Variant& index) { return late::value_of(files(), {index}).to<Object>(); }
    std::string bytes(const Variant& value) { return *value.try_bytes(); }
    std::string failure(const std::function<void()>& action) {
        try {
            action();
            return "nothing was refused";
        } catch (const Failure& failure) {
            return to_utf8(decimal(failure.number) + u' ' + failure.description);
        }
    }
    std::string save(const Object& file, const std::filesystem::path& path) {
        return failure([&] { late::call(file, u"SaveAs", {from_utf8(path.string())}); });
    }
    std::string content(const std::filesystem::path& path) {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    TestSite site_;
    std::shared_ptr<PageContext> page_;
    Object request_;
};

TEST_F(UploadedFilesTest, AreFoundByNumberAndByTheirField) {
    send_files();
    EXPECT_EQ(late::get(files(), u"Count"), Variant(2));
    EXPECT_EQ(late::get(file(1), u"Name"), Variant(u"first"));
    EXPECT_EQ(late::get(file(u"FIRST"), u"FileName"), Variant(u"a.txt"));
    EXPECT_EQ(late::value_of(file(2)), Variant(u"b.bin"));
    EXPECT_EQ(late::get(file(1), u"ContentType"), Variant(u"text/plain"));
    EXPECT_EQ(late::get(file(2), u"Size"), Variant(100'000.0));
    EXPECT_FALSE(file(u"none"));
    EXPECT_THROW(file(3), Failure);
    EXPECT_EQ(late::items_of(files()).size(), 2u);
    EXPECT_EQ(late::get(request_, u"Form", {u"text"}).to<Text>(), u"v");
}

TEST_F(UploadedFilesTest, GiveTheirBytesPieceByPiece) {
    send_files();
    const Object one = file(1);
    EXPECT_EQ(bytes(late::call(one, u"BinaryRead", {2})), "on");
    EXPECT_EQ(bytes(late::call(one, u"BinaryRead")), "e");
    EXPECT_EQ(bytes(late::call(one, u"BinaryRead")), "");
    EXPECT_THROW(late::call(one, u"BinaryRead", {-1}), Failure);
    EXPECT_EQ(bytes(late::call(file(2), u"BinaryRead")), std::string(100'000, 'b'));
}

TEST_F(UploadedFilesTest, AreWrittenBelowTheFoldersThatPagesMayWriteTo) {
    send_files();
    const TempFolder outside;
    std::filesystem::create_directory(site_.root / "in");
    std::filesystem::create_directory(site_.root / "inner");
    std::filesystem::create_directory_symlink(outside.path(), site_.root / "in/link");
    page_->file_folders = {site_.root / "in"};
    EXPECT_EQ(save(file(2), site_.root / "in/b.bin"), "nothing was refused");
    EXPECT_EQ(content(site_.root / "in/b.bin"), std::string(100'000, 'b'));
    EXPECT_EQ(save(file(1), site_.root / "in/b.bin").substr(0, 3), "58 ") << "it is there already";
    EXPECT_EQ(content(site_.root / "in/b.bin").size(), 100'000u);
    for (const std::filesystem::path& path : std::initializer_list<std::filesystem::path>{
             site_.root / "x.txt", site_.root / "in/../x.txt", site_.root / "inner/x.txt",
             site_.root / "in/link/x.txt", std::filesystem::canonical(outside.path()) / "x.txt"}) {
        EXPECT_NE(save(file(1), path).find("is not below a folder that pages may write to"),
                  std::string::npos)
            << path;
        EXPECT_FALSE(std::filesystem::exists(path)) << path;
    }
    for (const char* path : {"x.txt", "in/x.txt", "/none/x.txt", "", "/"})
        EXPECT_EQ(save(file(1), path).substr(0, 3), "76 ") << path;
    for (const char* name : {"x.asp", "X.ASP", "global.asa", "h.inc", "site.ini"})
        EXPECT_NE(save(file(1), site_.root / "in" / name).find("a part of the site's pages"),
                  std::string::npos)
            << name;
}

TEST_F(UploadedFilesTest, AreNotWrittenToANameWithANul) {
    send_files();
    page_->file_folders = {site_.root};
    const Text name = u"/s.asp" + Text(1, u'\0') + u".txt";
    const auto save_as_page = [&] {
        late::call(file(1), u"SaveAs", {from_utf8(site_.root.string()) + name});
    };
    EXPECT_EQ(failure(save_as_page).substr(0, 2), "5 ");
    EXPECT_FALSE(std::filesystem::exists(site_.root / "s.asp"));
}

TEST_F(UploadedFilesTest, OfABodyTheBytesOrTheFormAreUsed) {
    send("a=1&b=2", "application/x-www-form-urlencoded");
    EXPECT_EQ(late::get(request_, u"TotalBytes"), Variant(7));
    std::array<Variant, 1> count{Variant(4)};
    EXPECT_EQ(bytes(late::call_by_reference(request_, u"BinaryRead", count)), "a=1&");
    EXPECT_EQ(count[0].to<std::int32_t>(), 4);
    count[0] = 1e300;
    EXPECT_EQ(bytes(late::call_by_reference(request_, u"BinaryRead", count)), "b=2");
    EXPECT_EQ(count[0].to<std::int32_t>(), 3);
    const std::string form_refused =
        "-2147467259 The form cannot be used after Request.BinaryRead: a page takes what came as "
        "the one or the other";
    EXPECT_EQ(failure([&] { late::get(request_, u"Form", {u"a"}); }), form_refused);
    EXPECT_EQ(failure([&] { files(); }), form_refused);
    EXPECT_EQ(failure([&] { late::value_of(request_, {u"a"}); }), form_refused);
    EXPECT_EQ(late::value_of(request_, {u"q"}).to<Text>(), u"1") << "the query is another thing";

    send("a=1&b=2", "application/x-www-form-urlencoded");
    late::value_of(request_, {u"q"});
    EXPECT_EQ(bytes(late::call(request_, u"BinaryRead", {1})), "a");
    send("a=1&b=2", "application/x-www-form-urlencoded");
    late::value_of(request_, {u"a"});
    EXPECT_EQ(failure([&] { late::call(request_, u"BinaryRead", {1}); }),
              "-2147467259 BinaryRead cannot be used after Request.Form or Request.Files: a page "
              "takes what came as the one or the other");
}

}  // namespace
}  // namespace orvo::web
