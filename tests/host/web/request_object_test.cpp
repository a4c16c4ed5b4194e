#include "host/web/intrinsics/request_object.h"

#include <gtest/gtest.h>

#include "platform/interfaces/enumerator.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "tests/host/web/test_site.h"

namespace orvo::web {
namespace {

// Slots are binary interface.
static_assert(slot_of<&Request::Item> == 7);
static_assert(slot_of<&Request::ServerVariables> == 11);
static_assert(slot_of<&Request::Cookies> == 13);
static_assert(slot_of<&ReadCookie::Key> == 11);
static_assert(slot_of<&RequestDictionary::Key> == 10);

class RequestObjectTest : public testing::Test {
protected:
    void send(HttpRequest request) {
        page_ = site_.request(std::move(request));
        request_ = make<RequestObject>(page_).object();
    }
    // `Request.MEMBER(key)`, and the default value of what that is.
    Text text(TextView member, const Variant& key) {
        const Variant value = late::get(request_, member, {key});
        return value.to<Text>();
    }
    Object object(TextView member) { return late::get(request_, member).to<Object>(); }
    std::vector<Variant> names(TextView member) { return late::items_of(object(member)); }

    TestSite site_;
    std::shared_ptr<PageContext> page_;
    Object request_;
};

HttpRequest form(std::string body) {
    return {.method = "POST",
            .target = "/p.asp?q=1&both=query",
            .headers = {{"Content-Type", "application/x-www-form-urlencoded"},
                        {"Cookie", "QUENDRAID=%7B1F%7D; keys=a=1&b=two; both=cookie"},
                        {"Host", "shop.example:8080"},
                        {"X-Odd-Name", "odd"}},
            .body = RequestBody(std::move(body)),
            .remote_address = "192.0.2.7",
            .remote_port = 50123,
            .local_address = "192.0.2.1",
            .local_port = 8080,
            .is_secure = true,
            .id = "yN1"};
}

TEST_F(RequestObjectTest, HasFieldsByNameWithoutRegardToCase) {
    send(form("user=jsmith&n=1&n=2&N=3&empty="));
    EXPECT_EQ(text(u"Form", u"USER"), u"jsmith");
    EXPECT_EQ(text(u"Form", u"n"), u"1, 2, 3");
    EXPECT_EQ(text(u"Form", u"empty"), u"");
    EXPECT_EQ(text(u"Form", u"none"), u"");
    EXPECT_EQ(text(u"querystring", u"q"), u"1");
}

TEST_F(RequestObjectTest, TellsHowOftenAFieldCameAndEachOfItsValues) {
    send(form("n=1&n=2"));
    const Object values = late::get(request_, u"Form", {u"n"}).to<Object>();
    EXPECT_EQ(late::get(values, u"Count"), Variant(2));
    EXPECT_EQ(late::value_of(values, {2}), Variant(u"2"));
    EXPECT_EQ(late::items_of(values), (std::vector<Variant>{u"1", u"2"}));
    EXPECT_THROW(late::value_of(values, {3}), Failure);
    EXPECT_THROW(late::value_of(values, {0}), Failure);
    const Object none = late::get(request_, u"Form", {u"none"}).to<Object>();
    EXPECT_EQ(late::get(none, u"Count"), Variant(0));
}

TEST_F(RequestObjectTest, HasFieldsByNumberAndNamesInTheirOrder) {
    send(form("b=1&a=2"));
    EXPECT_EQ(text(u"Form", 1), u"1");
    EXPECT_EQ(text(u"Form", 2), u"2");
    EXPECT_EQ(late::get(object(u"Form"), u"Key", {2}), Variant(u"a"));
    EXPECT_EQ(late::get(object(u"Form"), u"Count"), Variant(2));
    EXPECT_EQ(names(u"Form"), (std::vector<Variant>{u"b", u"a"}));
    EXPECT_THROW(text(u"Form", 3), Failure);
}

TEST_F(RequestObjectTest, HasTheWholeTextsAsTheyCame) {
    send(form("user=a%20b"));
    EXPECT_EQ(late::value_of(object(u"Form")), Variant(u"user=a%20b"));
    EXPECT_EQ(late::value_of(object(u"QueryString")), Variant(u"q=1&both=query"));
    EXPECT_EQ(late::get(request_, u"TotalBytes"), Variant(10));
}

TEST_F(RequestObjectTest, ReadsCookiesAsTextAndByTheirKeys) {
    send(form(""));
    EXPECT_EQ(text(u"Cookies", u"quendraid"), u"{1F}");
    EXPECT_EQ(text(u"Cookies", u"none"), u"");
    EXPECT_EQ(text(u"Cookies", u"keys"), u"a=1&b=two");
    const Object cookie = late::get(request_, u"Cookies", {u"keys"}).to<Object>();
    EXPECT_EQ(late::get(cookie, u"HasKeys"), Variant(true));
    EXPECT_EQ(late::value_of(cookie, {u"B"}), Variant(u"two"));
    EXPECT_EQ(late::value_of(cookie, {u"c"}), Variant(u""));
    EXPECT_EQ(late::items_of(cookie), (std::vector<Variant>{u"a", u"b"}));
    EXPECT_EQ(names(u"Cookies"), (std::vector<Variant>{u"QUENDRAID", u"keys", u"both"}));
}

TEST_F(RequestObjectTest, EachKeyOfACookieComesBackAsItWasSet) {
    const std::string keyed =
        header_text({.name = u"keyed",
                     .keys = {{u"name", u"x&admin=1"}, {u"100%25", u"50%41+"}, {u"\"", u"\""}}});
    const std::string plain = header_text({.name = u"plain", .value = u"a=1&b=2"});
    const auto sent = [](const std::string& header) { return header.substr(0, header.find(';')); };
    send({.target = "/p.asp", .headers = {{"Cookie", sent(keyed) + "; " + sent(plain)}}});
    const Object cookie = late::get(request_, u"Cookies", {u"KEYED"}).to<Object>();
    EXPECT_EQ(late::items_of(cookie), (std::vector<Variant>{u"name", u"100%25", u"\""}));
    EXPECT_EQ(late::value_of(cookie, {u"name"}), Variant(u"x&admin=1"));
    EXPECT_EQ(late::value_of(cookie, {u"admin"}), Variant(u"")) << "a value is no key";
    EXPECT_EQ(late::value_of(cookie, {u"100%25"}), Variant(u"50%41+"));
    EXPECT_EQ(late::value_of(late::value_of(request_, {u"keyed"}).to<Object>(), {u"admin"}),
              Variant(u""));
    const Object text = late::get(request_, u"Cookies", {u"plain"}).to<Object>();
    EXPECT_EQ(late::get(text, u"HasKeys"), Variant(false));
    EXPECT_EQ(late::value_of(text), Variant(u"a=1&b=2"));
}

TEST_F(RequestObjectTest, AnItemIsLookedForInTheQueryFirst) {
    send(form("both=form&f=form"));
    const auto item = [&](const char16_t* name) {
        return late::value_of(request_, {name}).to<Text>();
    };
    EXPECT_EQ(item(u"both"), u"query");
    EXPECT_EQ(item(u"f"), u"form");
    EXPECT_EQ(item(u"quendraid"), u"{1F}");
    EXPECT_EQ(item(u"REQUEST_METHOD"), u"POST");
    EXPECT_EQ(item(u"none"), u"");
}

TEST_F(RequestObjectTest, ServerVariablesTellOfTheRequest) {
    send(form("x=1"));
    EXPECT_EQ(text(u"ServerVariables", u"REQUEST_METHOD"), u"POST");
    EXPECT_EQ(text(u"ServerVariables", u"script_name"), u"/p.asp");
    EXPECT_EQ(text(u"ServerVariables", u"QUERY_STRING"), u"q=1&both=query");
    EXPECT_EQ(text(u"ServerVariables", u"REMOTE_ADDR"), u"192.0.2.7");
    EXPECT_EQ(text(u"ServerVariables", u"REMOTE_PORT"), u"50123");
    EXPECT_EQ(text(u"ServerVariables", u"SERVER_NAME"), u"shop.example");
    EXPECT_EQ(text(u"ServerVariables", u"SERVER_PORT"), u"8080");
    EXPECT_EQ(text(u"ServerVariables", u"HTTPS"), u"on");
    EXPECT_EQ(text(u"ServerVariables", u"REQUEST_ID"), u"yN1");
    EXPECT_EQ(text(u"ServerVariables", u"CONTENT_LENGTH"), u"3");
    EXPECT_EQ(text(u"ServerVariables", u"HTTP_X_ODD_NAME"), u"odd");
    EXPECT_EQ(text(u"ServerVariables", u"HTTP_COOKIE"), u"") << "Cookies has them";
    EXPECT_EQ(text(u"ServerVariables", u"NONE"), u"");
}

TEST_F(RequestObjectTest, ServerVariablesTellWhereThePageIsAndWhoAsks) {
    send({.target = "/sub/p.asp?x=1",
          .headers = {{"Host", "a"},
                      {"cookie", "secret=1"},
                      {"Authorization", "Basic secret"},
                      {"Accept", "*/*"}}});
    const Text root = from_utf8(site_.root.string());
    EXPECT_EQ(text(u"ServerVariables", u"PATH_TRANSLATED"), root + u"/sub/p.asp");
    EXPECT_EQ(text(u"ServerVariables", u"APPL_PHYSICAL_PATH"), root + u"/");
    EXPECT_EQ(text(u"ServerVariables", u"APPL_MD_PATH"), u"/LM/W3SVC/1/ROOT");
    EXPECT_EQ(text(u"ServerVariables", u"GATEWAY_INTERFACE"), u"CGI/1.1");
    EXPECT_EQ(text(u"ServerVariables", u"SERVER_PORT_SECURE"), u"0");
    EXPECT_EQ(text(u"ServerVariables", u"ALL_HTTP"), u"HTTP_HOST:a\nHTTP_ACCEPT:*/*\n");
    EXPECT_EQ(text(u"ServerVariables", u"ALL_RAW"), u"Host: a\r\nAccept: */*\r\n");
    EXPECT_EQ(text(u"ServerVariables", u"HTTP_AUTHORIZATION"), u"");
    EXPECT_EQ(text(u"ServerVariables", u"LOGON_USER"), u"");
    EXPECT_EQ(text(u"ServerVariables", u"AUTH_TYPE"), u"");
    page_->user = u"jsmith";
    for (const char16_t* name : {u"LOGON_USER", u"AUTH_USER", u"REMOTE_USER"})
        EXPECT_EQ(text(u"ServerVariables", name), u"jsmith");
    EXPECT_EQ(text(u"ServerVariables", u"AUTH_TYPE"), u"Forms");
}

TEST_F(RequestObjectTest, ServerVariablesPassOverHeadersWithAnUnderscore) {
    send({.target = "/p.asp",
          .headers = {{"X_Remote_User", "forged"}, {"X-Remote_User", "forged"}, {"Host", "a"}}});
    EXPECT_EQ(text(u"ServerVariables", u"HTTP_X_REMOTE_USER"), u"");
    EXPECT_EQ(text(u"ServerVariables", u"ALL_HTTP"), u"HTTP_HOST:a\n");
    EXPECT_EQ(text(u"ServerVariables", u"ALL_RAW"), u"Host: a\r\n");
    send({.target = "/p.asp", .headers = {{"X_Remote_User", "forged"}, {"X-Remote-User", "real"}}});
    EXPECT_EQ(text(u"ServerVariables", u"HTTP_X_REMOTE_USER"), u"real");
}

TEST_F(RequestObjectTest, OutlivesItsPage) {
    send(form("user=jsmith"));
    const Object form = object(u"Form");
    request_ = {};
    page_.reset();
    EXPECT_EQ(late::value_of(form, {u"user"}).to<Text>(), u"jsmith");
}

}  // namespace
}  // namespace orvo::web
