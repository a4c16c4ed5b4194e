#include "host/web/intrinsics/session_object.h"

#include <gtest/gtest.h>

#include "host/web/intrinsics/request_object.h"
#include "platform/interfaces/enumerator.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "platform/values/values.h"
#include "tests/host/web/test_site.h"

namespace orvo::web {
namespace {

static_assert(slot_of<&Session::Value> == 8);
static_assert(slot_of<&Session::Abandon> == 13);
static_assert(slot_of<&Session::put_CodePage> == 15);
static_assert(slot_of<&Session::LCID> == 16);
static_assert(slot_of<&Session::StaticObjects> == 18);
static_assert(slot_of<&Session::Contents> == 19);
static_assert(slot_of<&Application::StaticObjects> == 12);
static_assert(slot_of<&Application::Lock> == 10);
static_assert(slot_of<&Application::Contents> == 13);
static_assert(slot_of<&VariantDictionary::RemoveAll> == 14);

// A browser that keeps the session's cookie from one request to the next.
class SessionObjectTest : public testing::Test {
protected:
    void begin(bool is_secure = false) {
        HttpRequest request{.target = "/p.asp", .is_secure = is_secure};
        if (!cookie_.empty()) request.headers = {{"Cookie", cookie_}};
        page_ = site_.request(std::move(request));
        session_ = make<SessionObject>(page_).object();
        application_ = make<ApplicationObject>(page_).object();
    }
    // Answers what the browser is told of the session.
    std::string end() {
        page_->finish();
        std::string header;
        for (const auto& cookie : page_->answer.cookies) header += header_text(*cookie);
        if (!header.empty()) cookie_ = header.substr(0, header.find(';'));
        session_ = application_ = {};
        page_.reset();
        return header;
    }
    Variant value(const char16_t* name) { return late::value_of(session_, {name}); }
    void put(const char16_t* name, const Variant& value) {
        late::put_value(session_, value, {name});
    }

