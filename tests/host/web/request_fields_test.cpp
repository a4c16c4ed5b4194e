#include "host/web/request_fields.h"

#include <gtest/gtest.h>

#include "host/web/http_message.h"

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

struct Accepted {
    std::string_view text;
    std::string_view fields;
};

TEST(UrlEncodedFields, AreRead) {
    for (const auto& [text, fields] : std::initializer_list<Accepted>{
             {"", ""},
             {"a=1", "a=1| "},
             {"a=1&b=2&A=3", "a=1|3| b=2| "},
             {"a", "a=| "},
             {"=x", "=x| "},
             {"&&a=1&", "a=1| "},
             {"a=b=c", "a=b=c| "},
             {"n%20m=v%26w+x", "n m=v&w x| "},
             {"u=%C3%A9", "u=é| "},
             {"u=%C3", "u=\xEF\xBF\xBD| "},
         })
        EXPECT_EQ(text_of(parse_urlencoded(text)), fields) << text;
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

TEST(UrlEncodedFields, AreFiveHundredAtMost) {
    std::string text;
    for (int i = 0; i < 500; ++i) text += "a=1&";
    EXPECT_EQ(parse_urlencoded(text).find(u"a")->values.size(), 500u);
    EXPECT_EQ(refusal_of([&] { parse_urlencoded(text + "b=1"); }),
              "400 The request has more than 500 fields.");
}

constexpr std::string_view multipart = "multipart/form-data; boundary=XX";

TEST(MultipartFields, AreReadWithoutFiles) {
    const std::string body =
        "--XX\r\nContent-Disposition: form-data; name=\"user\"\r\n\r\nJos\xC3\xA9\r\n"
        "--XX\r\ncontent-disposition: form-data; name=\"photo\"; filename=\"a.png\"\r\n"
        "Content-Type: image/png\r\n\r\n\x89PNG\r\n"
        "--XX\r\nContent-Disposition: form-data; name=\"two\"\r\n\r\nline 1\r\nline 2\r\n"
        "--XX--\r\n";
    EXPECT_EQ(text_of(parse_multipart(body, multipart)), "user=José| two=line 1\r\nline 2| ");
    EXPECT_EQ(text_of(parse_multipart("--XX--\r\n", multipart)), "");
    EXPECT_EQ(text_of(parse_multipart("preamble\r\n" + body, multipart)),
              "user=José| two=line 1\r\nline 2| ");
    EXPECT_EQ(text_of(parse_multipart("--X\"X\r\nContent-Disposition: form-data; "
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
        EXPECT_EQ(refusal_of([&] { parse_multipart(body, type); }),
                  "400 The form cannot be read: " + std::string(reason) + ".")
            << body;
}

TEST(FormOfARequest, IsReadByItsContentType) {
    HttpRequest request{.method = "POST", .target = "/", .body = RequestBody("a=1")};
    EXPECT_EQ(text_of(form_of(request)), "") << "without a type there is no form";
    request.headers = {{"content-type", "application/x-www-form-urlencoded; charset=UTF-8"}};
    EXPECT_EQ(text_of(form_of(request)), "a=1| ");
    request.headers = {{"Content-Type", "application/json"}};
    EXPECT_EQ(text_of(form_of(request)), "");
}

}  // namespace
}  // namespace orvo::web
