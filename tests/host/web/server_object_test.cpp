#include "host/web/intrinsics/server_object.h"

#include <gtest/gtest.h>

#include <set>

#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "tests/host/web/test_site.h"

namespace orvo::web {
class Made {
public:
    std::int32_t One() { return 1; }
};
}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto table_of<web::Made> = describe<web::Made>(
    "IMade", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2cf2", get<&web::Made::One>("One"));
template <>
inline constexpr auto class_of<web::Made> =
    describe_class<web::Made>("Test.Made", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2cf3");
}  // namespace orvo

namespace orvo::web {
namespace {

static_assert(slot_of<&Server::CreateObject> == 9);
static_assert(slot_of<&Server::Transfer> == 15);
static_assert(slot_of<&Server::GetLastError> == 16);
static_assert(slot_of<&AspError::ASPCode> == 7);
static_assert(slot_of<&AspError::Source> == 15);

class ServerObjectTest : public testing::Test {
protected:
    Text call(TextView member, const Variant& argument) {
        return late::call(server_, member, {argument}).to<Text>();
    }

    TestSite site_;
    std::shared_ptr<PageContext> page_ = site_.request({.target = "/sub/p.asp"});
    Object server_ = make<ServerObject>(page_).object();
};

TEST_F(ServerObjectTest, EncodesForHtmlAndForAddresses) {
    EXPECT_EQ(call(u"HTMLEncode", u"<a & \"b\">"), u"&lt;a &amp; &quot;b&quot;&gt;");
    EXPECT_EQ(call(u"HTMLEncode", Variant()), u"");
    EXPECT_EQ(call(u"HTMLEncode", 12), u"12");
    EXPECT_EQ(call(u"URLEncode", u"a b&c"), u"a+b%26c");
    EXPECT_EQ(call(u"URLPathEncode", u"/a b"), u"/a%20b");
}

TEST_F(ServerObjectTest, MapsPathsOfTheSiteToFiles) {
    const Text root = from_utf8(site_.root.string());
    EXPECT_EQ(call(u"MapPath", u"/x/y.txt"), root + u"/x/y.txt");
    EXPECT_EQ(call(u"MapPath", u"y.txt"), root + u"/sub/y.txt");
    EXPECT_EQ(call(u"MapPath", u"..\\y.txt"), root + u"/y.txt");
    EXPECT_EQ(call(u"MapPath", u"/../../y.txt"), root + u"/y.txt");
}

TEST_F(ServerObjectTest, TakesOnlyAddressesOfThisSiteToReturnTo) {
    const auto local = [&](const Variant& url) {
        return late::call(server_, u"LocalURL", {url, u"/home"}).to<Text>();
    };
    EXPECT_EQ(local(u"/account/?x=1"), u"/account/?x=1");
    EXPECT_EQ(local(u"//evil.example"), u"/home");
    EXPECT_EQ(local(u"https://evil.example"), u"/home");
    EXPECT_EQ(local(Variant()), u"/home");
    EXPECT_EQ(late::call(server_, u"LocalURL", {u"x"}), Variant(u""));
}

TEST_F(ServerObjectTest, GivesTextsByChanceWithoutSignsThatLookAlike) {
    std::set<char16_t> signs;
    for (int i = 0; i < 20; ++i) {
        const Text text = call(u"RandomText", 1000);
        EXPECT_EQ(text.size(), 1000u);
        signs.insert(text.begin(), text.end());
    }
    // With 20,000 signs none is missing but once in 10^150 runs.
    EXPECT_EQ(Text(signs.begin(), signs.end()),
              u"23456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz");
    EXPECT_EQ(call(u"RandomText", 1).size(), 1u);
    EXPECT_NE(call(u"RandomText", 16), call(u"RandomText", 16));
    for (const int length : {0, -1, 1001}) EXPECT_THROW(call(u"RandomText", length), Failure);
}

TEST_F(ServerObjectTest, MakesObjectsByProgId) {
    const LocalClass made = local_class<Made>();
    EXPECT_TRUE(late::call(server_, u"CreateObject", {u"Test.Made"}).to<Object>());
    try {
        late::call(server_, u"CreateObject", {u"No.Such"});
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 429);
        const std::string said = to_utf8(failure.description);
        EXPECT_NE(said.find("The component \"No.Such\" is not known in /"), std::string::npos)
            << said;
    }
}

TEST_F(ServerObjectTest, WithoutAFailureTheLastErrorIsNone) {
    const Object error = late::call(server_, u"GetLastError").to<Object>();
    EXPECT_EQ(late::get(error, u"Number"), Variant(0));
    EXPECT_EQ(late::get(error, u"Description"), Variant(u""));
}

TEST_F(ServerObjectTest, HasATimeLimitForThePage) {
    EXPECT_EQ(late::get(server_, u"ScriptTimeout"), Variant(0));
    for (const int seconds : {0, -1, 3601})
        EXPECT_THROW(late::put(server_, u"ScriptTimeout", seconds), Failure) << seconds;
}

}  // namespace
}  // namespace orvo::web
