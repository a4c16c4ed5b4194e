#include "host/web/messages/request_fields.h"

#include <gtest/gtest.h>

#include <ctime>

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

TEST(RequestFields, AreRemovedByName) {
    RequestFields fields = parse_urlencoded("a=1&B=2&c=3&b=4");
    fields.remove(u"b");
    fields.remove(u"none");
    EXPECT_EQ(text_of(fields), "a=1| c=3| ");
    fields.add(u"C", u"5");
    fields.add(u"b", u"6");
    EXPECT_EQ(text_of(fields), "a=1| c=3|5| b=6| ");
    EXPECT_EQ(fields.find(u"B")->values.front(), u"6");
}

TEST(RequestFields, OfSimilarNamesCostNoMoreThanOthers) {
    const auto time_of = [](bool are_similar) {
        std::string text;
        for (int i = 0; i < 490; ++i) {
            const std::string number = std::to_string(1000 + i);
            text +=
                (are_similar ? std::string(2000, 'x') + number : number + std::string(2000, 'x')) +
                "=1&";
        }
        const std::clock_t begin = std::clock();
        EXPECT_EQ(parse_urlencoded(text).all().size(), 490u);
        return static_cast<double>(std::clock() - begin);
    };
    time_of(true);
    // Compared with each other they cost sixty times as much.
    EXPECT_LT(time_of(true), 10 * time_of(false) + CLOCKS_PER_SEC / 100);
}

}  // namespace
}  // namespace orvo::web
