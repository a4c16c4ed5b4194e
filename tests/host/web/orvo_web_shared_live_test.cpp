// Two programs of one site, with a directory server and a store that they share.

#include <csignal>

#include "tests/host/web/orvo_web_test.h"
#include "tests/support/redis_server.h"

namespace orvo::web {
namespace {

class SharedOrvoWebTest : public OrvoWebTest {
protected:
    SharedOrvoWebTest() {
        audit_ = redis_.site_section();
        write("put.asp", "<% Session('n') = (Session('n') || 0) + 1 %><%= Session('n') %>");
        write("hold.asp",
              "<% Session('n') = 'late'; Application('held') = true;"
              " while (!Application('released')); %>done");
        write("held.asp", "<%= Application('held') ? 'yes' : 'no' %>");
        write("release.asp", "<% Application('released') = true %>");
        first_port_ = start();
        second_port_ = start(second_, folder_.path() / "second");
    }
    static int status(const HttpResult& result) { return result ? result->status : 0; }

    RedisServer redis_;
    std::optional<ChildProcess> second_;
    int first_port_ = 0, second_port_ = 0;
};

TEST_F(SharedOrvoWebTest, WhoHasLoggedInAtOneIsLoggedInAtTheOther) {
    Browser first(first_port_), second(second_port_);
    ASSERT_EQ(status(log_in(first, "jsmith", "shop-sample")), 303);
    second.cookies = first.cookies;
    EXPECT_EQ(second.get("/account/")->body, "jsmith|jsmith");
    EXPECT_EQ(second.get("/put.asp")->body, "1");
    EXPECT_EQ(first.get("/put.asp")->body, "2");
    process_->send(SIGKILL);
    process_->wait();
    EXPECT_EQ(second.get("/account/")->body, "jsmith|jsmith") << "and stays it when that one dies";
    EXPECT_EQ(second.get("/logout.asp")->body, "bye");
    first_port_ = start();
    Browser anew(first_port_);
    anew.cookies = first.cookies;
    EXPECT_EQ(anew.get("/account/")->status, 302);
}

TEST_F(SharedOrvoWebTest, WithoutTheStoreNobodyIsLetInAndOpenPagesWork) {
    Browser browser(first_port_), other(first_port_);
    ASSERT_EQ(status(log_in(browser, "jsmith", "shop-sample")), 303);
    redis_.kill();
    EXPECT_EQ(other.get("/default.asp")->body, "home");
    EXPECT_EQ(browser.get("/default.asp")->body, "home");
    EXPECT_EQ(browser.get("/account/")->status, 503);
    EXPECT_EQ(browser.get("/put.asp")->status, 503);
    EXPECT_EQ(status(log_in(other, "jsmith", "shop-sample")), 503);
    EXPECT_TRUE(other.cookies.empty());
    redis_.start();
    EXPECT_TRUE(seen([&] { return status(log_in(other, "jsmith", "shop-sample")) == 303; }));
    EXPECT_EQ(other.get("/account/")->body, "jsmith|jsmith");
    EXPECT_TRUE(says("the shared store can be reached again"));
}

TEST_F(SharedOrvoWebTest, AProgramStartsWithoutTheStoreAndSaysSoAtOnce) {
    redis_.kill();
    Browser browser(start());
    EXPECT_TRUE(says(" cannot be used (Connection refused)"));
    EXPECT_EQ(browser.get("/default.asp")->body, "home");
    EXPECT_EQ(status(log_in(browser, "jsmith", "shop-sample")), 503);
    redis_.start();
    EXPECT_TRUE(seen([&] { return status(log_in(browser, "jsmith", "shop-sample")) == 303; }));
}

TEST_F(SharedOrvoWebTest, AFullStoreLetsNobodyNewIn) {
    Browser browser(first_port_);
    redis_.ask({"CONFIG", "SET", "maxmemory", "1"});
    const HttpResult refused = log_in(browser, "jsmith", "shop-sample");
    EXPECT_EQ(refused->body, "login failed");
    EXPECT_NE(content_of(folder_.path() / "orvo.log").find("(it is full: OOM "), std::string::npos);
    EXPECT_TRUE(browser.cookies.empty());
    EXPECT_EQ(browser.get("/default.asp")->body, "home");
    redis_.ask({"CONFIG", "SET", "maxmemory", "0"});
    EXPECT_EQ(status(log_in(browser, "jsmith", "shop-sample")), 303);
    EXPECT_EQ(browser.get("/account/")->body, "jsmith|jsmith");
}

TEST_F(SharedOrvoWebTest, AProgramThatStandsStillForTooLongOverwritesNothing) {
    Browser browser(first_port_), other(second_port_);
    ASSERT_EQ(browser.get("/put.asp")->body, "1");
    other.cookies = browser.cookies;
    HttpResult late{"not asked"};
    std::thread holding([&] { late = browser.get("/hold.asp"); });
    EXPECT_TRUE(seen([&] { return Browser(second_port_).get("/held.asp")->body == "yes"; }));
    process_->pause();
    // It waits for the end of the lock.
    const auto second = other.get("/put.asp");
    Browser(second_port_).get("/release.asp");
    process_->send(SIGCONT);
    holding.join();
    EXPECT_EQ(second->body, "2");
    EXPECT_EQ(status(late), 503);
    EXPECT_EQ(other.get("/put.asp")->body, "3");
}

}  // namespace
}  // namespace orvo::web
