// The store that machines share: what all stores do, and what two machines see of each other.

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <future>
#include <sstream>
#include <thread>

#include "suite/authfilter/cached_store.h"
#include "suite/authfilter/user_key.h"
#include "suite/configuration/ini_files.h"
#include "suite/store/store_error.h"
#include "tests/suite/authfilter/store_test.h"
#include "tests/suite/store/waiting.h"
#include "tests/support/raised.h"
#include "tests/support/redis_server.h"

namespace orvo::authfilter {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;
using Site = std::shared_ptr<const store::SiteStore>;

RedisServer& server_of_all() {
    static RedisServer server;
    return server;
}

std::string new_prefix() {
    static std::atomic<int> made = 0;
    return "site" + std::to_string(++made);
}

// A machine of a site: it has connections of its own. `more`: lines of its settings.
Site new_machine(const RedisServer& server, const std::string& prefix, const std::string& more = {},
                 const std::string& url = {}) {
    const TempFolder folder;
    const auto file =
        folder.write("site.ini", server.site_section(url.empty() ? server.url() : url,
                                                     "StorePrefix = " + prefix + "\n" + more));
    store::Settings settings = store::read_settings(*load_ini_file(file), file);
    store::Keyring keyring = store::Keyring::read(settings.key_file);
    return std::make_shared<store::SiteStore>(
        store::SiteStore{std::make_shared<store::Redis>(std::move(settings)), std::move(keyring)});
}

// The same with these keys.
Site new_machine_with_keys(const RedisServer& server, const std::string& prefix,
                           const std::string& keys) {
    return std::make_shared<store::SiteStore>(
        store::SiteStore{new_machine(server, prefix)->redis, store::Keyring::parse(keys, "keys")});
}

INSTANTIATE_TEST_SUITE_P(
    InRedis, EveryStore,
    testing::Values(StoreKind{"Shared",
                              [](auto passed) {
                                  return std::make_unique<RedisStore>(
                                      new_machine(server_of_all(), new_prefix()),
                                      RedisStore::Options{.ahead = passed});
                              }},
                    StoreKind{"SharedWithCopies",
                              [](auto passed) {
                                  return std::make_unique<CachedStore>(
                                      new_machine(server_of_all(), new_prefix()),
                                      RedisStore::Options{.ahead = passed}, [passed] {
                                          return CachedStore::Clock::time_point(passed());
                                      });
                              }}),
    [](const auto& info) { return info.param.name; });

// Two machines with one shared store. The clock by which they keep copies stands still, so that
// a copy is not merely too old.
class TwoMachines : public testing::Test {
protected:
    explicit TwoMachines(RedisServer& server = server_of_all()) : server_(server) {}

    static void log_in(Store& store, const Text& guid, const Text& user, bool only_one = false) {
        Record record;
        record.user_name = user;
        record.account_path = u"cn=" + user + u",o=Shop";
        record.password = Secret(u"hush-sample");
        store.save(guid, record);
        store.begin({guid, user, {1}, only_one, 10min});
    }
    // Until the other machine, which has a copy, lets it in no longer; how long that took.
    static std::chrono::steady_clock::duration seen_after(Store& store, const Text& guid) {
        const auto begin = std::chrono::steady_clock::now();
        while (store.ask(guid, 1))
            if (std::chrono::steady_clock::now() - begin > 10s) {
                ADD_FAILURE() << "it is still let in";
                break;
            }
        return std::chrono::steady_clock::now() - begin;
    }
    CachedStore new_store(const std::string& more = {}, const std::string& url = {}) {
        return CachedStore(new_machine(server_, prefix_, more, url), {},
                           [this] { return CachedStore::Clock::time_point(now_.load()); });
    }
    // How many scripts have run, as the server tells it.
    std::string questions() const {
        std::istringstream lines(server_.ask({"INFO", "commandstats"}));
        std::string all;
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with("cmdstat_eval")) all += line;
        return all;
    }
    // Whether a question is answered by a copy; no other machine asks the store meanwhile.
    bool is_answered_by_a_copy(Store& store, const Text& guid) {
        const std::string before = questions();
        EXPECT_TRUE(store.ask(guid, 1));
        return questions() == before;
    }
    // Until it hears of changes, and so has a copy.
    void await_a_copy(Store& store, const Text& guid) {
        EXPECT_TRUE(store::wait_until([&] { return is_answered_by_a_copy(store, guid); }));
    }
    void SetUp() override {
        log_in(first_, u"first question", u"nobody");
        await_a_copy(first_, u"first question");
        await_a_copy(second_, u"first question");
        first_.forget(u"first question");
    }

