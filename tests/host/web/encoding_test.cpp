#include "host/web/messages/encoding.h"

#include <gtest/gtest.h>

#include "host/web/messages/local_url.h"

namespace orvo::web {
namespace {

TEST(HtmlEncode, LeavesNothingThatMeansSomethingInHtml) {
    EXPECT_EQ(html_encode(u"<a href=\"x\">'A & B'</a>"),
              u"&lt;a href=&quot;x&quot;&gt;&#39;A &amp; B&#39;&lt;/a&gt;");
    EXPECT_EQ(html_encode(u"plain – täxt"), u"plain – täxt");
    EXPECT_EQ(html_encode_utf8("<é>"), "&lt;é&gt;");
}

TEST(UrlEncode, WritesUtf8BytesAndLeavesOnlyUnreservedCharacters) {
    EXPECT_EQ(url_encode(u"a b&c=d/é~"), u"a+b%26c%3Dd%2F%C3%A9~");
    EXPECT_EQ(url_path_encode(u"/a b/é"), u"/a%20b/%C3%A9");
    EXPECT_EQ(url_encode(u"{1F}"), u"%7B1F%7D");
}

TEST(FormDecoded, TakesWhatIsNoEncodingAsItStands) {
    EXPECT_EQ(form_decoded("a+b%20c%2B"), "a b c+");
    EXPECT_EQ(form_decoded("100%"), "100%");
    EXPECT_EQ(form_decoded("%4"), "%4");
    EXPECT_EQ(form_decoded("%zz%41"), "%zzA");
}

TEST(PathDecoded, RefusesWhatIsNoEncoding) {
    EXPECT_EQ(try_path_decoded("/a%20b+c"), "/a b+c");
    EXPECT_FALSE(try_path_decoded("/%"));
    EXPECT_FALSE(try_path_decoded("/%2"));
    EXPECT_FALSE(try_path_decoded("/%g0"));
}

TEST(IsUtf8, TellsWellFormedBytes) {
    EXPECT_TRUE(is_utf8(""));
    EXPECT_TRUE(is_utf8("é\xF0\x9F\x98\x80"));
    EXPECT_FALSE(is_utf8("\xC3"));
    EXPECT_FALSE(is_utf8("\xC0\xAF"));
    EXPECT_FALSE(is_utf8("\xED\xA0\x80"));
}

TEST(LocalUrl, IsAPathOfThisSite) {
    for (const TextView url : {u"/", u"/account/", u"/a.asp?x=1&y=http://h/", u"/a?u=//h", u"/é"})
        EXPECT_TRUE(is_local_url(url)) << to_utf8(url);
}

TEST(LocalUrl, IsNothingThatBrowsersTakeElsewhere) {
    for (const TextView url : {u"", u"account", u"//evil.example/", u"/\\evil.example",
                               u"\\\\evil.example", u"http://evil.example/", u"javascript:alert(1)",
                               u"/\t/evil.example", u"/a\r\nX: y", u" /a", u"/\n/evil.example"})
        EXPECT_FALSE(is_local_url(url)) << to_utf8(url);
}

}  // namespace
}  // namespace orvo::web
