// A site whose machines share their sessions, with its store there and away.

#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "host/web/sessions/redis_application.h"
#include "host/web/sessions/redis_sessions.h"
#include "platform/interfaces/hosted.h"
#include "tests/host/web/shared_site.h"
#include "tests/host/web/web_app_test.h"
#include "tests/suite/store/waiting.h"

namespace orvo::web {

// Lets a page do what happens to its store.
class StoreSwitch {
public:
    explicit StoreSwitch(RedisServer& server) : server_(server) {}
    void Kill() { server_.kill(); }

private:
    RedisServer& server_;
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto table_of<web::StoreSwitch> =
    describe<web::StoreSwitch>("IStoreSwitch", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2cfa",
                               method<&web::StoreSwitch::Kill>("Kill"));
template <>
inline constexpr auto class_of<web::StoreSwitch> =
    describe_class<web::StoreSwitch>("Test.StoreSwitch").shared();
}  // namespace orvo

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

class SharedSiteTest : public WebAppTest {
protected:
    SharedSiteTest() {
        pages_.write("/open.asp", "open [<%= Session('v') %>]");
        pages_.write(
            "/write.asp",
            "<% Response.Cookies('other') = 1;"
            "try { Session('v') = 'kept'; } catch (e) { Response.Write('caught'); } %>put");
        pages_.write("/flush.asp", "<% Session('v') = 'sent'; Response.Flush(); %>end");
        pages_.write("/count.asp",
                     "<% Application.Lock(); Application('n') = Application('n') + 1 || 1;"
                     " Application.UnLock(); %><%= Application('n') %>");
        pages_.write("/object.asp",
                     "<% try { Session('o') = Application('Host.Switch'); }"
                     "catch (e) { Response.Write(e.message); } %>");
    }
    // One machine of the site.
    struct Machine {
        explicit Machine(SharedSiteTest& test,
                         std::chrono::milliseconds gathering = SharedLocks::usual_gathering)
            : store(machine_of(test.server_, {}, gathering)),
              sessions(*store),
              application(std::make_shared<RedisApplication>(*store)),
              app(read_site(test.pages_.root), sessions, test.health_, test.log_,
                  WebApp::Options{.application = application}) {}
        HttpResponse get(const std::string& target, const std::string& cookies = {}) {
            return app.handle({.target = target, .headers = {{"Cookie", cookies}}});
        }
        std::unique_ptr<SharedStore> store;
        RedisSessions sessions;
        std::shared_ptr<RedisApplication> application;
        WebApp app;
    };
    void expect_away(const HttpResponse& response) {
        EXPECT_EQ(response.status, 503);
        EXPECT_NE(response.body.find("The site cannot look up who you are now. Please try again."),
                  std::string::npos)
            << response.body;
        EXPECT_EQ(cookies(response), "");
    }

