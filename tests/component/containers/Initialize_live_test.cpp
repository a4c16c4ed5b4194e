// The provider's pool and cache, set through the component, and the accessor's list of users.

#include <chrono>
#include <thread>

#include "tests/component/containers/containers_live_test.h"

namespace orvo {
namespace {

constexpr auto parameter_error = error_number(0x8007203F);

// The settings are the process's: the next test begins with the defaults.
template <class Base>
class Initialize : public Base {
protected:
    ~Initialize() override {
        in_fresh_thread([] {
            pool(list({u"MaximumSize"}), Values{16});
            cache(list({u"Entries", u"TimeToLive"}), Values{0, 60});
        });
    }
    static Variant pool(const Variant& names, const Variant& values) {
        return late::call(create_object(u"OrvoMembership.Initialize"), u"InitializeConnectionPool",
                          {names, values});
    }
    static Variant cache(const Variant& names, const Variant& values) {
        return late::call(create_object(u"OrvoMembership.Initialize"), u"InitializeCache",
                          {names, values});
    }
};

class InitializeLive : public Initialize<ContainersLive> {
protected:
    void expect_refused(const std::function<void()>& call, const std::string& why) {
        expect_failure(raised_by(call), parameter_error, source(),
                       "(89) A setting or argument is not valid. " + why);
    }
};

class InitializeOverLdap : public Initialize<ContainersOverLdap> {
protected:
    // A connection that was closed here is still open there for a moment.
    void expect_connections(int wanted) {
        for (int round = 0; round < 200 && server_.connections() != wanted; ++round)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        EXPECT_EQ(server_.connections(), wanted);
    }
};

TEST_FRESH(InitializeOverLdap, WithoutAnyParameterTheProvidersDefaultsHold) {
    EXPECT_EQ(pool(Values(), Values()), Variant(true));
    EXPECT_EQ(cache(Values(), Values()), Variant(true));
    const Object one = members(), other = members();
    const Object jsmith = user(u"jsmith");
    found(one, list({u"cn=a*"}));
    found(other, list({u"cn=a*"}));
    EXPECT_EQ(property(jsmith, u"LastName"), "Smith");
    expect_connections(1);
}

TEST_FRESH(InitializeOverLdap, APoolOfSizeZeroKeepsConnectionsNoLongerThanTheObjectsOfAUser) {
    EXPECT_EQ(pool(list({u"maximumsize"}), Values{0}), Variant(true));
    {
        const Object one = members(), other = members();
        expect_connections(1);
    }
    expect_connections(0);
    EXPECT_EQ(pool(list({u"MaximumSize", u"IdleLimit"}), list({u"16", u"30"})), Variant(true));
    const Object one = members(), other = members();
    expect_connections(1);
}

TEST_FRESH_FOR_EACH(InitializeLive, APoolParameterThatCannotBeUsedIsRefusedByName) {
    expect_refused([] { pool(list({u"MaximumSise"}), Values{1}); },
                   "There is no setting 'MaximumSise'. There are: MaximumSize, MaximumIdle, "
                   "WaitLimit, IdleLimit, AgeLimit, ConnectLimit, AnswerLimit, "
                   "OperationLimit, RecheckAfter, FailbackAfter, ReplicaLag.");
    expect_refused(
        [] {
            pool(list({u"MaximumSize", u"WaitLimit"}), Values{1, -1});
        },
        "The setting 'WaitLimit' has to be a whole number from 0 to 600000.");
    expect_refused([] { pool(list({u"MaximumSize"}), list({u"many"})); },
                   "The setting 'MaximumSize' has to be a whole number from 0 to 1000.");
    expect_refused(
        [] {
            pool(list({u"IdleLimit", u"idlelimit"}), Values{1, 2});
        },
        "The setting 'IdleLimit' is given twice.");
    expect_refused([] { pool(list({u"IdleLimit"}), Values()); },
                   "There are 1 names of settings and 0 values.");
    expect_refused([] { pool(u"IdleLimit", Values{1}); },
                   "The names of the settings are not an array.");
    members();
}

TEST_FRESH(InitializeOverLdap, ArraysMayBeginAnywhere) {
    Values names(5, 1), values(-3, 1);
    names[5] = u"MaximumSize";
    values[-3] = 0;
    EXPECT_EQ(pool(names, values), Variant(true));
    members();
    expect_connections(0);
}

TEST_FRESH_FOR_EACH(InitializeLive, ACacheParameterThatCannotBeUsedIsRefusedByName) {
    expect_refused([] { cache(list({u"MaximumSize"}), Values{1}); },
                   "There is no setting 'MaximumSize'. There are: Entries, TimeToLive.");
    expect_refused([] { cache(list({u"Entries"}), Values{1.5}); },
                   "The setting 'Entries' has to be a whole number from 0 to 1000000.");
}

TEST_FRESH(InitializeOverLdap, ACachedEntryAnswersUntilThisProcessWritesIt) {
    const std::string dn = shop_.user_dn("jsmith");
    EXPECT_EQ(cache(list({u"Entries", u"TimeToLive"}), Values{100, 600}), Variant(true));
    EXPECT_EQ(property(user(u"jsmith"), u"Position"), "Senior buyer");
    ASSERT_EQ(shop_.replace(dn, "Position", {"Elsewhere"}), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(property(user(u"jsmith"), u"Position"), "Senior buyer") << "of another process";
    late::put(user(u"jsmith"), u"PhoneNumber", u"1");
    EXPECT_EQ(property(user(u"jsmith"), u"Position"), "Elsewhere");

    EXPECT_EQ(cache(list({u"Entries"}), Values{0}), Variant(true));
    ASSERT_EQ(shop_.replace(dn, "Position", {"Reader"}), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(property(user(u"jsmith"), u"Position"), "Reader") << "without a cache";
}

class AccessorLive : public ContainersLive {
protected:
    Object accessor() const {
        const Object made = create_object(u"OrvoMembership.PMMAccessor");
        late::call(made, u"InitConfigFile", {from_utf8(shop_.site_ini().string())});
        return made;
    }
    std::vector<std::string> users(int application) const {
        return column(
            late::call(accessor(), u"GetLDAPUsers", {std::int32_t(application)}).to<Object>(),
            u"CN");
    }
    std::vector<std::string> probed(const char* filter) {
        std::vector<std::string> names;
        for (const std::string& dn : shop_.find("ou=Users,o=Shop", filter))
            names.push_back(shop_.values(dn, "cn")[0]);
        return names;
    }
};

TEST_FRESH_FOR_EACH(AccessorLive, ListsTheUsersOfAnApplication) {
    const auto expected = probed("(OrvoApps=3)");
    EXPECT_GT(expected.size(), 5u);
    EXPECT_THAT(users(3), testing::UnorderedElementsAreArray(expected));
    EXPECT_THAT(users(77), IsEmpty());
}

TEST_FRESH_FOR_EACH(AccessorLive, ListsTheAdministratorsByTheirType) {
    const auto expected = probed("(OrvoUserType=4)");
    EXPECT_EQ(expected.size(), 5u);
    EXPECT_THAT(users(10), testing::UnorderedElementsAreArray(expected));
}

TEST_FRESH_FOR_EACH(AccessorLive, WithoutAConfigurationFileIsNotSet) {
    const Object made = create_object(u"OrvoMembership.PMMAccessor");
    EXPECT_EQ(raised_by([&] { late::call(made, u"GetLDAPUsers", {3}); }).number, 91);
}

}  // namespace
}  // namespace orvo
