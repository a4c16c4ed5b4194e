#include "host/web/site/global_events.h"

#include <gtest/gtest.h>

#include <atomic>

#include "tests/host/web/test_site.h"

namespace orvo::web {
namespace {

// Where `is_broken`, asking for those that have ended fails.
class BreakingSessions : public MemorySessions {
public:
    using MemorySessions::MemorySessions;
    void end_idle() override {
        if (is_broken) throw std::runtime_error(++times > 1 ? "again" : "the lists are no lists");
        MemorySessions::end_idle();
    }
    std::atomic<bool> is_broken = false;
    std::atomic<int> times = 0;
};

class GlobalEventsTest : public testing::Test {
protected:
    GlobalEventsTest() { site_.write("/page.asp", "page <%= Session('n') %>"); }

    void global(const std::string& script) {
        site_.write("/global.asa",
                    "<script language=\"JScript\" runat=\"server\">\n" + script + "\n</script>\n");
    }
    GlobalEvents& events() {
        if (!events_)
            events_.emplace(site_.root, site_.application, sessions_, log_,
                            GlobalEvents::Options{.look_every = std::chrono::milliseconds(1)});
        return *events_;
    }
    // What the page answers to a browser that keeps its session's cookie.
    std::string get(const std::string& path = "/page.asp") {
        HttpRequest request{.target = path};
        if (!cookie_.empty()) request.headers = {{"Cookie", cookie_}};
        auto page = std::make_shared<PageContext>(request, path, site_.root, site_.application,
                                                  sessions_, site_.patience);
        std::string body;
        try {
            const GlobalScript* global = events().start();
            run_page(page, site_.pages, path, global);
            body = page->answer.body;
        } catch (const std::exception& failure) {
            body = failure.what();
        }
        page->finish();
        for (const auto& cookie : page->answer.cookies) {
            const std::string header = header_text(*cookie);
            cookie_ = header.substr(0, header.find(';'));
        }
        answer_ = page->answer;
        return body;
    }
    Variant application(TextView name) { return site_.application.get(name); }
    // Of what another thread puts into the application.
    Variant awaited(TextView name) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (application(name).is_empty() && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        return application(name);
    }

