#include "host/web/intrinsics/response_object.h"

#include <gtest/gtest.h>

#include <limits>

#include "host/web/intrinsics/request_object.h"
#include "host/web/intrinsics/session_object.h"
#include "platform/interfaces/enumerator.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "platform/values/values.h"
#include "tests/host/web/test_site.h"
#include "tests/support/environment.h"

namespace orvo::web {
namespace {

static_assert(slot_of<&Response::Cookies> == 15);
static_assert(slot_of<&Response::Redirect> == 25);
static_assert(slot_of<&Response::Write> == 26);
static_assert(slot_of<&Response::Pics> == 31);
static_assert(slot_of<&Response::put_CacheControl> == 33);
static_assert(slot_of<&WriteCookie::put_Path> == 10);

class ResponseObjectTest : public testing::Test {
protected:
    void write(const Variant& value) { late::call(response_, u"Write", {value}); }
    Text refusal(const std::function<void()>& action) {
        try {
            action();
            return u"nothing was refused";
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.number, 5);
            EXPECT_EQ(failure.source.substr(0, 8), u"Response");
            return failure.description;
        }
    }
    PageAnswer& answer() { return page_->answer; }
    std::string cookie(std::size_t index) { return header_text(*answer().cookies.at(index)); }

    TestSite site_;
    std::shared_ptr<PageContext> page_ = site_.request({.method = "POST", .target = "/p.asp?a=1"});
    Object response_ = make<ResponseObject>(page_).object();
};

TEST_F(ResponseObjectTest, WritesValuesAsText) {
    for (const Variant& value :
         {Variant(u"é "), Variant(1), Variant(2.5), Variant(), Variant::null(), Variant(true)})
        write(value);
    EXPECT_EQ(answer().body, "é 12.5True");
    late::call(response_, u"BinaryWrite", {Variant::bytes(std::string_view("\0\xFF", 2))});
    EXPECT_EQ(answer().body, std::string("é 12.5True\0\xFF", 13));
    late::call(response_, u"Clear");
    EXPECT_EQ(answer().body, "");
}

TEST_F(ResponseObjectTest, WritesWhatHasATextAsTheScriptShowsIt) {
    const auto written = [&](const Variant& value) {
        late::call(response_, u"Clear");
        write(value);
        return answer().body;
    };
    for (const auto& [number, text] : std::initializer_list<std::pair<double, const char*>>{
             {0.1 + 0.2, "0.30000000000000004"},
             {1e21, "1e+21"},
             {1.5e300, "1.5e+300"},
             {123456789012345680000.0, "123456789012345680000"},
             {0.000001, "0.000001"},
             {1.25e-7, "1.25e-7"},
             {-0.0, "0"},
             {-12.5, "-12.5"},
             {std::numeric_limits<double>::quiet_NaN(), "NaN"},
             {-std::numeric_limits<double>::infinity(), "-Infinity"}})
        EXPECT_EQ(written(number), text);
    EXPECT_EQ(written(Values{1, u"two", Variant::null(), Values{3, 4.5}}), "1,two,,3,4.5");
    EXPECT_EQ(written(Values{}), "");
    EXPECT_EQ(written(Date{37623}), "1/2/2003");
    EXPECT_EQ(written(Variant(Object())), "");
    const Object names =
        late::get(make<RequestObject>(page_).object(), u"QueryString").to<Object>();
    EXPECT_EQ(written(names), "a=1") << "an object is its default value";
}

TEST_F(ResponseObjectTest, TheCodePageAndTheLocaleAreWhatTheyAre) {
    late::put(response_, u"CodePage", 65001);
    late::put(response_, u"LCID", 1033);
    EXPECT_EQ(late::get(response_, u"CodePage"), Variant(65001));
    EXPECT_EQ(late::get(response_, u"LCID"), Variant(1033));
    EXPECT_EQ(refusal([&] { late::put(response_, u"CodePage", 1252); }),
              u"Pages are UTF-8; CodePage is 65001 and cannot be 1252");
    EXPECT_EQ(refusal([&] { late::put(response_, u"LCID", 1031); }),
              u"Texts, numbers and dates are formatted the same everywhere; LCID is 1033 and "
              u"cannot be 1031");
    late::call(response_, u"PICS", {u"(PICS-1.1)"});
    EXPECT_EQ(answer().headers, (Headers{{"PICS-Label", "(PICS-1.1)"}}));
}

TEST_F(ResponseObjectTest, AnAnswerHasAnEnd) {
    const Variant half = Variant::bytes(std::string(32 * 1024 * 1024, 'x'));
    late::call(response_, u"BinaryWrite", {half});
    late::call(response_, u"BinaryWrite", {half});
    EXPECT_THROW(write(u"x"), Failure);
}

TEST_F(ResponseObjectTest, SetsACookieTheWayComponentsDo) {
    late::put(response_, u"Cookies", u"{1F-2}", {u"QUENDRAID"});
    late::put(late::get(response_, u"Cookies", {u"quendraid"}).to<Object>(), u"Path", u"/");
    EXPECT_EQ(answer().cookies.size(), 1u);
    EXPECT_EQ(cookie(0), "QUENDRAID=%7B1F-2%7D; Path=/; HttpOnly; SameSite=Lax");
}

TEST_F(ResponseObjectTest, ACookieHasItsAttributesAndKeys) {
    const Object made = late::get(response_, u"Cookies", {u"a"}).to<Object>();
    late::put(made, u"Expires", Date{25569});
    late::put(made, u"Domain", u"example.org");
    late::put(made, u"Path", u"/x");
    late::put(made, u"Secure", true);
    late::put(made, u"HttpOnly", false);
    late::put(made, u"SameSite", u"strict");
    late::put_value(made, u"1", {u"k"});
    late::put_value(made, u"2", {u"l"});
    late::put_value(made, u"3", {u"K"});
    EXPECT_EQ(cookie(0),
              "a=k=3&l=2; Path=/x; Domain=example.org; Expires=Thu, 01 Jan 1970 00:00:00 GMT; "
              "Secure; SameSite=Strict");
    EXPECT_EQ(late::get(made, u"HasKeys"), Variant(true));
    late::put(made, u"Value", u"plain");
    EXPECT_EQ(cookie(0).substr(0, 8), "a=plain;");
    EXPECT_EQ(late::items_of(late::get(response_, u"Cookies").to<Object>()),
              std::vector<Variant>{u"a"});
    EXPECT_EQ(refusal([&] { late::put(made, u"SameSite", u"Sometimes"); }),
              u"SameSite is \"Lax\", \"Strict\" or \"None\", not \"Sometimes\"");
    EXPECT_EQ(refusal([&] { late::put(response_, u"Cookies", u"x", {u""}); }),
              u"A cookie needs a name");
    const Object cookie = late::get(response_, u"Cookies", {u"c"}).to<Object>();
    EXPECT_EQ(refusal([&] { late::put(cookie, u"Path", u"/\r\nX: y"); }),
              u"A cookie's Path cannot have a \";\", a line end or anything beyond ASCII in it");
    EXPECT_EQ(refusal([&] { late::put(cookie, u"Domain", u"a;b"); }),
              u"A cookie's Domain cannot have a \";\", a line end or anything beyond ASCII in it");
    EXPECT_EQ(refusal([&] { late::put(response_, u"Cookies", u"x", {u"OrvoSession"}); }),
              u"The session's cookie is the server's own business");
}

TEST_F(ResponseObjectTest, ACookieOfATlsPageIsSecure) {
    page_ = site_.request({.target = "/p.asp", .is_secure = true});
    const Object response = make<ResponseObject>(page_).object();
    late::put(response, u"Cookies", u"v", {u"c"});
    EXPECT_EQ(cookie(0), "c=v; Path=/; Secure; HttpOnly; SameSite=Lax");
}

TEST_F(ResponseObjectTest, HasAStatus) {
    EXPECT_EQ(late::get(response_, u"Status"), Variant(u"200 OK"));
    late::put(response_, u"Status", u"404 Not here");
    EXPECT_EQ(answer().status, 404);
    EXPECT_EQ(late::get(response_, u"Status"), Variant(u"404 Not here"));
    for (const char16_t* status : {u"", u"OK", u"99", u"600 x", u"4040", u"199", u"2 0"})
        EXPECT_EQ(refusal([&] { late::put(response_, u"Status", status); }),
                  u"A status is like \"404 Not Found\", from 200 to 599; this is \"" +
                      Text(status) + u"\"");
}

TEST_F(ResponseObjectTest, HeadersCannotBreakOutOfTheirLine) {
    late::call(response_, u"AddHeader", {u"X-Test", u"välue"});
    EXPECT_EQ(answer().headers, (Headers{{"X-Test", "välue"}}));
    EXPECT_EQ(refusal([&] {
                  late::call(response_, u"AddHeader", {u"X", u"a\r\nSet-Cookie: b"});
              }),
              u"The header has a control character, such as the end of a line");
    EXPECT_EQ(refusal([&] {
                  late::call(response_, u"AddHeader", {u"X:Y", u"a"});
              }),
              u"\"X:Y\" is no name of a header");
    EXPECT_EQ(refusal([&] {
                  late::call(response_, u"AddHeader", {u"content-LENGTH", u"1"});
              }),
              u"The header content-LENGTH is the server's own business");
    EXPECT_EQ(refusal([&] { late::put(response_, u"ContentType", u"text/html\nX: y"); }),
              u"ContentType has a control character, such as the end of a line");
    EXPECT_EQ(refusal([&] { late::put(response_, u"CharSet", u"iso-8859-1"); }),
              u"Pages are sent as UTF-8; CharSet cannot be \"iso-8859-1\"");
    EXPECT_EQ(refusal([&] { late::call(response_, u"Redirect", {u"/a\r\nX: y"}); }),
              u"The address has a control character, such as the end of a line");
    EXPECT_EQ(refusal([&] { late::call(response_, u"Redirect", {u""}); }),
              u"Redirect needs an address");
}

TEST_F(ResponseObjectTest, HeadersThatArePropertiesAreThesePropertiesWhoeverSetsThem) {
    late::call(response_, u"AddHeader", {u"content-type", u"application/json"});
    late::call(response_, u"AddHeader", {u"Cache-Control", u"public, max-age=60"});
    EXPECT_EQ(late::get(response_, u"ContentType"), Variant(u"application/json"));
    EXPECT_EQ(late::get(response_, u"CacheControl"), Variant(u"public, max-age=60"));
    const HttpResponse sent = response_of(answer());
    EXPECT_EQ(sent.content_type, "application/json; charset=utf-8");
    EXPECT_EQ(sent.headers, (Headers{{"Cache-Control", "public, max-age=60"}}));
}

TEST_F(ResponseObjectTest, DatesOfAPageAreLocalAndGoOutInGreenwichTime) {
    const Environment zone("TZ", "XXX-5:30YYY-6:30,M6.1.0,M8.1.0");
    const Date winter = date_from_parts({2027, 3, 1, 2, 0, 0});
    late::put(late::get(response_, u"Cookies", {u"a"}).to<Object>(), u"Expires", winter);
    EXPECT_EQ(cookie(0),
              "a=; Path=/; Expires=Sun, 28 Feb 2027 20:30:00 GMT; HttpOnly; SameSite=Lax");
    const Date summer = date_from_parts({2027, 7, 1, 2, 0, 0});
    late::put(response_, u"ExpiresAbsolute", summer);
    EXPECT_EQ(late::get(response_, u"ExpiresAbsolute"), Variant(summer));
    EXPECT_EQ(response_of(answer()).headers.front(),
              (std::pair<std::string, std::string>("Expires", "Wed, 30 Jun 2027 19:30:00 GMT")));
}

TEST_F(ResponseObjectTest, TheLastDateOfAllMayBeSaid) {
    const Environment zone("TZ", "XXX8");
    late::put(response_, u"ExpiresAbsolute", date_from_parts({9999, 12, 31, 23, 59, 59}));
    EXPECT_EQ(response_of(answer()).headers.front().second, "Fri, 31 Dec 9999 23:59:59 GMT");
}

TEST_F(ResponseObjectTest, RedirectsAfterAFormSoThatTheBrowserAsksAnew) {
    write(u"written before");
    late::call(response_, u"Redirect", {u"/new page?q=é"});
    EXPECT_EQ(answer().status, 303);
    EXPECT_EQ(answer().body, "");
    EXPECT_EQ(answer().headers, (Headers{{"Location", "/new%20page?q=%C3%A9"}}));
    page_ = site_.request({.target = "/p.asp"});
    late::call(make<ResponseObject>(page_).object(), u"Redirect", {u"/x"});
    EXPECT_EQ(answer().status, 302);
}

// What a browser gets meanwhile.
class SeenStream : public AnswerStream {
public:
    void begin(const HttpResponse& head) override {
        EXPECT_FALSE(has_begun_);
        has_begun_ = true;
        this->head = head;
    }
    void send(std::string piece) override {
        EXPECT_TRUE(has_begun_);
        pieces += '[' + piece + ']';
    }
    bool has_begun() const override { return has_begun_; }
    std::uint64_t length() const override { return pieces.size(); }
    bool is_connected() const override { return is_connected_; }