    static void let_in_one_of_a_users_only_logins(Store& first, Store& second) {
        constexpr int threads = 8, rounds = 25;
        const auto guid = [](int machine, int thread, int round) {
            return decimal(machine) + u"-" + decimal(thread) + u"-" + decimal(round);
        };
        std::vector<std::thread> running;
        for (int machine = 0; machine < 2; ++machine)
            for (int thread = 0; thread < threads; ++thread)
                running.emplace_back([&, machine, thread] {
                    for (int round = 0; round < rounds; ++round)
                        log_in(machine == 0 ? first : second, guid(machine, thread, round),
                               u"smith", true);
                });
        for (std::thread& thread : running) thread.join();
        int live = 0;
        for (int machine = 0; machine < 2; ++machine)
            for (int thread = 0; thread < threads; ++thread)
                for (int round = 0; round < rounds; ++round)
                    live += first.ask(guid(machine, thread, round), 1) ? 1 : 0;
        EXPECT_EQ(live, 1);
    }

    RedisServer& server_;
    const std::string prefix_ = new_prefix();
    std::atomic<std::chrono::milliseconds> now_{1h};
    CachedStore first_ = new_store();
    CachedStore second_ = new_store();
};

// The counter's key goes with the latest login that was begun, also while an older one lives on.
TEST_F(TwoMachines, GiveNoLoginTheNumberOfALiveOneThoughTheCounterIsGone) {
    log_in(first_, u"older", u"smith");
    new_machine(server_, prefix_)->redis->run({"DEL", prefix_ + ":login-number"});
    log_in(second_, u"newer", u"smith");
    const auto logins = first_.logins_of(u"older");
    ASSERT_EQ(logins.size(), 2u);
    EXPECT_NE(logins[0].number, logins[1].number);
    EXPECT_FALSE(logins[0].is_asker) << "the last one is the first of the list";
}

TEST_F(TwoMachines, LetInOneOfAUsersOnlyLogins) {
    let_in_one_of_a_users_only_logins(first_, second_);
}

// What the store's keys are on one machine after the other while they are changed.
const std::string old_key = "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8=\n";
const std::string new_key = "ICEiIyQlJicoKSorLC0uLzAxMjM0NTY3ODk6Ozw9Pj8=\n";

TEST_F(TwoMachines, LetInOneOfAUsersOnlyLoginsAlsoWhileTheirKeysAreChanged) {
    RedisStore known(new_machine_with_keys(server_, prefix_, old_key + new_key), {}),
        rotated(new_machine_with_keys(server_, prefix_, new_key + old_key), {});
    let_in_one_of_a_users_only_logins(known, rotated);
}

TEST_F(TwoMachines, KnowAUserAsTheSameWhileTheirKeysAreChanged) {
    const std::string steps[] = {old_key, old_key + new_key, new_key + old_key, new_key};
    const Text account = u"cn=smith,o=Shop";
    const auto expect_the_same = [&](Store& one, Store& other) {
        log_in(one, u"g", u"smith");
        log_in(other, u"h", u"smith");
        EXPECT_EQ(one.logins_of(u"g").size(), 2u);
        EXPECT_EQ(one.end_others(u"g"), 1u);
        EXPECT_FALSE(other.ask(u"h", 1));
        log_in(other, u"h", u"smith", true);
        EXPECT_FALSE(one.ask(u"g", 1));
        Record record;
        record.user_name = u"smith";
        record.account_path = account;
        one.save(u"h", record);
        EXPECT_TRUE(other.ask(u"h", 1)) << "a record of the same user ends no login";
        log_in(one, u"g", u"smith");
        EXPECT_EQ(other.end_all_of(account, u""), 2u);
        EXPECT_FALSE(one.ask(u"g", 1));
        EXPECT_FALSE(one.find(u"h"));
    };
    for (std::size_t step = 1; step < std::size(steps); ++step) {
        SCOPED_TRACE(step);
        RedisStore before(new_machine_with_keys(server_, prefix_, steps[step - 1]), {}),
            after(new_machine_with_keys(server_, prefix_, steps[step]), {});
        expect_the_same(before, after);
        expect_the_same(after, before);
    }
    EXPECT_EQ(server_.ask({"KEYS", prefix_ + ":*-of:*"}), "") << "no list is left behind";
}