    TestSite site_;
    std::atomic<int> minutes_{0};
    BreakingSessions sessions_{
        {}, [this] { return SessionClock::time_point(std::chrono::minutes(minutes_)); }};
    WebLog log_{{}};
    std::string cookie_;
    PageAnswer answer_;
    std::optional<GlobalEvents> events_;
};

TEST_F(GlobalEventsTest, ASiteWithoutTheFileDoesWithout) {
    EXPECT_EQ(get(), "page ");
    EXPECT_EQ(events().start(), nullptr);
    EXPECT_EQ(cookie_, "");
}

TEST_F(GlobalEventsTest, TheApplicationStartsOnceBeforeTheFirstPage) {
    global(
        "function Application_OnStart() { Application('n') = Application('n') + 1 || 1;"
        " Application('root') = Server.MapPath('/x');"
        " Application('others') = typeof Request + typeof Response + typeof Session; }");
    events();
    EXPECT_TRUE(application(u"n").is_empty());
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back([this] { events().start(); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(get(), "page ");
    EXPECT_EQ(application(u"n"), Variant(1));
    EXPECT_EQ(application(u"root"), Variant(from_utf8((site_.root / "x").string())));
    EXPECT_EQ(application(u"others"), Variant(u"undefinedundefinedundefined"));
    EXPECT_EQ(cookie_, "") << "nothing is done when a session starts";
}

TEST_F(GlobalEventsTest, AStartThatFailsFailsThePageAndIsTriedAgain) {
    global("function Application_OnStart() {\n unknown(); }");
    EXPECT_EQ(get(), "/global.asa, line 3: ReferenceError: identifier 'unknown' undefined");
    EXPECT_EQ(get(), "/global.asa, line 3: ReferenceError: identifier 'unknown' undefined");
    site_.write("/global.asa", "\ntext");
    EXPECT_EQ(get(),
              "/global.asa, line 2: this file has <script runat=\"server\"> blocks, and nothing "
              "outside of them");
    global("function Application_OnStart() { Application('n') = 1 }");
    EXPECT_EQ(get(), "page ");
    EXPECT_EQ(application(u"n"), Variant(1));
    global("function Application_OnStart() { Application('n') = 2 }");
    EXPECT_EQ(get(), "page ");
    EXPECT_EQ(application(u"n"), Variant(1)) << "it is read once";
}

TEST_F(GlobalEventsTest, ASessionStartsWithTheFirstPageOfABrowser) {
    global(
        "function session_onstart() { Session('n') = Request.QueryString('none') + 'started';"
        " Response.AddHeader('X-Start', Server.MapPath('/')) }");
    EXPECT_EQ(get(), "page started");
    EXPECT_EQ(answer_.headers.size(), 1u);
    EXPECT_EQ(cookie_.substr(0, 12), "orvosession=");
    EXPECT_EQ(get(), "page started");
    EXPECT_EQ(answer_.headers.size(), 0u) << "it has a session already";
    EXPECT_EQ(sessions_.counts().live, 1u);
    cookie_.clear();
    site_.write("/without.asp", "<%@ EnableSessionState=False %>without");
    EXPECT_EQ(get("/without.asp"), "without");
    EXPECT_EQ(sessions_.counts().live, 1u);
}

TEST_F(GlobalEventsTest, TheStartOfASessionMayLeadElsewhere) {
    global("function Session_OnStart() { Response.Redirect('/welcome.asp') }");
    EXPECT_EQ(get(), "");
    EXPECT_EQ(answer_.status, 302);
    EXPECT_EQ(get(), "page ") << "the session has started";
}

TEST_F(GlobalEventsTest, ASessionWhoseStartFailsIsNone) {
    global("function Session_OnStart() { Session('n') = 1; unknown(); }");
    EXPECT_EQ(get(), "/global.asa, line 2: ReferenceError: identifier 'unknown' undefined");
    EXPECT_EQ(sessions_.counts().live, 0u);
}

TEST_F(GlobalEventsTest, AnAbandonedSessionEndsOnAThreadOfItsOwn) {
    global(
        "function Session_OnStart() { Session('n') = 'name' }\n"
        "function Session_onEnd() {"
        " try { Server.MapPath('/') } catch (e) { Application('refusal') = e.message }"
        " try { Server.Execute('/page.asp') } catch (e) { Application('page') = e.message }"
        " Application('others') = typeof Request + typeof Response;"
        " Application('ended') = Session('n') + Session.SessionID }");
    site_.write("/abandon.asp", "<% Session.Abandon() %><%= Session('n') %>");
    EXPECT_EQ(get("/abandon.asp"), "name");
    EXPECT_EQ(awaited(u"ended"), Variant(u"name1"));
    EXPECT_EQ(application(u"refusal"),
              Variant(u"MapPath cannot be used when a session or the application ends"));
    EXPECT_EQ(application(u"page"),
              Variant(u"This event of global.asa executes no pages: /page.asp"));
    EXPECT_EQ(application(u"others"), Variant(u"undefinedundefined"));
    EXPECT_EQ(sessions_.counts().live, 0u);
}

TEST_F(GlobalEventsTest, ASessionEndsWhenItsTimeHasRunOut) {
    global(
        "function Session_OnStart() { Session('n') = 1 }\n"
        "function Session_OnEnd() { Application('ended') = Session('n') }");
    EXPECT_EQ(get(), "page 1");
    minutes_ = 21;
    EXPECT_EQ(awaited(u"ended"), Variant(1)) << "no request has asked for it";
}

TEST_F(GlobalEventsTest, AStoreThatFailsToTellWhichHaveEndedIsLoggedAndAskedAgain) {
    global(
        "function Session_OnStart() { Session('n') = 1 }\n"
        "function Session_OnEnd() { Application('ended') = Session('n') }");
    sessions_.is_broken = true;
    testing::internal::CaptureStderr();
    EXPECT_EQ(get(), "page 1");
    while (sessions_.times < 2) std::this_thread::yield();
    minutes_ = 21;
    sessions_.is_broken = false;
    EXPECT_EQ(awaited(u"ended"), Variant(1));
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("/global.asa: the lists are no lists"), std::string::npos) << log;
}

TEST_F(GlobalEventsTest, WithTheProgramAllSessionsEndAndThenTheApplication) {
    global(
        "function Session_OnStart() { Session('n') = 1 }\n"
        "function Session_OnEnd() { Application('ended') = Application('ended') + 1 || 1; }\n"
        "function Application_OnEnd() { Application('last') = 'after ' + Application('ended') }");
    for (int i = 0; i < 3; ++i) {
        cookie_.clear();
        get();
    }
    events_.reset();
    EXPECT_EQ(application(u"ended"), Variant(3));
    EXPECT_EQ(application(u"last"), Variant(u"after 3"));
    EXPECT_EQ(sessions_.counts().live, 0u);
}

TEST_F(GlobalEventsTest, AHandlerThatFailsIsLoggedAndKeepsNobodyBack) {
    global(
        "function Session_OnStart() { Session('n') = 1 }\n"
        "function Session_OnEnd() { Application('ended') = Application('ended') + 1 || 1;\n"
        " unknown(); }\n"
        "function Application_OnEnd() { lost(); }");
    for (int i = 0; i < 2; ++i) {
        cookie_.clear();
        get();
    }
    testing::internal::CaptureStderr();
    events().stop();
    events().stop();
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_EQ(application(u"ended"), Variant(2));
    EXPECT_NE(log.find("/global.asa, line 4: ReferenceError: identifier 'unknown'"),
              std::string::npos)
        << log;
    const auto lost = log.find("/global.asa, line 5: ReferenceError: identifier 'lost'");
    EXPECT_NE(lost, std::string::npos) << log;
    EXPECT_EQ(log.find("identifier 'lost'", lost + 60), std::string::npos) << "it ends once";
}

TEST_F(GlobalEventsTest, AHandlerHasATimeLimit) {
    global("function Application_OnStart() { for (;;); }");
    events_.emplace(site_.root, site_.application, sessions_, log_,
                    GlobalEvents::Options{.time_limit = std::chrono::seconds(1)});
    EXPECT_NE(get().find("The script ran longer than it may"), std::string::npos);
}

TEST_F(GlobalEventsTest, TheTimeLimitIsThatOfTheSettingsAsTheyWereReadLast) {
    global("function Application_OnStart() { for (;;); }");
    events().set_time_limit(std::chrono::seconds(1));
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_NE(get().find("The script ran longer than it may"), std::string::npos);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20))
        << "the first one was 30 seconds";
}

TEST_F(GlobalEventsTest, TheFilesNameHasNoCase) {
    site_.write("/GLOBAL.ASA",
                "<script runat=server>function Application_OnStart() { Application('n') = 1 "
                "}</script>");
    get();
    EXPECT_EQ(application(u"n"), Variant(1));
}

}  // namespace
}  // namespace orvo::web
