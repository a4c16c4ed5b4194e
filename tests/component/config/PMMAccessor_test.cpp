#include "component/config/PMMAccessor.h"

#include "component/config/SharedServerInfo.h"
#include "platform/objects/recordset/builder.h"
#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(slot_of<&PMMAccessor::InitConfigFile> == 7);
static_assert(slot_of<&PMMAccessor::GetLDAPUsers> == 8);

class AccessorTest : public ComponentTest {
protected:
    static void initialise(Behind<PMMAccessor>& accessor) {
        const Text path = u"C:\\Site\\other.ini";
        accessor.call<&PMMAccessor::InitConfigFile>(path);
    }
    // Each door on a thread of its own, whose settings nobody has loaded.
    template <class Body>
    void through_every_door(Body body) {
        for (const Door door : every_door) {
            SCOPED_TRACE(testing::PrintToString(door));
            in_fresh_thread([&] {
                Behind<PMMAccessor> accessor(door);
                journal_.clear();
                body(accessor);
            });
        }
    }
};

TEST_FRESH(AccessorTest, LoadsANamedSiteFileIntoTheSharedSettings) {
    through_every_door([this](Behind<PMMAccessor>& accessor) {
        initialise(accessor);
        const auto calls = journal_.take();
        ASSERT_GE(calls.size(), 3u);
        EXPECT_EQ(calls[0], "new Quendra.Configuration()");
        EXPECT_EQ(calls[1], "LoadSiteConfigurationFile(C:\\Site\\other.ini)");
        EXPECT_EQ(calls[2], "ReadConfigValue(MEMBERSHIP, LDAPServer)");
        EXPECT_TRUE(shared_server_info()->IsLoaded());
        EXPECT_EQ(configuration_.alive, 0) << "the component is released";
    });
}

// A configuration component whose fourth operation answers a T.
template <class T>
class Answering {
public:
    T LoadSiteConfigurationFile(const Text&) { return answer; }
    Variant ReadConfigValue(Text&, Text& key) { return key; }

    static inline T answer{};
};

}  // namespace

// clang-format off
template <class T>
inline constexpr auto table_of<Answering<T>> = describe<Answering<T>>(
    "IAnswering", "a717e666-a0d2-453a-9357-9dcf856be20b",
    reserved(1, 3),
    method<&Answering<T>::LoadSiteConfigurationFile>("LoadSiteConfigurationFile", "path"),
    reserved(5, 6),
    method<&Answering<T>::ReadConfigValue>("ReadConfigValue", "section", "key"));
// clang-format on
template <class T>
inline constexpr auto class_of<Answering<T>> =
    describe_class<Answering<T>>("Quendra.Configuration", "7e57ab1e-0000-4000-8000-0000000000f4");

