#include "suite/directory/ldap/memory/entry_cache.h"

#include <atomic>
#include <thread>
#include <vector>

#include "tests/suite/directory/ldap/pool/pool_test.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t wrong_credentials = static_cast<std::int32_t>(0x8007052E);
const Variant nothing = Values{Variant()};

class CachedEntryTest : public PoolTest {
protected:
    CachedEntryTest() { use_cache(100, 60); }

    void use_cache(std::int32_t entries, std::int32_t seconds) {
        Variant names = Values{u"Entries", u"TimeToLive"}, values = Values{entries, seconds};
        LdapEntry({}, client_).InitializeCache(names, values);
    }

    // How often the server was asked for an entry meanwhile.
    template <class Work>
    long searches(Work work) {
        const long before = counted("cn=Search,cn=Operations", "monitorOpInitiated");
        work();
        // The counting itself is one.
        return counted("cn=Search,cn=Operations", "monitorOpInitiated") - before - 1;
    }

    void warm_up(const User& as) {
        LdapEntry entry({}, client_);
        bind(entry, as, u"cn=djansen", Values{u"sn"});
        values(entry, u"sn");
    }
};

TEST_F(CachedEntryTest, SwitchedOffEveryReadingButTheFirstOfAListAsksTheServer) {
    use_cache(0, 60);
    warm_up(service());
    clock_.advance(EntryCache::bind_lasts);
    LdapEntry entry({}, client_);
    EXPECT_EQ(searches([&] {
                  bind(entry, service());
                  values(entry, u"sn");
                  values(entry, u"sn");
                  values(entry, u"sn");
              }),
              3);
}

TEST_F(CachedEntryTest, AnswersFromWhatWasReadBefore) {
    warm_up(service());
    LdapEntry entry({}, client_);
    EXPECT_EQ(searches([&] {
                  bind(entry, service(), u"cn=djansen", Values{u"cn", u"sn"});
                  for (int round = 0; round < 3; ++round) {
                      EXPECT_EQ(values(entry, u"surname"), Variant(Values{u"Jansen"}));
                      EXPECT_EQ(values(entry, u"OrvoApps"),
                                Variant(Values{std::int32_t(1), std::int32_t(3)}));
                  }
              }),
              0);
}

TEST_F(CachedEntryTest, KnowsWhatIsMissingAndWhatComesOnlyByNameOnceItWasAskedFor) {
    warm_up(service());
    LdapEntry entry({}, client_);
    bind(entry, service());
    EXPECT_EQ(searches([&] { EXPECT_EQ(values(entry, u"ManagerCN"), nothing); }), 0);
    EXPECT_EQ(searches([&] { EXPECT_EQ(values(entry, u"userPassword"), nothing); }), 1);
    EXPECT_EQ(searches([&] { EXPECT_NE(values(entry, u"entryUUID"), nothing); }), 1);
    EXPECT_EQ(searches([&] { EXPECT_NE(values(entry, u"entryUUID"), nothing); }), 0);
}

TEST_F(CachedEntryTest, NeverAnswersForTheCredentials) {
    use({u"RecheckAfter"}, {0});
    warm_up(service());
    const long before = binds();
    EXPECT_EQ(bind_result(service()), 0);
    EXPECT_EQ(binds() - before, 1);
    EXPECT_EQ(bind_result({service().name, "wrong"}), wrong_credentials);
    EXPECT_EQ(checked({server_.user_dn("djansen"), "wrong"}), -1);
}

TEST_F(CachedEntryTest, ShowsEachUserWhatThatUserMaySee) {
    ASSERT_EQ(probe_.replace(server_.user_dn("djansen"), "SpendLimit", {"4711"}), 0);
    const Variant limit = Values{u"4711"};
    LdapEntry theirs({}, client_), foreign({}, client_);
    bind(theirs, service());
    bind(foreign, user("glee"));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(values(theirs, u"SpendLimit"), limit);
        EXPECT_EQ(values(foreign, u"SpendLimit"), nothing);
    }
}

