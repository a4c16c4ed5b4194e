#include "component/config/Initialize.h"

#include "component/config/SharedServerInfo.h"
#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

static_assert(slot_of<&Initialize::InitializeConnectionPool> == 7);
static_assert(slot_of<&Initialize::InitializeCache> == 8);

class InitializeTest : public ComponentTest {
protected:
    template <class Body>
    void through_every_door(Body body) {
        through_doors_to<Initialize>(body);
    }
};

TEST_FRESH(InitializeTest, ItsCreationLoadsTheSitesConfiguration) {
    const Initialize initialize;
    const auto calls = journal_.take();
    ASSERT_GE(calls.size(), 3u);
    EXPECT_EQ(calls[0], "new Quendra.Configuration()");
    EXPECT_EQ(calls[1], "Initialize()");
    EXPECT_EQ(calls[2], "ReadConfigValue(MEMBERSHIP, LDAPServer)");
    EXPECT_TRUE(shared_server_info()->IsLoaded());
    EXPECT_EQ(configuration_.alive, 0);
}

TEST_FRESH(InitializeTest, ItsCreationFailsAsTheConfigurationDid) {
    journal_.refuse("Initialize", {53, u"Its.Own", u"site.ini: not there"});
    expect_failure(raised_by([] { Initialize(); }), 53, u"Its.Own", "site.ini: not there");
    expect_failure(raised_by([] { make<Initialize>(); }), 53, u"Its.Own", "site.ini: not there");
}

TEST_FRESH(InitializeTest, NamesAndValuesAreHandedToTheProviderAndItsAnswerBack) {
    through_every_door([this](Behind<Initialize>& initialize) {
        // True is usually -1; another number is not made one.
        for (const std::int16_t answer : {-1, 0, 1, 256}) {
            directory_.is_ready = Boolean::of(answer);
            Variant names = Values{u"Size", std::int32_t{3}}, values = u"anything";
            EXPECT_EQ(initialize.call<&Initialize::InitializeConnectionPool>(names, values).number,
                      answer);
            EXPECT_THAT(journal_.take(),
                        ElementsAre("new Test.Directory()", "CreateEntry()",
                                    "InitializeConnectionPool([Size, 3], anything)"));
            EXPECT_EQ(initialize.call<&Initialize::InitializeCache>(names, values).number, answer);
            EXPECT_THAT(journal_.take(), ElementsAre("new Test.Directory()", "CreateEntry()",
                                                     "InitializeCache([Size, 3], anything)"));
        }
    });
}

TEST_FRESH(InitializeTest, TheProvidersModuleLivesUntilTheOperationEnds) {
    through_every_door([this](Behind<Initialize>& initialize) {
        Variant names = Values{u"Size"}, values = Values{std::int32_t{3}};
        int modules = 0;
        const auto count = [&] { modules += directory_.modules; };
        journal_.during("InitializeConnectionPool", count);
        initialize.call<&Initialize::InitializeConnectionPool>(names, values);
        EXPECT_EQ(modules, 1);
        journal_.during("InitializeCache", count);
        initialize.call<&Initialize::InitializeCache>(names, values);
        EXPECT_EQ(modules, 2);
        EXPECT_EQ(directory_.modules, 0);
        EXPECT_EQ(directory_.entries, 0);
    });
}

TEST_FRESH(InitializeTest, TheProvidersFailuresArriveAsTheyAre) {
    journal_.refuse("InitializeConnectionPool", {5, u"Its.Own", u"no such parameter: Size"});
    journal_.refuse("InitializeCache", {5, u"Its.Own", u"no such parameter: Size"});
    through_every_door([this](Behind<Initialize>& initialize) {
        Variant names = Values{u"Size"}, values = Values{std::int32_t{3}};
        expect_failure(raised_by([&] {
                           initialize.call<&Initialize::InitializeConnectionPool>(names, values);
                       }),
                       5, u"Its.Own", "no such parameter: Size");
        expect_failure(
            raised_by([&] { initialize.call<&Initialize::InitializeCache>(names, values); }), 5,
            u"Its.Own", "no such parameter: Size");
        EXPECT_TRUE(log_.take().empty());
    });
}

}  // namespace
}  // namespace orvo