    HttpResponse head;
    std::string pieces;
    bool has_begun_ = false;
    bool is_connected_ = true;
};

class FlushedResponseTest : public ResponseObjectTest {
protected:
    FlushedResponseTest() {
        page_ = site_.request({.target = "/p.asp", .stream = &stream_});
        response_ = make<ResponseObject>(page_).object();
    }
    void flush() { late::call(response_, u"Flush"); }

    SeenStream stream_;
};

TEST_F(FlushedResponseTest, SendsWhatThereIsBehindTheHead) {
    late::put(response_, u"Status", u"404 Not Found");
    late::put(response_, u"Cookies", u"v", {u"c"});
    page_->need_session();
    page_->complete_head = [](HttpResponse& head) { head.headers.emplace_back("X-Site", "1"); };
    write(u"one");
    flush();
    EXPECT_EQ(stream_.head.status, 404);
    EXPECT_EQ(stream_.head.content_type, "text/html; charset=utf-8");
    EXPECT_EQ(stream_.head.body, "");
    std::string cookies;
    for (const auto& [name, value] : stream_.head.headers)
        if (name == "Set-Cookie") cookies += value.substr(0, value.find('=')) + ' ';
    EXPECT_EQ(cookies, "c orvosession ") << "the session's is settled with the head";
    EXPECT_EQ(stream_.head.headers.back(), (std::pair<std::string, std::string>("X-Site", "1")));
    write(u"two");
    EXPECT_EQ(stream_.pieces, "[one]");
    flush();
    flush();
    write(u"lost");
    late::call(response_, u"Clear");
    write(u"rest");
    EXPECT_EQ(stream_.pieces, "[one][two]");
    const std::size_t told = page_->answer.cookies.size();
    page_->finish();
    EXPECT_EQ(page_->answer.cookies.size(), told) << "the browser is told of its session once";
    EXPECT_EQ(response_of(page_->answer).body, "rest");
}

TEST_F(FlushedResponseTest, WhatStandsInFrontOfTheBodyIsSettledByThen) {
    const Object cookie = late::get(response_, u"Cookies", {u"known"}).to<Object>();
    flush();
    const auto refusal = [&](const std::function<void()>& action) {
        try {
            action();
            return Text(u"nothing was refused");
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.number, error_number(0x80004005));
            return failure.description;
        }
    };
    const Object session = make<SessionObject>(page_).object();
    for (const std::function<void()>& action : std::initializer_list<std::function<void()>>{
             [&] { late::put(response_, u"Status", u"500 x"); },
             [&] { late::put(response_, u"ContentType", u"text/plain"); },
             [&] { late::put(response_, u"CharSet", u"utf-8"); },
             [&] { late::put(response_, u"CacheControl", u"public"); },
             [&] { late::put(response_, u"Expires", 1); },
             [&] { late::put(response_, u"ExpiresAbsolute", Date{40000}); },
             [&] { late::put(response_, u"Buffer", false); },
             [&] { late::put(response_, u"Cookies", u"v", {u"c"}); },
             [&] { late::put(cookie, u"Path", u"/x"); }, [&] { late::put(cookie, u"Value", u"x"); },
             [&] { late::put(cookie, u"SameSite", u"None"); },
             [&] {
                 late::call(response_, u"AddHeader", {u"X", u"y"});
             },
             [&] { late::call(response_, u"PICS", {u"x"}); },
             [&] { late::call(response_, u"Redirect", {u"/x"}); },
             [&] { late::put_value(session, 1, {u"new"}); }})
        EXPECT_EQ(refusal(action),
                  u"The answer's head has been sent (Response.Flush): headers, cookies, the status "
                  u"and a new session come before that");
    EXPECT_EQ(site_.sessions.counts().live, 0u);
    late::put(response_, u"Buffer", true);
}