TEST_F(CachedEntryTest, ForgetsWhatThisProcessWrites) {
    warm_up(service());
    LdapEntry one({}, client_), other({}, client_);
    bind(one, service());
    bind(other, service(), u"CN=DJansen");
    EXPECT_EQ(values(one, u"sn"), Variant(Values{u"Jansen"}));
    set(other, u"sn", u"Changed");
    EXPECT_EQ(values(one, u"sn"), Variant(Values{u"Changed"}));
    Text name = u"CostCenter";
    set(one, name, u"4708");
    EXPECT_EQ(values(other, name), Variant(Values{u"4708"}));
    one.ClearValues(name);
    EXPECT_EQ(values(other, name), nothing);
}

TEST_F(CachedEntryTest, ForgetsWhatThisProcessDeletes) {
    warm_up(service());
    LdapEntry users({}, client_), entry({}, client_);
    bind(users, service(), u"");
    Text type = u"orvoPerson", name = u"cn=djansen,ou=Users,o=Shop";
    users.DeleteChild(type, name);
    EXPECT_EQ(bind_result(service()), error_number(0x80072030));
}

TEST_F(CachedEntryTest, SeesWhatOthersWriteWhenItsTimeIsOver) {
    use_cache(100, 1);
    warm_up(service());
    LdapEntry entry({}, client_);
    bind(entry, service());
    ASSERT_EQ(probe_.replace(server_.user_dn("djansen"), "sn", {"Changed"}), 0);
    EXPECT_EQ(values(entry, u"sn"), Variant(Values{u"Jansen"}));
    clock_.advance(1050ms);
    EXPECT_EQ(values(entry, u"sn"), Variant(Values{u"Changed"}));
}

TEST_F(CachedEntryTest, AsksForAPasswordEveryTime) {
    const User root{server_.root_dn(), server_.root_password()};
    warm_up(root);
    LdapEntry entry({}, client_);
    bind(entry, root, u"cn=djansen", Values{u"userPassword"});
    EXPECT_EQ(searches([&] {
                  EXPECT_NE(values(entry, u"userPassword"), nothing);
                  EXPECT_NE(values(entry, u"userPassword"), nothing);
              }),
              2);
}

TEST_F(CachedEntryTest, KeepsNoMoreEntriesThanAllowed) {
    use_cache(2, 60);
    LdapEntry one({}, client_), other({}, client_), third({}, client_);
    bind(one, service(), u"cn=djansen");
    bind(other, service(), u"cn=jsmith");
    bind(third, service(), u"cn=admin");
    EXPECT_EQ(searches([&] {
                  LdapEntry again({}, client_);
                  bind(again, service(), u"cn=admin");
                  bind(again, service(), u"cn=jsmith");
              }),
              0);
    EXPECT_EQ(searches([&] {
                  LdapEntry again({}, client_);
                  bind(again, service(), u"cn=djansen");
              }),
              1);
}

TEST_F(CachedEntryTest, NeverShowsAThreadLessThanWhatHasBeenWritten) {
    std::atomic<int> written = 0, stale = 0;
    std::vector<std::thread> readers;
    const auto number = [](LdapEntry& entry) {
        return std::stoi(to_utf8(element(values(entry, u"PhoneNumber"), 0).to<Text>()));
    };
    LdapEntry writer({}, client_);
    bind(writer, service());
    set(writer, u"PhoneNumber", u"0");
    for (int reader = 0; reader < 4; ++reader)
        readers.emplace_back([&] {
            LdapEntry entry({}, client_);
            bind(entry, service());
            while (written < 200) {
                const int least = written;
                if (number(entry) < least) ++stale;
            }
        });
    for (int round = 1; round <= 200; ++round) {
        set(writer, u"PhoneNumber", from_utf8(std::to_string(round)));
        written = round;
    }
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(stale, 0);
}

}  // namespace
}  // namespace orvo::directory::ldap
