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

}  // namespace
}  // namespace orvo::web