TEST_F(FlushedResponseTest, ALoginComesBeforeTheHeadToo) {
    page_->need_session();
    flush();
    const Object session = make<SessionObject>(page_).object();
    late::put_value(session, 1, {u"other"});
    EXPECT_THROW(late::put_value(session, u"G", {u"QUENDRAID"}), Failure);
    EXPECT_TRUE(late::value_of(session, {u"QUENDRAID"}).is_empty());
}

TEST_F(FlushedResponseTest, WithoutABufferEverythingIsSentAtOnce) {
    EXPECT_EQ(late::get(response_, u"Buffer"), Variant(true));
    write(u"before");
    late::put(response_, u"Buffer", false);
    write(u"one");
    write(u"two");
    EXPECT_EQ(stream_.pieces, "[before][one][two]");
    late::call(response_, u"Clear");
    EXPECT_EQ(response_of(page_->answer).body, "");
}

TEST_F(FlushedResponseTest, KnowsWhetherTheBrowserIsThere) {
    EXPECT_EQ(late::call(response_, u"IsClientConnected"), Variant(true));
    stream_.is_connected_ = false;
    EXPECT_EQ(late::call(response_, u"IsClientConnected"), Variant(false));
}

TEST_F(FlushedResponseTest, TheWholeAnswerHasABound) {
    const Variant half = Variant::bytes(std::string(32 * 1024 * 1024, 'x'));
    late::call(response_, u"BinaryWrite", {half});
    flush();
    late::call(response_, u"BinaryWrite", {half});
    flush();
    EXPECT_THROW(write(u"x"), Failure);
}