    TestSite site_;
    std::string cookie_;
    std::shared_ptr<PageContext> page_;
    Object session_, application_;
};

TEST_F(SessionObjectTest, ReadingMakesNoSession) {
    begin();
    EXPECT_TRUE(value(u"x").is_empty());
    EXPECT_EQ(late::call(session_, u"IsFormToken", {u""}), Variant(false));
    late::call(session_, u"Abandon");
    const Object contents = late::get(session_, u"Contents").to<Object>();
    late::call(contents, u"Remove", {u"x"});
    EXPECT_EQ(late::get(contents, u"Count"), Variant(0));
    EXPECT_EQ(end(), "");
    EXPECT_EQ(site_.sessions.counts().live, 0u);
}

TEST_F(SessionObjectTest, HasTheMembersThatNothingFollowsFrom) {
    begin();
    late::put(session_, u"LCID", 2048);
    late::put(session_, u"CodePage", 65001);
    EXPECT_EQ(late::get(session_, u"LCID"), Variant(1033));
    EXPECT_THROW(late::put(session_, u"LCID", 1031), Failure);
    EXPECT_THROW(late::put(session_, u"CodePage", 1252), Failure);
    for (const Object& owner : {session_, application_}) {
        const Object objects = late::get(owner, u"StaticObjects").to<Object>();
        EXPECT_EQ(late::get(objects, u"Count"), Variant(0));
        EXPECT_TRUE(late::value_of(objects, {u"any"}).is_empty());
        EXPECT_THROW(late::put_value(objects, 1, {u"any"}), Failure);
    }
    EXPECT_EQ(end(), "");
}

TEST_F(SessionObjectTest, AValueMakesTheSessionAndItsCookie) {
    begin();
    put(u"Name", u"one");
    const std::string header = end();
    EXPECT_EQ(header.substr(0, 12), "orvosession=");
    EXPECT_EQ(header.substr(12 + 43), "; Path=/; HttpOnly; SameSite=Lax");
    begin();
    EXPECT_EQ(value(u"name"), Variant(u"one"));
    put(u"NAME", 2);
    EXPECT_EQ(end(), "") << "the browser has the cookie already";
    begin();
    EXPECT_EQ(value(u"Name"), Variant(2));
}

TEST_F(SessionObjectTest, UnderTlsTheCookieIsOfThisHostOnly) {
    begin(true);
    put(u"x", 1);
    const std::string header = end();
    EXPECT_EQ(header.substr(0, 19), "__Host-orvosession=");
    EXPECT_EQ(header.substr(19 + 43), "; Path=/; Secure; HttpOnly; SameSite=Lax");
}

TEST_F(SessionObjectTest, AForgedIdentifierIsNotAdopted) {
    cookie_ = "orvosession=AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA";
    begin();
    put(u"x", 1);
    const std::string header = end();
    EXPECT_EQ(header.find("AAAAAAAAAAAAAAAA"), std::string::npos);
    EXPECT_EQ(site_.sessions.counts().live, 1u);
}

TEST_F(SessionObjectTest, NoOtherSpellingOfTheCookiesNamePassesForIt) {
    begin(true);
    put(u"x", 1);
    end();
    const std::string id = cookie_.substr(cookie_.find('=') + 1);
    for (const char* name : {"__%48ost-orvosession", "__host-orvosession", "__Host-ORVOSESSION"}) {
        cookie_ = std::string(name) + "=" + id;
        begin(true);
        EXPECT_TRUE(value(u"x").is_empty()) << name;
        end();
        cookie_ += "; __Host-orvosession=" + id;
        begin(true);
        EXPECT_EQ(value(u"x"), Variant(1)) << name;
        end();
    }
}

TEST_F(SessionObjectTest, ALoginMakesTheFormTokensOfBeforeWorthless) {
    begin();
    const Text before = late::get(session_, u"FormToken").to<Text>();
    end();
    begin();
    put(u"QUENDRAID", u"{1F}");
    const Text after = late::get(session_, u"FormToken").to<Text>();
    EXPECT_NE(after, before) << "a form that the login's own page writes is good";
    end();
    begin();
    EXPECT_EQ(late::call(session_, u"IsFormToken", {before}), Variant(false));
    EXPECT_EQ(late::call(session_, u"IsFormToken", {after}), Variant(true));
}

TEST_F(SessionObjectTest, ALoginGivesTheSessionANewIdentifier) {
    begin();
    put(u"cart", u"full");
    end();
    const std::string before = cookie_;
    begin();
    put(u"QUENDRAID", u"{1F}");
    put(u"REMOTE_ACCOUNT", u"cn=jsmith,ou=Users,o=Shop");
    EXPECT_NE(end(), "");
    EXPECT_NE(cookie_, before);
    begin();
    EXPECT_EQ(value(u"cart"), Variant(u"full"));
    put(u"other", 1);
    EXPECT_EQ(end(), "") << "the login stayed the same";
    const std::string first_login = cookie_;
    begin();
    put(u"REMOTE_ACCOUNT", u"cn=jones,ou=Users,o=Shop");
    EXPECT_NE(end(), "");
    EXPECT_NE(cookie_, first_login);
    cookie_ = before;
    begin();
    EXPECT_TRUE(value(u"cart").is_empty()) << "the identifier of before the login opens nothing";
}

TEST_F(SessionObjectTest, AnAbandonedSessionEndsWithItsPage) {
    begin();
    put(u"x", 1);
    end();
    begin();
    late::call(session_, u"Abandon");
    EXPECT_EQ(value(u"x"), Variant(1)) << "until the page has ended";
    EXPECT_EQ(end(),
              "orvosession=; Path=/; Expires=Thu, 01 Jan 1970 00:00:00 GMT; HttpOnly; "
              "SameSite=Lax");
    EXPECT_EQ(site_.sessions.counts().live, 0u);
}

TEST_F(SessionObjectTest, KeepsNoObjectsOfThePageAndNoMoreThanAMegabyte) {
    begin();
    try {
        put(u"me", session_);
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 5);
        EXPECT_EQ(failure.source, u"Session");
    }
    put(u"large", Text(400'000, u'x'));
    try {
        put(u"larger", Text(400'000, u'x'));
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.description, u"A session keeps at most one megabyte");
    }
    EXPECT_EQ(value(u"large").to<Text>().size(), 400'000u);
    EXPECT_TRUE(value(u"larger").is_empty());
}

TEST_F(SessionObjectTest, AFieldOfAFormThatIsPutIsItsText) {
    page_ = site_.request({.target = "/p.asp?user=jsmith"});
    session_ = make<SessionObject>(page_).object();
    const Variant field = late::get(make<RequestObject>(page_).object(), u"QueryString", {u"user"});
    EXPECT_TRUE(field.is_object());
    put(u"REMOTE_USER", field);
    EXPECT_EQ(value(u"REMOTE_USER"), Variant(u"jsmith"));
}

TEST_F(SessionObjectTest, HasATimeoutAndATextThatIsNotItsIdentifier) {
    begin();
    EXPECT_EQ(late::get(session_, u"Timeout"), Variant(20));
    EXPECT_EQ(site_.sessions.counts().live, 0u) << "reading it makes none";
    late::put(session_, u"Timeout", 5);
    EXPECT_EQ(late::get(session_, u"SessionID"), Variant(u"1"));
    EXPECT_THROW(late::put(session_, u"Timeout", 0), Failure);
    EXPECT_THROW(late::put(session_, u"Timeout", 1441), Failure);
    put(u"x", 1);
    end();
    site_.now += std::chrono::minutes(5);
    begin();
    EXPECT_TRUE(value(u"x").is_empty());
}

TEST_F(SessionObjectTest, AFormTokenBelongsToItsSession) {
    begin();
    const Text token = late::get(session_, u"FormToken").to<Text>();
    EXPECT_EQ(token.size(), 43u);
    end();
    begin();
    EXPECT_EQ(late::get(session_, u"FormToken"), Variant(token));
    EXPECT_EQ(late::call(session_, u"IsFormToken", {token}), Variant(true));
    EXPECT_EQ(late::call(session_, u"IsFormToken", {token.substr(1)}), Variant(false));
    EXPECT_EQ(late::call(session_, u"IsFormToken", {u""}), Variant(false));
    end();
    cookie_.clear();
    begin();
    put(u"x", 1);
    EXPECT_EQ(late::call(session_, u"IsFormToken", {token}), Variant(false));
}

TEST_F(SessionObjectTest, ContentsAreADictionary) {
    begin();
    const Object contents = late::get(session_, u"Contents").to<Object>();
    late::put_value(contents, u"1", {u"b"});
    late::put(contents, u"Item", u"2", {u"a"});
    EXPECT_EQ(late::value_of(contents, {u"B"}), Variant(u"1"));
    EXPECT_EQ(late::value_of(contents, {2}), Variant(u"2"));
    EXPECT_EQ(late::get(contents, u"Key", {1}), Variant(u"b"));
    EXPECT_EQ(late::items_of(contents), (std::vector<Variant>{u"b", u"a"}));
    EXPECT_THROW(late::value_of(contents, {3}), Failure);
    late::call(contents, u"Remove", {1});
    EXPECT_EQ(late::get(contents, u"Count"), Variant(1));
    late::call(contents, u"RemoveAll");
    EXPECT_TRUE(value(u"a").is_empty());
}

TEST_F(SessionObjectTest, TheApplicationIsThereForEveryBrowser) {
    begin();
    late::call(application_, u"Lock");
    late::put_value(application_, 1, {u"Hits"});
    const Object contents = late::get(application_, u"Contents").to<Object>();
    late::put_value(contents, u"x", {u"other"});
    end();
    cookie_.clear();
    begin();
    EXPECT_EQ(late::value_of(application_, {u"hits"}), Variant(1));
    late::put_value(application_, 2, {u"hits"});
    EXPECT_EQ(late::get(late::get(application_, u"Contents").to<Object>(), u"Count"), Variant(2));
    EXPECT_THROW(late::put_value(application_, session_, {u"session"}), Failure);
    EXPECT_EQ(end(), "");
}

}  // namespace
}  // namespace orvo::web
