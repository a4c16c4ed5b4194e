// The throttle in the way of a web login, and what an administrator hears and does of it.

#include <gmock/gmock.h>

#include <csignal>

#include "tests/host/web/orvo_web_test.h"
#include "tests/support/redis_server.h"

namespace orvo::web {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ThrottledWebTest : public OrvoWebTest {
protected:
    ThrottledWebTest() {
        throttle_ = "On=yes\nAttempts=2\nLongestDelay=0\n";
        settle("AdminSocket = ../admin.sock\n");
    }

    std::vector<std::string> pages(const std::string& user,
                                   const std::vector<std::string>& passwords) {
        std::vector<std::string> pages;
        for (const std::string& password : passwords) {
            Browser browser(port_);
            const auto answer = log_in(browser, user, password);
            pages.push_back(answer->status == 200 ? answer->body : std::to_string(answer->status));
            EXPECT_EQ(browser.cookies.count("QUENDRAID"), answer->status == 200 ? 0u : 1u);
        }
        return pages;
    }
    int port_ = 0;
};

TEST_F(ThrottledWebTest, ALoginPageAnswersTheSameWhetherThereIsSuchAUserOrNot) {
    port_ = start();
    for (const char* user : {"jsmith", "nobody"})
        EXPECT_THAT(pages(user, {"one", "two", "three", "shop-sample"}),
                    ElementsAre("login -1", "login -1", "login -5", "login -5"));
    EXPECT_THAT(pages("djansen", {"shop-sample"}), ElementsAre("303"));
}

TEST_F(ThrottledWebTest, AnAdministratorHearsOfItAndEndsIt) {
    port_ = start();
    EXPECT_THAT(orvo({"why", "jsmith"}),
                HasSubstr("  ok         throttle        no wrong passwords are counted\n"));
    pages("jsmith", {"one"});
    EXPECT_THAT(orvo({"why", "jsmith"}),
                HasSubstr("  ok         throttle        1 of 2 wrong passwords from unknown "
                          "addresses\n"));
    pages("jsmith", {"two"});
    const std::string why = orvo({"why", "jsmith", "--from", "127.0.0.1"});
    EXPECT_THAT(why, HasSubstr("  refused    throttle        2 of 2 wrong passwords from unknown "
                               "addresses: refused for "));
    EXPECT_THAT(why, HasSubstr("To do: orvo users unlock jsmith\n"));
    EXPECT_THAT(why, HasSubstr("The login is refused: throttle.\n"));
    EXPECT_EQ(orvo({"users", "unlock", "jsmith"}),
              "jsmith: not locked, and no wrong passwords are counted any more.\n");
    EXPECT_EQ(orvo({"users", "unlock", "jsmith"}), "jsmith: not locked.\n");
    EXPECT_THAT(pages("jsmith", {"one", "shop-sample"}), ElementsAre("login -1", "303"));
}

TEST_F(ThrottledWebTest, AnAddressFromWhichTheUserHasLoggedInHasABudgetOfItsOwn) {
    port_ = start();
    EXPECT_THAT(pages("jsmith", {"one", "shop-sample", "two", "three", "shop-sample"}),
                ElementsAre("login -1", "303", "login -1", "login -1", "login -5"));
    EXPECT_THAT(orvo({"why", "jsmith", "--from", "127.0.0.1"}),
                HasSubstr("2 of 2 wrong passwords from an address of the user's: refused for "));
    EXPECT_THAT(orvo({"why", "jsmith", "--from", "203.0.113.7"}),
                HasSubstr("  ok         throttle        1 of 2 wrong passwords from unknown "
                          "addresses\n"));
}

TEST_F(ThrottledWebTest, AnAdministratorEndsItForAnAddress) {
    throttle_ = "On=yes\nAddressAttempts=2\nLongestDelay=0\n";
    port_ = start();
    for (const char* user : {"nobody", "djansen"})
        EXPECT_THAT(pages(user, {"one"}), ElementsAre("login -1"));
    EXPECT_THAT(pages("jsmith", {"shop-sample"}), ElementsAre("login -5"));
    EXPECT_THAT(orvo({"why", "jsmith", "--from", "127.0.0.1"}),
                HasSubstr("To do: orvo users unlock --address 127.0.0.1\n"));
    EXPECT_EQ(orvo({"users", "unlock", "djansen", "--address", "127.0.0.1"}),
              "djansen: not locked, and no wrong passwords are counted any more.\n"
              "127.0.0.1: no wrong passwords are counted any more.\n");
    EXPECT_EQ(orvo({"users", "unlock", "--address", "127.0.0.1"}),
              "127.0.0.1: no wrong passwords were counted.\n");
    EXPECT_THAT(orvo({"users", "unlock"}), HasSubstr("USER is required"));
    EXPECT_THAT(pages("jsmith", {"shop-sample"}), ElementsAre("303"));
}

TEST_F(ThrottledWebTest, WhatIsCountedInASharedStoreCountsForEveryHostUntilItIsEndedThere) {
    const RedisServer redis;
    audit_ = redis.site_section();
    port_ = start();
    pages("jsmith", {"one", "two"});
    process_->send(SIGTERM);
    process_->wait();
    EXPECT_THAT(orvo({"why", "jsmith"}),
                HasSubstr("2 of 2 wrong passwords from unknown addresses: refused for "));
    port_ = start();
    EXPECT_THAT(pages("jsmith", {"shop-sample"}), ElementsAre("login -5"));
    process_->send(SIGTERM);
    process_->wait();
    EXPECT_EQ(orvo({"users", "unlock", "jsmith", "--address", "127.0.0.1"}),
              "jsmith: not locked, and no wrong passwords are counted any more.\n"
              "127.0.0.1: no wrong passwords are counted any more.\n");
    port_ = start();
    EXPECT_THAT(pages("jsmith", {"shop-sample"}), ElementsAre("303"));
}

TEST_F(ThrottledWebTest, WithoutAHostThereIsNobodyWhoCounts) {
    start();
    process_->send(SIGTERM);
    process_->wait();
    EXPECT_THAT(orvo({"why", "jsmith"}),
                HasSubstr("  not known  throttle        no host runs at "));
    EXPECT_EQ(orvo({"users", "unlock", "jsmith"}), "jsmith: not locked.\n");
}

}  // namespace
}  // namespace orvo::web