// Without the right to subscribe.
TEST_F(TwoMachines, UseNoCopyWhereTheyDoNotHearOfChanges) {
    server_.ask({"ACL", "SETUSER", "deaf", "reset", "on", "nopass", "~*", "+@all"});
    CachedStore deaf = new_store("", "redis://deaf@" + server_.address());
    log_in(first_, u"g", u"smith");
    EXPECT_TRUE(deaf.ask(u"g", 1));
    EXPECT_TRUE(deaf.find(u"g"));
    EXPECT_EQ(deaf.user_of(u"g"), u"cn=smith,o=Shop");
    first_.forget(u"g");
    EXPECT_FALSE(deaf.ask(u"g", 1));
    EXPECT_FALSE(deaf.find(u"g"));
    EXPECT_EQ(deaf.user_of(u"g"), u"");
    log_in(first_, u"h", u"smith");
    server_.ask({"ACL", "SETUSER", "deaf", "allchannels"});
    await_a_copy(deaf, u"h");
}

TEST_F(TwoMachines, AskTheStoreOnceASecondForEachLogin) {
    log_in(first_, u"g", u"smith");
    CachedStore third = new_store();  // which does not hear of the login any more
    await_a_copy(third, u"g");
    now_ = now_.load() + 999ms;
    EXPECT_TRUE(is_answered_by_a_copy(third, u"g"));
    now_ = now_.load() + 1ms;
    EXPECT_FALSE(is_answered_by_a_copy(third, u"g"));
    EXPECT_TRUE(is_answered_by_a_copy(third, u"g"));
}

TEST_F(TwoMachines, SeeALogoutAtOnce) {
    std::vector<std::chrono::steady_clock::duration> times;
    for (int i = 0; i < 21; ++i) {
        const Text guid = u"guid" + decimal(i);
        log_in(first_, guid, u"smith");
        EXPECT_TRUE(second_.ask(guid, 1));
        first_.forget(guid);
        EXPECT_FALSE(first_.ask(guid, 1));
        times.push_back(seen_after(second_, guid));
    }
    std::ranges::sort(times);
    EXPECT_LT(times[times.size() / 2], 50ms);
}

TEST_F(TwoMachines, SeeWhateverEndsOrChangesALogin) {
    const auto expect_seen = [&](const char* what, const std::function<void()>& end) {
        SCOPED_TRACE(what);
        log_in(first_, u"g", u"smith");
        log_in(first_, u"h", u"smith");
        EXPECT_TRUE(second_.ask(u"g", 1));
        EXPECT_TRUE(second_.find(u"g"));
        end();
        seen_after(second_, u"g");
        EXPECT_FALSE(second_.find(u"g") && second_.ask(u"g", 1));
        first_.forget(u"g");
        first_.forget(u"h");
    };
    expect_seen("end_others", [&] { first_.end_others(u"h"); });
    expect_seen("end_all_of", [&] { first_.end_all_of(u"cn=smith,o=Shop", u""); });
    expect_seen("try_end", [&] { first_.try_end(u"h", first_.logins_of(u"g").at(1).number); });
    expect_seen("begin", [&] { log_in(first_, u"i", u"smith", true); });
    expect_seen("save", [&] {
        Record other;
        other.user_name = u"jones";
        first_.save(u"g", other);
    });

    log_in(first_, u"j", u"smith");
    EXPECT_TRUE(second_.ask(u"j", 1));
    first_.begin({u"j", u"smith", {2}, false, 10min});
    seen_after(second_, u"j");
    EXPECT_TRUE(second_.ask(u"j", 2));
}

// An answer that was on its way when the login ended.
TEST_F(TwoMachines, KeepNoCopyThatIsOlderThanTheEnd) {
    for (int i = 0; i < 200; ++i) {
        const Text guid = u"guid" + decimal(i);
        log_in(first_, guid, u"smith");
        std::thread ending([&] { first_.forget(guid); });
        seen_after(second_, guid);
        ending.join();
    }
}

