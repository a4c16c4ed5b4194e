#include "host/web/messages/multipart.h"

#include <gtest/gtest.h>

#include "host/web/messages/http_message.h"

namespace orvo::web {
namespace {

std::string text_of(const RequestFields& fields) {
    std::string text;
    for (const auto& field : fields.all()) {
        text += to_utf8(field.name) + '=';
        for (const Text& value : field.values) text += to_utf8(value) + '|';
        text += ' ';
    }
    return text;
}

// In memory where it is small, on disk where it is larger.
RequestBody body_of(std::string_view bytes) {
    RequestBodyWriter writer;
    writer.append(bytes);
    return writer.take();
}

RequestForm form(std::string_view body, std::string_view type, std::size_t largest_text = 100) {
    return read_multipart(body_of(body), type, largest_text);
}

std::string form_text(std::string_view body, std::string_view type) {
    return text_of(form(body, type).fields);
}

// "field:name:type:content" of each file.
std::string files_text(std::string_view body, std::string_view type) {
    std::string text;
    for (const UploadedFile& file : form(body, type).files)
        text += to_utf8(file.field) + ':' + to_utf8(file.name) + ':' + file.content_type + ':' +
                std::string(body.substr(file.offset, file.size)) + ' ';
    return text;
}

template <class Action>
std::string refusal_of(Action action) {
    try {
        action();
        return "nothing was refused";
    } catch (const Refusal& refusal) {
        return std::to_string(refusal.status) + ' ' + refusal.what();
    }
}

constexpr std::string_view multipart = "multipart/form-data; boundary=XX";

TEST(MultipartFields, AreReadBesideFiles) {
    const std::string body =
        "--XX\r\nContent-Disposition: form-data; name=\"user\"\r\n\r\nJos\xC3\xA9\r\n"
        "--XX\r\ncontent-disposition: form-data; name=\"photo\"; filename=\"a.png\"\r\n"
        "Content-Type: image/png\r\n\r\n\x89PNG\r\n"
        "--XX\r\nContent-Disposition: form-data; name=\"two\"\r\n\r\nline 1\r\nline 2\r\n"
        "--XX--\r\n";
    EXPECT_EQ(form_text(body, multipart), "user=José| two=line 1\r\nline 2| ");
    EXPECT_EQ(form_text("--XX--\r\n", multipart), "");
    EXPECT_EQ(form_text("preamble\r\n" + body, multipart), "user=José| two=line 1\r\nline 2| ");
    EXPECT_EQ((form_text("--X\"X\r\nContent-Disposition: form-data; "
                         "name=\"a\\\"b\"\r\n\r\nv\r\n--X\"X--",
                         "multipart/form-data; boundary=\"X\\\"X\"")),
              "a\"b=v| ");
}

TEST(MultipartFields, AreRefusedWhereTheyAreNotWhatTheySay) {
    struct Refused {
        std::string_view body;
        std::string_view type;
        std::string_view reason;
    };
    for (const auto& [body, type, reason] : std::initializer_list<Refused>{
             {"x", "multipart/form-data", "it has no usable boundary"},
             {"x", "multipart/form-data; boundary=", "it has no usable boundary"},
             {"", multipart, "its boundary is not in it"},
             {"nothing", multipart, "its boundary is not in it"},
             {"--XX\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\nv", multipart,
              "its last part does not end"},
             {"--XX", multipart, "its last part does not end"},
             {"--XX\r\nname\r\n--XX--", multipart, "a part has no header"},
             {"--XX\r\nContent-Type: text/plain\r\n\r\nv\r\n--XX--", multipart,
              "a part has no name"},
             {"--XX\r\nContent-Disposition: form-data\r\n\r\nv\r\n--XX--", multipart,
              "a part has no name"},
         })
        EXPECT_EQ(refusal_of([&] { form_text(body, type); }),
                  "400 The form cannot be read: " + std::string(reason) + ".")
            << body;
}

std::string file_part(const std::string& field, const std::string& name,
                      const std::string& content) {
    return "--XX\r\nContent-Disposition: form-data; name=\"" + field + "\"; filename=\"" + name +
           "\"\r\nContent-Type: text/plain\r\n\r\n" + content + "\r\n";
}

TEST(MultipartFiles, StandInTheBodyUnderTheirLastName) {
    EXPECT_EQ(files_text(file_part("a", "C:\\\\dir\\\\x.txt", "one") +
                             file_part("a", "../../etc/passwd", "") + file_part("b", "..", "up") +
                             file_part("c", "", "nameless") + file_part("none", "", "") +
                             "--XX\r\nContent-Disposition: form-data; filename=\"y\"; "
                             "name=d\r\n\r\nno type\r\n--XX--",
                         multipart),
              "a:x.txt:text/plain:one a:passwd:text/plain: b::text/plain:up "
              "c::text/plain:nameless d:y::no type ");
    EXPECT_EQ(files_text(file_part("a", "b\tc\x01", "x") + "--XX--", multipart),
              "a:bc:text/plain:x ");
    EXPECT_EQ(files_text(file_part("a", ".\x01.", "x") + file_part("a", "a/\x7F.", "y") + "--XX--",
                         multipart),
              "a::text/plain:x a::text/plain:y ")
        << "what is left is no folder";
}

TEST(MultipartFiles, AreReadBlockByBlock) {
    // The end of the first part stands at every place around the end of the first block.
    const std::string before = file_part("a", "x", "");
    for (std::size_t size = 65'536 - before.size() - 30; size < 65'536; ++size) {
        const std::string content(size, '\r');
        const std::string body =
            file_part("a", "x", content) + file_part("b", "y", "two") +
            "--XX\r\nContent-Disposition: form-data; name=\"t\"\r\n\r\nv\r\n--XX--";
        const RequestForm read = form(body, multipart);
        ASSERT_EQ(read.files.size(), 2u) << size;
        ASSERT_EQ(read.files[0].size, size);
        ASSERT_EQ(body.substr(read.files[1].offset, read.files[1].size), "two") << size;
        ASSERT_EQ(text_of(read.fields), "t=v| ") << size;
    }
}

TEST(MultipartFiles, HaveBounds) {
    std::string body;
    for (std::size_t i = 0; i < most_files; ++i) body += file_part("f", "x", "");
    EXPECT_EQ(form(body + "--XX--", multipart).files.size(), most_files);
    EXPECT_EQ(refusal_of([&] { form(body + file_part("f", "x", "") + "--XX--", multipart); }),
              "400 The form has more than 100 files.");
    EXPECT_EQ(refusal_of([&] {
                  form("--XX\r\nX: " + std::string(largest_part_header, 'x') +
                           "\r\nContent-Disposition: form-data; name=a\r\n\r\nv\r\n--XX--",
                       multipart);
              }),
              "400 The form cannot be read: the header of a part is too long.");
    const auto field = [](std::size_t size) {
        return "--XX\r\nContent-Disposition: form-data; name=a\r\n\r\n" + std::string(size, 'x') +
               "\r\n";
    };
    EXPECT_EQ(form(field(60) + field(40) + "--XX--", multipart).fields.find(u"a")->values.size(),
              2u);
    EXPECT_EQ(refusal_of([&] { form(field(60) + field(41) + "--XX--", multipart); }),
              "413 The texts of the form are larger than 100 bytes.");
    std::string fields;
    for (std::size_t i = 0; i < most_fields; ++i) fields += field(0);
    EXPECT_EQ(refusal_of([&] { form(fields + field(0) + "--XX--", multipart); }),
              "400 The request has more than 500 fields.");
}

TEST(FormOfARequest, IsReadByItsContentType) {
    HttpRequest request{.method = "POST", .target = "/", .body = RequestBody("a=1")};
    EXPECT_EQ(text_of(form_of(request, 100).fields), "") << "without a type there is no form";
    request.headers = {{"content-type", "application/x-www-form-urlencoded; charset=UTF-8"}};
    EXPECT_EQ(text_of(form_of(request, 100).fields), "a=1| ");
    request.headers = {{"Content-Type", "application/json"}};
    EXPECT_EQ(text_of(form_of(request, 100).fields), "");
}

}  // namespace
}  // namespace orvo::web