namespace {

TEST_FRESH(AccessorTest, TheLoadingMayAnswerAnything) {
    configuration_.remove();
    const auto loads_with = [&]<class T>(T answer) {
        Answering<T>::answer = answer;
        const LocalClass component = local_class<Answering<T>>();
        in_fresh_thread([] {
            PMMAccessor accessor;
            accessor.InitConfigFile(u"other.ini");
            EXPECT_EQ(shared_server_info()->GetServerName(), Variant(u"LDAPServer"));
        });
    };
    loads_with(Variant(u"a text that has to be freed"));
    loads_with(Variant(Values{1, u"two"}));
    loads_with(true);
    loads_with(2.5);
    for (const std::int32_t tag : {8, 9, 0x200C, 0x4008, -1}) loads_with(tag);
    Answering<Variant>::answer = {};
}

TEST_FRESH(AccessorTest, ASecondFileBringsANewProviderAndItsServiceAccount) {
    through_every_door([this](Behind<PMMAccessor>& accessor) {
        membership().erase(u"MemScriptUser");
        membership().erase(u"MemScriptCode");
        initialise(accessor);
        forget();
        accessor.call<&PMMAccessor::GetLDAPUsers>(std::int32_t{7});
        EXPECT_EQ(journal_.take()[2], "Connect(dir01:389, ou=Users,o=Shop, ,o=Shop, )");
        membership() = shop();
        initialise(accessor);
        EXPECT_EQ(directory_.modules, 0) << "the first one's goes with its creator";
        forget();
        accessor.call<&PMMAccessor::GetLDAPUsers>(std::int32_t{7});
        const auto calls = journal_.take();
        EXPECT_EQ(calls[0], "new Test.Directory()");
        EXPECT_EQ(calls[2], "Connect(dir01:389, ou=Users,o=Shop, cn=script,o=Shop, script-code)");
    });
}

TEST_FRESH(AccessorTest, AFileThatCannotBeLoadedLeavesANewProviderAndTheFormerAccount) {
    through_every_door([this](Behind<PMMAccessor>& accessor) {
        initialise(accessor);
        accessor.call<&PMMAccessor::GetLDAPUsers>(std::int32_t{7});
        EXPECT_EQ(directory_.modules, 1);
        journal_.refuse_nth("LoadSiteConfigurationFile", 1, {53, u"Its.Own", u"not there"});
        raised_by([&] { initialise(accessor); });
        EXPECT_EQ(directory_.modules, 0);
        EXPECT_EQ(configuration_.alive, 0);
        forget();
        accessor.call<&PMMAccessor::GetLDAPUsers>(std::int32_t{7});
        const auto calls = journal_.take();
        EXPECT_EQ(calls[0], "new Test.Directory()");
        EXPECT_EQ(calls[2], "Connect(dir01:389, ou=Users,o=Shop, cn=script,o=Shop, script-code)");
    });
}

TEST_FRESH(AccessorTest, MakesTheConfigurationByItselfAlsoInAContext) {
    const RecordingContext context(journal_);
    PMMAccessor accessor;
    accessor.InitConfigFile(u"other.ini");
    EXPECT_EQ(journal_.take()[0], "new Quendra.Configuration()");
}

TEST_FRESH(AccessorTest, AFileThatCannotBeLoadedIsReportedUnderInit) {
    journal_.refuse("LoadSiteConfigurationFile", {53, u"Its.Own", u"other.ini: not there"});
    through_every_door([](Behind<PMMAccessor>& accessor) {
        expect_failure(raised_by([&] { initialise(accessor); }), 53, u"Its.Own",
                       block("35", "OrvoMembership.PMMAccessor.Init", "other.ini: not there"));
    });
}

TEST_FRESH(AccessorTest, UsersOfAnApplicationAreFoundByItsNumber) {
    through_every_door([this](Behind<PMMAccessor>& accessor) {
        directory_.found = RecordSetBuilder({u"CN"}).open().object();
        initialise(accessor);
        journal_.clear();
        EXPECT_EQ(accessor.call<&PMMAccessor::GetLDAPUsers>(std::int32_t{7}), directory_.found);
        EXPECT_THAT(
            journal_.take(),
            ElementsAre("new Test.Directory()", "CreateSearch()",
                        "Connect(dir01:389, ou=Users,o=Shop, cn=script,o=Shop, script-code)",
                        "Execute((& (objectClass=top)(orvoapps=7)), [CN], 1000)"));
        for (const auto& [number, filter] :
             std::map<std::int32_t, std::string>{{0, "(orvoapps=0)"},
                                                 {-1, "(orvoapps=-1)"},
                                                 {11, "(orvoapps=11)"},
                                                 {2147483647, "(orvoapps=2147483647)"}}) {
            accessor.call<&PMMAccessor::GetLDAPUsers>(number);
            EXPECT_EQ(journal_.take().back(),
                      "Execute((& (objectClass=top)" + filter + "), [CN], 1000)");
        }
    });
}

TEST_FRESH(AccessorTest, UsersOfApplication10AreFoundByTheirType) {
    through_every_door([this](Behind<PMMAccessor>& accessor) {
        initialise(accessor);
        accessor.call<&PMMAccessor::GetLDAPUsers>(std::int32_t{10});
        EXPECT_EQ(journal_.take().back(),
                  "Execute((& (objectClass=top)(|(orvousertype = 4)(orvousertype = 33))), [CN], "
                  "1000)");
    });
}

TEST_FRESH(AccessorTest, BeforeInitConfigFileNobodyIsFound) {
    through_every_door([this](Behind<PMMAccessor>& accessor) {
        expect_failure(
            raised_by([&] { accessor.call<&PMMAccessor::GetLDAPUsers>(std::int32_t{7}); }), 91,
            u"OrvoMembership",
            block("5B", "OrvoMembership.PMMAccessor.GetLDAPUsers",
                  "Object variable or With block variable not set"));
        EXPECT_THAT(journal_.take(), IsEmpty());
    });
}

TEST_FRESH(AccessorTest, AFailureOfTheSearchIsReportedUnderItsName) {
    journal_.refuse("Connect", {error_number(0x8007203A), u"Its.Own", u"(81) down"});
    through_every_door([](Behind<PMMAccessor>& accessor) {
        initialise(accessor);
        expect_failure(
            raised_by([&] { accessor.call<&PMMAccessor::GetLDAPUsers>(std::int32_t{7}); }),
            error_number(0x8007203A), u"Its.Own",
            block("8007203A", "OrvoMembership.PMMAccessor.GetLDAPUsers", "(81) down"));
    });
}

}  // namespace
}  // namespace orvo