TEST_F(TwoMachines, ShowNothingOfAnybodyToWhoReadsTheStore) {
    const Text guid = u"{4F1A63C2-0C57-4C0D-9D5B-6A1D0E2B7F10}";
    const Record record{u"j.smith-sample", u"cn=j.smith-sample,ou=Users,o=Shop",
                        Secret(u"hush-sample"), u"SHOP\\nt-sample", Secret(u"nt-hush-sample")};
    first_.save(guid, record);
    first_.begin({guid, record.user_name, {24, 1000}, false, 10min});
    first_.begin({u"{1F1A63C2}", u"without-record", {24}, false, 10min});
    EXPECT_TRUE(second_.ask(guid, 1000));
    const std::string dump = server_.dump();
    for (const Text& guessed :
         {record.user_name, user_key_of(record.account_path, record.user_name),
          Text(u"without-record")})
        EXPECT_THAT(dump, Not(HasSubstr(store::Keyring::name_of(to_utf8(guessed)))));
    EXPECT_THAT(dump, HasSubstr(prefix_ + ":login:" + stored_name(guid)));
    for (const TextView secret :
         {TextView(guid), TextView(u"4F1A63C2"), TextView(u"1F1A63C2"), TextView(u"smith-sample"),
          TextView(u"hush-sample"), TextView(u"nt-sample"), TextView(u"without-record"),
          TextView(u"o=Shop")}) {
        EXPECT_THAT(dump, Not(HasSubstr(to_utf8(secret))));
        EXPECT_THAT(dump, Not(HasSubstr(std::string(reinterpret_cast<const char*>(secret.data()),
                                                    secret.size() * sizeof(char16_t)))));
    }
    std::istringstream keys(server_.ask({"KEYS", prefix_ + ":*"}));
    int count = 0;
    for (std::string key; std::getline(keys, key); ++count)
        EXPECT_GT(std::stoll(server_.ask({"PTTL", key})), 0) << key << " would stay for ever";
    EXPECT_EQ(count, 7) << "a record, two logins, three lists, and the count";
}

TEST_F(TwoMachines, TakeNothingThatTheirKeyHasNotSealedForThisGuid) {
    log_in(first_, u"a", u"smith");
    log_in(first_, u"b", u"jones");
    const auto key = [&](const char* what, const Text& guid) {
        return prefix_ + ":" + what + ":" + stored_name(guid);
    };
    server_.ask({"COPY", key("record", u"a"), key("record", u"b"), "REPLACE"});
    server_.ask({"COPY", key("login", u"a"), key("login", u"c")});
    EXPECT_FALSE(first_.find(u"b"));
    EXPECT_FALSE(first_.ask(u"c", 1));
    EXPECT_EQ(first_.user_of(u"c"), u"");
    EXPECT_TRUE(first_.ask(u"a", 1));

    RedisStore other(new_machine_with_keys(server_, prefix_, old_key), {});
    EXPECT_FALSE(other.find(u"a"));
    EXPECT_FALSE(other.ask(u"a", 1));
    EXPECT_EQ(other.user_of(u"a"), u"");
}

// A browser comes back with the GUID that it had.
TEST_F(TwoMachines, LetAUserLogInAnewWhoseRecordWasSealedWithALostKey) {
    log_in(first_, u"g", u"smith");
    EXPECT_FALSE(first_.try_create(u"g"));
    RedisStore other(new_machine_with_keys(server_, prefix_, new_key), {});
    EXPECT_FALSE(other.find(u"g"));
    EXPECT_TRUE(other.try_create(u"g"));
    EXPECT_FALSE(other.try_create(u"g"));
    log_in(other, u"g", u"smith");
    EXPECT_TRUE(other.ask(u"g", 1));
    EXPECT_TRUE(other.find(u"g"));
}

class AwayServer {
protected:
    RedisServer own_server_;
};

class TwoMachinesWithoutTheirStore : AwayServer, public TwoMachines {
protected:
    TwoMachinesWithoutTheirStore() : TwoMachines(own_server_) {}

    void expect_away(Store& store) {
        const auto expect = [](auto ask) { EXPECT_TRUE(store::is_unreachable(raised_by(ask))); };
        expect([&] { store.ask(u"g", 1); });
        expect([&] { store.find(u"g"); });
        expect([&] { store.user_of(u"g"); });
        expect([&] { store.try_create(u"new"); });
        expect([&] { store.begin({u"g", u"smith", {1}, false, 10min}); });
        expect([&] { store.forget(u"g"); });
        expect([&] { store.end_all_of(u"cn=smith,o=Shop", u""); });
    }
    // As soon as it answers again; how long that took.
    template <class Ask>
    static std::chrono::steady_clock::duration back_after(Ask ask) {
        const auto begin = std::chrono::steady_clock::now();
        for (;;) {
            try {
                ask();
                break;
            } catch (const Failure& failure) {
                EXPECT_TRUE(store::is_unreachable(failure)) << to_utf8(failure.description);
            }
            if (std::chrono::steady_clock::now() - begin > 20s) {
                ADD_FAILURE() << "it is still away";
                break;
            }
            std::this_thread::yield();
        }
        return std::chrono::steady_clock::now() - begin;
    }
    RedisServer& server() { return own_server_; }
};

