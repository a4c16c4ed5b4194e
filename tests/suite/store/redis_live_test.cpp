#include "suite/store/redis.h"

#include <gmock/gmock.h>

#include <barrier>

#include "suite/store/pool.h"
#include "suite/store/site_store.h"
#include "suite/store/store_error.h"
#include "tests/suite/store/scripted_redis.h"
#include "tests/suite/store/waiting.h"
#include "tests/support/environment.h"
#include "tests/support/faulty_proxy.h"
#include "tests/support/raised.h"
#include "tests/support/store_settings.h"

namespace orvo::store {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using Clock = std::chrono::steady_clock;

std::string words_of(const Failure& failure) { return to_utf8(failure.description); }

class RedisStore : public testing::Test {
protected:
    RedisServer server;
    Redis redis{store_settings(server)};
};

TEST_F(RedisStore, AnswersWhatTheCommandsGive) {
    const std::string bytes = "any \0 byte\r\n"s;
    EXPECT_EQ(redis.run({"SET", "a", bytes}).text(), "OK");
    EXPECT_EQ(redis.run_repeatable({"GET", "a"}).text(), bytes);
    EXPECT_TRUE(redis.run({"GET", "b"}).is_null());
    EXPECT_EQ(redis.run({"INCRBY", "n", "41"}).integer(), 41);
    redis.run({"RPUSH", "l", "x", "y"});
    const Reply list = redis.run({"LRANGE", "l", "0", "-1"});
    EXPECT_EQ(list.list().at(1).text(), "y");
    EXPECT_EQ(redis.counts().connects, 1u);
    EXPECT_EQ(redis.counts().commands, 6u);
    EXPECT_EQ(redis.counts().failures, 0u);
}

TEST_F(RedisStore, RefusesACommandWithTheServersWords) {
    redis.run({"SET", "a", "secret"});
    expect_failure(raised_by([&] {
                       redis.run({"INCR", "a"});
                   }),
                   store_refused, u"OrvoSuite.Store",
                   "The store " + server.url() +
                       " refuses a command (ERR value is not an integer or out of range)");
    EXPECT_TRUE(redis.is_reachable());
}

TEST_F(RedisStore, AScriptIsSentByItsTextOnlyWhereItIsNotKnown) {
    const Script script("return {KEYS[1], ARGV[1], redis.call('INCR', KEYS[1])}");
    for (std::int64_t i = 1; i <= 3; ++i) {
        const Reply reply = redis.run(script, {"k"}, {"v"});
        EXPECT_EQ(reply, Reply(Reply::List{Reply("k"), Reply("v"), Reply(i)}));
    }
    EXPECT_THAT(server.ask({"INFO", "commandstats"}), HasSubstr("cmdstat_eval:calls=1,"));
    server.ask({"SCRIPT", "FLUSH"});
    EXPECT_EQ(redis.run_repeatable(script, {"k"}, {"v"}).list().at(2).integer(), 4);
}

TEST_F(RedisStore, AScriptThatFailsIsRefused) {
    const Script script("return redis.call('INCR', KEYS[1], 'too much')");
    EXPECT_EQ(raised_by([&] { redis.run(script, {"k"}, {}); }).number, store_refused);
}

TEST_F(RedisStore, RunsSeveralInOneRoundTripAndRaisesTheFirstRefusalOfThem) {
    const std::vector<Reply> replies =
        redis.run_all({{"SET", "a", "1"}, {"INCR", "a"}, {"GET", "none"}});
    EXPECT_THAT(replies, ElementsAre(Reply("OK"), Reply(std::int64_t{2}), Reply()));
    EXPECT_THAT(redis.run_all({}), ElementsAre());
    const Failure failure = raised_by([&] {
        redis.run_all({{"RPUSH", "l", "x"}, {"INCR", "l"}, {"WRONG"}, {"INCR", "a"}});
    });
    EXPECT_EQ(failure.number, store_refused);
    EXPECT_THAT(words_of(failure), HasSubstr("WRONGTYPE"));
    EXPECT_EQ(redis.run({"GET", "a"}).text(), "3");
}

TEST_F(RedisStore, SharesAFewConnectionsAmongManyThreads) {
    Settings settings = store_settings(server);
    settings.most_connections = 3;
    settings.time_limit = 10s;
    Redis few(std::move(settings));
    std::barrier ready(8);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            ready.arrive_and_wait();
            for (int n = 0; n < 100; ++n) few.run({"INCR", "n"});
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(redis.run({"GET", "n"}).text(), "800");
    EXPECT_LE(few.counts().connects, 3u);
    EXPECT_EQ(few.counts().in_use, 0u);
    EXPECT_EQ(few.counts().commands, 800u);
}

TEST_F(RedisStore, WhoFindsAllConnectionsInUseWaitsForOne) {
    Settings settings = store_settings(server);
    settings.most_connections = 1;
    Pool pool(std::move(settings));
    std::unique_ptr<Pool::Lease> first(new Pool::Lease(pool.acquire(Deadline(10s))));
    try {
        pool.acquire(Deadline(20ms));
        ADD_FAILURE() << "there was one more";
    } catch (const Lost& lost) {
        EXPECT_STREQ(lost.what(), "all 1 connections are in use");
    }
    EXPECT_TRUE(pool.is_reachable());
    std::thread later([&] { first.reset(); });
    pool.acquire(Deadline(10s));
    later.join();
    EXPECT_EQ(pool.counts().connects, 1u);
}

TEST_F(RedisStore, AnIdleConnectionThatHasEndedIsNotUsed) {
    redis.run({"SET", "a", "1"});
    server.ask({"CLIENT", "KILL", "TYPE", "normal", "SKIPME", "yes"});
    EXPECT_EQ(redis.run({"INCR", "a"}).integer(), 2);
    EXPECT_EQ(redis.counts().connects, 2u);
}

TEST_F(RedisStore, FailsAtOnceWhileItIsAwayAndComesBackByItself) {
    redis.run({"SET", "a", "1"});
    server.kill();
    const Failure first = raised_by([&] { redis.run({"GET", "a"}); });
    expect_failure(first, store_unreachable, u"OrvoSuite.Store",
                   "The store " + server.url() + " cannot be used (Connection refused)");
    EXPECT_TRUE(is_unreachable(first));
    EXPECT_FALSE(redis.is_reachable());
    server.start();
    EXPECT_TRUE(wait_until([&] { return redis.is_reachable(); }));
    EXPECT_TRUE(redis.run({"GET", "a"}).is_null());
}

TEST_F(RedisStore, ASilentServerCostsOneTimeLimitAndIsBackAtOnce) {
    redis.run({"SET", "a", "1"});
    server.freeze();
    const Failure first = raised_by([&] { redis.run({"GET", "a"}); });
    EXPECT_EQ(words_of(first), "The store " + server.url() +
                                   " cannot be used (it does not answer); what was asked may have "
                                   "been done");
    const auto begin = Clock::now();
    for (int i = 0; i < 100; ++i) {
        const Failure failure = raised_by([&] { redis.run({"GET", "a"}); });
        EXPECT_TRUE(is_unreachable(failure));
        EXPECT_THAT(words_of(failure), Not(HasSubstr("may have been done")));
    }
    EXPECT_LT(Clock::now() - begin, redis.settings().time_limit);
    const auto back = Clock::now();
    server.go_on();
    EXPECT_TRUE(wait_until([&] { return redis.is_reachable(); }));
    RecordProperty("back_after_us", static_cast<int>((Clock::now() - back) / 1us));
    EXPECT_EQ(redis.run({"GET", "a"}).text(), "1");
    EXPECT_EQ(redis.counts().failures, 101u);
}

TEST_F(RedisStore, ACommandThatMayHaveArrivedIsNotSentAgain) {
    FaultyProxy proxy(server.port());
    Redis behind(store_settings(server, "redis://" + proxy.server()));
    behind.run({"SET", "n", "0"});
    proxy.fall_silent();
    EXPECT_THAT(words_of(raised_by([&] {
                    behind.run({"INCR", "n"});
                })),
                HasSubstr("may have been done"));
    // What was held back arrives now.
    proxy.pass_on();
    EXPECT_TRUE(wait_until([&] { return redis.run({"GET", "n"}).text() != "0"; }));
    EXPECT_TRUE(wait_until([&] { return behind.is_reachable(); }));
    EXPECT_EQ(behind.run({"GET", "n"}).text(), "1");
}

TEST(Redis, WhoHadHardlyTimeToAskDoesNotTakeTheStoreForAway) {
    ScriptedRedis server([](int, const Command& command) {
        return std::optional(command.front() == "GET" ? "" : usual_answer(command));
    });
    Pool pool(server.settings());
    const auto ask = [&](std::chrono::milliseconds limit) {
        Pool::Lease connection = pool.acquire(Deadline(10s));
        const std::string_view words[] = {"GET", "a"};
        try {
            connection->exchange(wire_form(words), 1, Deadline(limit));
        } catch (const Lost& lost) {
            connection.discard(lost);
        }
    };
    ask(1ms);
    EXPECT_TRUE(pool.is_reachable());
    ask(server.settings().time_limit);
    EXPECT_TRUE(wait_until([&] { return pool.counts().connects == 3; })) << "a probe makes one";
    EXPECT_TRUE(wait_until([&] { return pool.is_reachable(); }));
}

TEST(Redis, ACommandIsSentOnceAndARepeatableOneTwice) {
    // Connections are closed where a command waits for its answer.
    ScriptedRedis server([](int, const Command& command) -> std::optional<std::string> {
        if (command.front() == "GET") return std::nullopt;
        return usual_answer(command);
    });
    Redis redis(server.settings());
    EXPECT_THAT(words_of(raised_by([&] {
                    redis.run({"GET", "a"});
                })),
                HasSubstr("(it has closed the connection); what was asked may have been done"));
    EXPECT_EQ(server.commands().size(), 1u);
    raised_by([&] { redis.run_repeatable({"GET", "a"}); });
    EXPECT_EQ(server.commands().size(), 3u);
    EXPECT_TRUE(redis.is_reachable());
}

TEST(Redis, ARepeatableCommandSucceedsOnTheNextConnection) {
    ScriptedRedis server([](int connection, const Command& command) -> std::optional<std::string> {
        if (command.front() == "GET" && connection == 0) return std::nullopt;
        return command.front() == "GET" ? "$1\r\nx\r\n" : usual_answer(command);
    });
    Redis redis(server.settings());
    EXPECT_EQ(redis.run_repeatable({"GET", "a"}).text(), "x");
    EXPECT_EQ(redis.counts().connects, 2u);
}

TEST(Redis, AServerThatStartsIsNotUsedYet) {
    ScriptedRedis server([](int, const Command& command) -> std::optional<std::string> {
        if (command.front() == "PING") return "-LOADING Redis is loading the dataset in memory\r\n";
        return usual_answer(command);
    });
    Redis redis(server.settings());
    EXPECT_THAT(words_of(raised_by([&] {
                    redis.run({"GET", "a"});
                })),
                HasSubstr("(LOADING Redis is loading the dataset in memory)"));
    EXPECT_TRUE(server.commands().empty());
    EXPECT_FALSE(redis.is_reachable());
}

TEST(Redis, AStoreThatIsFullOrLacksAReplicaCannotBeUsedNowButIsReached) {
    ScriptedRedis server([](int, const Command& command) -> std::optional<std::string> {
        if (command.front() == "SET") return "-OOM command not allowed\r\n";
        if (command.front() == "INCR") return "-NOREPLICAS Not enough good replicas\r\n";
        return usual_answer(command);
    });
    Redis redis(server.settings());
    const auto expect_refused = [&](const Command& command, const std::string& reason) {
        try {
            redis.run(command);
            ADD_FAILURE() << reason;
        } catch (const RefusedNow& failure) {
            EXPECT_TRUE(is_unreachable(failure));
            EXPECT_THAT(words_of(failure), HasSubstr(" cannot be used (" + reason + ")"));
        }
    };
    expect_refused({"SET", "a", "b"}, "it is full: OOM command not allowed");
    expect_refused({"INCR", "a"}, "NOREPLICAS Not enough good replicas");
    EXPECT_EQ(redis.counts().failures, 2u);
    EXPECT_TRUE(redis.is_reachable());
    EXPECT_EQ(server.commands().size(), 2u);
}

TEST(Redis, WhatIsNoReplyEndsTheConnection) {
    ScriptedRedis server([](int connection, const Command& command) -> std::optional<std::string> {
        if (command.front() == "GET" && connection == 0) return "HTTP/1.1 200 OK\r\n";
        return usual_answer(command);
    });
    Redis redis(server.settings());
    EXPECT_THAT(words_of(raised_by([&] {
                    redis.run({"GET", "a"});
                })),
                HasSubstr("it sends what is no reply"));
    EXPECT_EQ(redis.run({"GET", "a"}).text(), "OK");
}

TEST(Redis, LogsInWithThePasswordAndShowsItToNobody) {
    const RedisServer server({.password = "secret-of-the-store"});
    Redis redis(store_settings(server));
    EXPECT_EQ(redis.run({"PING"}).text(), "PONG");

    Settings wrong = store_settings(server);
    wrong.password = Secret(u"wrong-secret");
    Redis refused(std::move(wrong));
    const std::string words = words_of(raised_by([&] { refused.run({"PING"}); }));
    EXPECT_THAT(words, HasSubstr("(WRONGPASS "));
    EXPECT_THAT(words, Not(HasSubstr("secret")));

    Settings none = store_settings(server);
    none.password = Secret();
    Redis stranger(std::move(none));
    EXPECT_THAT(words_of(raised_by([&] { stranger.run({"PING"}); })), HasSubstr("(NOAUTH "));
}

TEST(Redis, LogsInAsTheUserAndSelectsTheDatabase) {
    const RedisServer server;
    // As docs/store.md has it.
    server.ask({"ACL", "SETUSER", "shop", "on", ">shop-secret", "~orvo:*", "&orvo:*", "+@all",
                "-@admin", "-@dangerous"});
    Settings settings = store_settings(server, "redis://shop@" + server.address() + "/3");
    settings.password = Secret(u"shop-secret");
    Redis redis(std::move(settings));
    EXPECT_EQ(redis.run({"ACL", "WHOAMI"}).text(), "shop");
    redis.run(Script("return redis.call('SET', KEYS[1], ARGV[1])"), {redis.key("a", "b")}, {"1"});
    redis.run({"PUBLISH", redis.key("ended"), "x"});
    EXPECT_THAT(server.ask({"INFO", "keyspace"}), HasSubstr("db3:keys=1"));
    EXPECT_TRUE(is_unreachable(raised_by([&] { redis.run({"GET", "elsewhere"}); })));
}

TEST(Redis, LogsInAsAUserWhoNeedsNoPassword) {
    const RedisServer server;
    server.ask({"ACL", "SETUSER", "shop", "on", "nopass", "~*", "+@all"});
    Redis redis(store_settings(server, "redis://shop@" + server.address()));
    EXPECT_EQ(redis.run({"ACL", "WHOAMI"}).text(), "shop");
}

TEST(SiteStore, IsWhatTheSiteSays) {
    const RedisServer server;
    const TempFolder folder;
    const Environment site("ORVO_SITE_CONFIG",
                           folder.write("site.ini", server.site_section()).string());
    const std::shared_ptr<const SiteStore> store = site_store();
    ASSERT_TRUE(store);
    EXPECT_EQ(store, site_store());
    store->redis->run({"SET", "a", store->keyring.seal("secret", "a")});
    EXPECT_EQ(store->keyring.unseal(store->redis->run({"GET", "a"}).text(), "a"), "secret");
    EXPECT_THAT(server.dump(), Not(HasSubstr("secret")));
}

}  // namespace
}  // namespace orvo::store