    RedisServer server_;
    Machine one_{*this}, two_{*this};
};

TEST_F(SharedSiteTest, ABrowsersSessionIsOnEveryMachine) {
    const std::string sent = cookies(one_.get("/write.asp"));
    EXPECT_EQ(two_.get("/open.asp", sent).body, "open [kept]");
    EXPECT_EQ(one_.get("/count.asp").body, "1");
    EXPECT_EQ(two_.get("/count.asp").body, "2");
    EXPECT_EQ(one_.get("/count.asp").body, "3");
}

TEST_F(SharedSiteTest, StartsWithoutItsStoreAndServesWhatNeedsNobody) {
    server_.kill();
    Machine late{*this};
    EXPECT_EQ(late.get("/open.asp").body, "open []");
    expect_away(late.get("/write.asp"));
    expect_away(late.get("/login/login.asp"));
    server_.start();
    EXPECT_TRUE(store::wait_until([&] { return late.get("/write.asp").status == 200; }));
}

TEST_F(SharedSiteTest, WithoutItsStorePagesThatNeedNobodyWorkAndTheOthersSaySo) {
    const std::string known = cookies(one_.get("/write.asp"));
    const std::string login = cookies(one_.get("/login/login.asp"));
    ASSERT_NE(login, "");
    server_.kill();
    for (const std::string& sent : {std::string(), known}) {
        const HttpResponse open = one_.get("/open.asp", sent);
        EXPECT_EQ(open.status, 200);
        EXPECT_EQ(open.body, "open []");
        EXPECT_EQ(cookies(open), "");
        EXPECT_EQ(one_.get("/style.css", sent).status, 200);
        expect_away(one_.get("/write.asp", sent));
        expect_away(one_.get("/flush.asp", sent));
        expect_away(one_.get("/count.asp", sent));
        expect_away(one_.get("/login/login.asp", sent));
    }
    expect_away(one_.get("/account/", login));
    expect_away(one_.get("/account/logo.svg", login));
    server_.start();
    // Nobody asks meanwhile: the store is found to be back by itself, and then all is as before at
    // the first try.
    ASSERT_TRUE(store::wait_until([&] { return one_.store->is_reachable(); }));
    EXPECT_EQ(one_.get("/account/", login).status, 302) << "it came back empty";
    for (const char* target : {"/write.asp", "/flush.asp", "/count.asp", "/login/login.asp"})
        EXPECT_EQ(one_.get(target).status, 200) << target;
}

TEST_F(SharedSiteTest, WithoutItsStoreNoPageSaysThatASessionHasEnded) {
    for (const char* what : {"Abandon()", "Contents.RemoveAll()", "Contents.Remove('v')"}) {
        const std::string page = std::string("/") + what[0] + std::to_string(std::strlen(what));
        pages_.write(page + ".asp", std::string("<% Session.") + what + " %>you are logged out");
        const std::string known = cookies(one_.get("/write.asp"));
        server_.kill();
        expect_away(one_.get(page + ".asp", known));
        EXPECT_EQ(one_.get(page + ".asp").status, 200) << "a browser without a session";
        server_.start();
        ASSERT_TRUE(store::wait_until([&] { return one_.store->is_reachable(); }));
    }
}

TEST_F(SharedSiteTest, APageWhoseSessionCannotBeStoredSetsNothing) {
    pages_.write("/kill.asp",
                 "<% Session('v') = 'lost'; Response.Cookies('other') = 1;"
                 "   Application('Host.Switch').Kill() %>done");
    one_.application->put_own(u"Host.Switch", make<StoreSwitch>(server_).object());
    const std::string before = cookies(one_.get("/write.asp"));
    for (const std::string& sent : {std::string(), before}) {
        expect_away(one_.get("/kill.asp", sent));
        server_.start();
        while (one_.get("/write.asp").status != 200) std::this_thread::yield();
    }
}

TEST_F(SharedSiteTest, AnObjectIsRefusedWhenItIsPut) {
    one_.application->put_own(u"Host.Switch", make<StoreSwitch>(server_).object());
    EXPECT_EQ(one_.get("/object.asp").body,
              "Session(\"o\") cannot keep this object: the site's store is shared, and an object "
              "cannot leave the process that made it. Keep texts, numbers, dates or arrays of "
              "these, and make the object anew on each page.");
}

TEST_F(SharedSiteTest, AGuardedPageThatLeavesItsSessionAsItWasTakesOneRoundTrip) {
    Machine machine(*this, no_end_of_gathering);
    const std::string login = cookies(machine.get("/login/login.asp"));
    const auto filter = register_login();
    const auto before = machine.store->redis()->counts().commands;
    for (int i = 0; i < 3; ++i) EXPECT_EQ(machine.get("/account/", login).body, "account");
    EXPECT_EQ(machine.store->redis()->counts().commands - before, 3u);
    EXPECT_EQ(machine.get("/open.asp").body, "open []");
    EXPECT_EQ(machine.store->redis()->counts().commands - before, 3u) << "without a cookie none";
    call<&FilterConnector::Logout>(filter, u"G1");
}

TEST_F(SharedSiteTest, APageThatHasOnlyReadItsSessionIsAnsweredThoughTheStoreIsGone) {
    pages_.write("/read.asp", "<%= Session('v') %><% Application('Host.Switch').Kill() %>");
    one_.application->put_own(u"Host.Switch", make<StoreSwitch>(server_).object());
    EXPECT_EQ(one_.get("/read.asp", cookies(one_.get("/write.asp"))).body, "kept");
}

}  // namespace
}  // namespace orvo::web