TEST_F(ResponseObjectTest, WhereNoPieceCanBeSentFlushedTextIsKeptAllTheSame) {
    write(u"one");
    late::call(response_, u"Flush");
    write(u"two");
    late::call(response_, u"Clear");
    write(u"three");
    EXPECT_THROW(late::put(response_, u"Status", u"404 x"), Failure);
    EXPECT_EQ(response_of(answer()).body, "onethree");
}

TEST_F(ResponseObjectTest, GoesOutAsTheAnswer) {
    late::put(response_, u"ContentType", u"application/json");
    late::put(response_, u"Cookies", u"v", {u"c"});
    write(u"{}");
    const HttpResponse plain = response_of(answer());
    EXPECT_EQ(plain.status, 200);
    EXPECT_EQ(plain.content_type, "application/json; charset=utf-8");
    EXPECT_EQ(plain.headers, (Headers{{"Cache-Control", "no-store"},
                                      {"Set-Cookie", "c=v; Path=/; HttpOnly; SameSite=Lax"}}));
    EXPECT_EQ(plain.body, "{}");
    late::put(response_, u"Expires", 10);
    late::put(response_, u"ContentType", u"image/png");
    const HttpResponse kept = response_of(answer());
    EXPECT_EQ(kept.content_type, "image/png");
    EXPECT_EQ(kept.headers.at(1),
              (std::pair<std::string, std::string>("Cache-Control", "private, max-age=600")));
    late::put(response_, u"CacheControl", u"public");
    EXPECT_EQ(response_of(answer()).headers.at(1).second, "public");
}

}  // namespace
}  // namespace orvo::web
