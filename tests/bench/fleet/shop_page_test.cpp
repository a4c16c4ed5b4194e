#include "bench/fleet/shop_page.h"

#include <gtest/gtest.h>

namespace orvo::fleet {
namespace {

ShopPage page(const std::string& body, int status = 200, const HttpFields& headers = {}) {
    return ShopPage(HttpResult(HttpResult::Answer{status, headers, body}));
}

TEST(ShopPage, SaysWhoIsLoggedInAndWhoseAccountItShows) {
    const ShopPage shown = page("<b id=\"user\">j&amp;smith</b> <dd id=\"cn\">jsmith</dd>");
    EXPECT_EQ(shown.user(), "j&smith");
    EXPECT_EQ(shown.own_name(), "jsmith");
    EXPECT_EQ(page("nobody").user(), "");
}

TEST(ShopPage, SaysWhatWentWrong) {
    EXPECT_EQ(page("<div class=\"message\" id=\"problem\" role=\"alert\"><p>Not &lt;now&gt;.</p>"
                   "<ul><li>more</li></ul></div>")
                  .problem(),
              "Not <now>.");
    EXPECT_EQ(page("<p>fine</p>").problem(), "");
}

TEST(ShopPage, ARedirectLeadsSomewhereOnThisSite) {
    EXPECT_EQ(page("", 302, {{"Location", "/login.asp?url=%2Faccount%2F"}}).leads_to_login(), true);
    EXPECT_EQ(page("", 303, {{"Location", "http://127.0.0.1:1234/account/"}}).location(),
              "/account/");
    EXPECT_EQ(page("", 303, {{"Location", "/account/"}}).leads_to_login(), false);
}

TEST(ShopPage, AFormIsWhatABrowserWouldSend) {
    const ShopPage shown = page(R"(<form action="/logout.asp"><input name="token" value="1"></form>
<form class="card" method="post" action="/account/" novalidate>
<input type="hidden" name="token" value="abc">
<input id="f-Phone" name="Phone" type="text" inputmode="tel" value="1 &quot;2&quot;">
<input type="checkbox" id="f-Away" name="Away">
<input type="checkbox" id="f-Here" name="Here" checked>
</form><input name="outside" value="x">)");
    const HttpFields expected{{"token", "abc"}, {"Phone", "1 \"2\""}, {"Here", "on"}};
    ASSERT_TRUE(shown.form("/account/"));
    EXPECT_EQ(*shown.form("/account/"), expected);
    EXPECT_EQ(value_of(expected, "Phone"), "1 \"2\"");
    EXPECT_EQ(value_of(expected, "Fax"), "");
    EXPECT_FALSE(shown.form("/admin/"));
    EXPECT_EQ(shown.token(), "1");
}

}  // namespace
}  // namespace orvo::fleet
