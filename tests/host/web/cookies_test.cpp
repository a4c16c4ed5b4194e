#include "host/web/messages/cookies.h"

#include <gtest/gtest.h>

#include "platform/values/failure.h"

namespace orvo::web {
namespace {

TEST(CookiesOfARequest, AreReadByName) {
    HttpRequest request;
    request.headers = {{"Cookie", "QUENDRAID=%7B1F%7D; other=a+b ;  x=\"q\"; =none; bare"},
                       {"cookie", "third=3; Other=second"}};
    const RequestFields cookies = cookies_of(request);
    ASSERT_EQ(cookies.all().size(), 4u);
    EXPECT_EQ(cookies.find(u"quendraid")->values.front(), u"{1F}");
    EXPECT_EQ(cookies.find(u"other")->values, std::vector<Text>{u"a b"}) << "the first one counts";
    EXPECT_EQ(cookies.find(u"x")->values.front(), u"q");
    EXPECT_EQ(cookies.find(u"third")->values.front(), u"3");
    EXPECT_EQ(cookies.find(u"bare"), nullptr);
}

TEST(CookiesOfARequest, OfOneExactNameAreNotTakenUnderAnotherSpelling) {
    HttpRequest request;
    request.headers = {{"Cookie", "__%48ost-s=1; __host-s=2; __Host-s%20=3;  __Host-s=%41+b"},
                       {"Cookie", "__Host-s=5"}};
    EXPECT_EQ(try_exact_cookie(request, "__Host-s"), "%41+b");
    EXPECT_EQ(try_exact_cookie(request, "__Host-t"), std::nullopt);
}

TEST(CookiesOfARequest, AreNotTakenInAnyNumber) {
    std::string many;
    for (int i = 0; i < 501; ++i) many += "a=1;";
    HttpRequest request;
    request.headers = {{"Cookie", many}};
    EXPECT_THROW(cookies_of(request), Refusal);
}

TEST(OutgoingCookie, IsForThisSiteAndNoScriptUnlessAPageSaysOtherwise) {
    OutgoingCookie cookie{.name = u"QUENDRAID", .value = u"{1F-2}"};
    EXPECT_EQ(header_text(cookie), "QUENDRAID=%7B1F-2%7D; Path=/; HttpOnly; SameSite=Lax");
    cookie.is_secure = true;
    cookie.is_http_only = false;
    cookie.same_site = u"Strict";
    cookie.path = u"/shop";
    cookie.domain = u"example.org";
    cookie.expires = date_from_parts({2026, 11, 21, 2, 32, 11});
    EXPECT_EQ(header_text(cookie),
              "QUENDRAID=%7B1F-2%7D; Path=/shop; Domain=example.org; "
              "Expires=Sat, 21 Nov 2026 02:32:11 GMT; Secure; SameSite=Strict");
}

TEST(OutgoingCookie, WithKeysHasThemInPlaceOfAValue) {
    OutgoingCookie cookie{.name = u"c", .value = u"v", .keys = {{u"a", u"1"}, {u"b&", u"2="}}};
    EXPECT_EQ(header_text(cookie), "c=a=1&b%26=2%3D; Path=/; HttpOnly; SameSite=Lax");
}

TEST(OutgoingCookie, CannotBreakOutOfItsHeader) {
    OutgoingCookie cookie{.name = u"a;b\r\n", .value = u"x\r\nSet-Cookie: y=1; z"};
    EXPECT_EQ(header_text(cookie),
              "a%3Bb%0D%0A=x%0D%0ASet-Cookie%3A+y%3D1%3B+z; Path=/; HttpOnly; SameSite=Lax");
    for (const Text text : {u"/; Domain=evil.example", u"/\r\nX: y", u"/\n", u"/\u00e4", u"/\t"}) {
        OutgoingCookie path{.name = u"c", .path = text};
        EXPECT_THROW(header_text(path), Failure) << to_utf8(text);
        OutgoingCookie domain{.name = u"c", .domain = text};
        EXPECT_THROW(header_text(domain), Failure) << to_utf8(text);
    }
    EXPECT_EQ(header_text({.name = u"c", .path = u"/a b,c"}),
              "c=; Path=/a b,c; HttpOnly; SameSite=Lax");
}

TEST(HttpDate, IsWrittenInGreenwichTime) {
    EXPECT_EQ(http_date(date_from_parts({1970, 1, 1})), "Thu, 01 Jan 1970 00:00:00 GMT");
    EXPECT_EQ(http_date(date_from_parts({2024, 2, 29, 23, 59, 59})),
              "Thu, 29 Feb 2024 23:59:59 GMT");
    EXPECT_EQ(http_date(date_from_parts({1899, 12, 30})), "Sat, 30 Dec 1899 00:00:00 GMT");
}

}  // namespace
}  // namespace orvo::web