TEST_F(TwoMachinesWithoutTheirStore, LetNobodyInUntilItIsBack) {
    log_in(first_, u"g", u"smith");
    server().kill();
    now_ = now_.load() + 1s;
    expect_away(first_);
    expect_away(second_);
    server().start();
    back_after([&] { EXPECT_FALSE(first_.ask(u"g", 1)) << "it has lost what it held"; });
    log_in(first_, u"g", u"smith");
    EXPECT_TRUE(first_.ask(u"g", 1));
    back_after([&] { EXPECT_TRUE(second_.ask(u"g", 1)); });
    first_.forget(u"g");
    seen_after(second_, u"g");
}

// Patient, so that none notices the silence by itself, however slow the test's machine.
TEST_F(TwoMachinesWithoutTheirStore, LetInForASecondWhomTheyHaveJustLetIn) {
    log_in(first_, u"g", u"smith");
    CachedStore patient = new_store("StoreTimeLimit = 60000\n");
    await_a_copy(patient, u"g");
    server().freeze();
    EXPECT_TRUE(patient.ask(u"g", 1));
    EXPECT_EQ(patient.find(u"g")->user_name, u"smith");
    now_ = now_.load() + 1s;
    server().kill();
    expect_away(patient);
}

TEST_F(TwoMachinesWithoutTheirStore, LetInAgainWhenItIsSilentNoMore) {
    log_in(first_, u"g", u"smith");
    EXPECT_TRUE(second_.ask(u"g", 1));
    server().freeze();
    now_ = now_.load() + 1s;
    expect_away(second_);
    expect_away(first_);
    server().go_on();
    back_after([&] { EXPECT_TRUE(second_.ask(u"g", 1)); });
    back_after([&] { EXPECT_TRUE(first_.ask(u"g", 1)); });
}

TEST_F(TwoMachinesWithoutTheirStore, EndLoginsThoughTheConnectionIsLostBeforeTheAnswer) {
    CachedStore patient = new_store("StoreTimeLimit = 60000\n");
    const auto expect_ended = [&](const std::function<void()>& end) {
        log_in(first_, u"g", u"smith");
        server().ask({"CLIENT", "PAUSE", "60000", "WRITE"});
        auto ended = std::async(std::launch::async, end);
        EXPECT_TRUE(store::wait_until([&] {
            return server().ask({"INFO", "clients"}).find("blocked_clients:1") != std::string::npos;
        }));
        server().ask({"CLIENT", "KILL", "TYPE", "NORMAL"});
        server().ask({"CLIENT", "UNPAUSE"});
        EXPECT_NO_THROW(ended.get());
        EXPECT_FALSE(first_.ask(u"g", 1));
    };
    expect_ended([&] { EXPECT_EQ(patient.end_all_of(u"cn=smith,o=Shop", u""), 1u); });
    expect_ended([&] { patient.forget(u"g"); });
}

TEST_F(TwoMachinesWithoutTheirStore, TakeNoNewLoginsWhereItIsFullAndKeepThoseThereAre) {
    log_in(first_, u"g", u"smith");
    log_in(first_, u"h", u"jones");
    first_.save(u"record", {});
    server().ask({"CONFIG", "SET", "maxmemory", "1"});
    const auto expect_full = [&](auto ask) {
        expect_failure(raised_by(ask), store::store_unreachable, store::store_source,
                       "The store " + server().url() +
                           " cannot be used (it is full: OOM command not allowed when used memory "
                           "> 'maxmemory'.)");
    };
    expect_full([&] { first_.begin({u"new", u"walker", {1}, false, 10min}); });
    expect_full([&] { first_.save(u"new", {}); });
    expect_full([&] { first_.try_create(u"new"); });
    EXPECT_FALSE(second_.ask(u"new", 1));

    now_ = now_.load() + 1s;
    EXPECT_TRUE(second_.ask(u"g", 1));
    EXPECT_TRUE(second_.find(u"record"));
    log_in(second_, u"g", u"smith");
    EXPECT_TRUE(first_.ask(u"g", 1)) << "in the place of what it had";
    first_.forget(u"g");
    EXPECT_FALSE(first_.ask(u"g", 1));
    EXPECT_EQ(second_.end_all_of(u"cn=jones,o=Shop", u""), 1u);
    EXPECT_FALSE(second_.ask(u"h", 1));
    server().ask({"CONFIG", "SET", "maxmemory", "0"});
    log_in(first_, u"new", u"walker");
    EXPECT_TRUE(second_.ask(u"new", 1));
}

}  // namespace
}  // namespace orvo::authfilter
