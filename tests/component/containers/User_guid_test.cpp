#include "tests/component/containers/containers_test.h"

namespace orvo {
namespace {

static_assert(slot_of<&User::BindToGuid> == 8);

constexpr const char* bind_to_guid = "OrvoMembership.User.BindToGuid";

class UserByGuid : public ContainersTest {
protected:
    static void bind(Behind<User>& user, Text guid = u"0123") {
        Text account = u"cn=web,o=Shop";
        Secret password(u"web-code");
        user.call<&User::BindToGuid>(guid, account, password);
    }
};

TEST_FRESH(UserByGuid, IsFoundThroughTheContainerAndThenBoundByName) {
    directory_.answer(u"cn", Values{u"jsmith"});
    directory_.found = users({u"row name"});
    through_every_door([this](Behind<User>& user) {
        const auto calls_of_bind = [&] {
            bind(user);
            auto calls = journal_.take();
            std::erase_if(calls, [](const std::string& call) {
                return !call.starts_with("Bind") && !call.starts_with("Execute");
            });
            return calls;
        };
        const auto calls = calls_of_bind();
        const char* bind_user =
            "Bind(dir01:389, ou=Users,o=Shop, un=jsmith, cn=web,o=Shop, web-code, "
            "[cn, OrvoUserType, BusinessPartnerID])";
        const char* bind_row =
            "Bind(dir01:389, ou=Users,o=Shop, un=row name, cn=web,o=Shop, web-code, "
            "[cn, OrvoUserType, BusinessPartnerID])";
        const char* bind_account =
            "Bind(dir01:389, ou=Accounts,o=Shop, an=0, cn=script,o=Shop, script-code, [])";
        EXPECT_THAT(calls,
                    ElementsAre("Bind(dir01:389, ou=Users,o=Shop, , cn=web,o=Shop, web-code, [])",
                                std::string("Execute((& (objectClass=top)(OrvoUserType=*)"
                                            "(OrvoGUID=0123)), ") +
                                    usual_columns + ", 1000)",
                                bind_row, bind_account, bind_user, bind_account))
            << "bound by what the entry calls itself";
        EXPECT_EQ(user.call<&User::CN>(), u"jsmith");
        directory_.found = users({u"row name"});
        EXPECT_EQ(calls_of_bind(), calls) << "also where it is bound by this name already";
    });
}

TEST_FRESH(UserByGuid, InAContextTheContainerIsCreatedThroughIt) {
    directory_.answer(u"cn", Values{u"jsmith"});
    directory_.found = users({u"jsmith"});
    load_settings();
    Behind<User> user(Door::slots);
    const RecordingContext context(journal_);
    forget();
    bind(user);
    EXPECT_EQ(journal_.take()[0], "CreateInstance(OrvoMembership.Members)");
}

TEST_FRESH(UserByGuid, AnUnknownGuidIsReportedUnderBothNames) {
    directory_.found = users({});
    through_every_door([](Behind<User>& user) {
        const Failure failure = raised_by([&] { bind(user); });
        EXPECT_EQ(failure.number, 3021);
        EXPECT_EQ(to_utf8(failure.description),
                  block("BCD", bind_to_guid,
                        block("BCD", "OrvoMembership.Members.GetUserFromGUID", no_current_record)));
    });
}

TEST_FRESH(UserByGuid, TheContainerGetsThePathThatTheSettingsCameFrom) {
    directory_.answer(u"cn", Values{u"jsmith"});
    for (const Door door : every_door) {
        in_fresh_thread([&] {
            load_settings();
            directory_.found = users({u"jsmith"});
            Text path = u"C:\\Site\\site.ini";
            shared_server_info()->SetConfiguration(path);
            Behind<User> user(door);
            forget();
            bind(user);
            auto calls = journal_.take();
            std::erase_if(calls, [](const std::string& call) {
                return !call.starts_with("Load") && !call.starts_with("Bind(");
            });
            ASSERT_GE(calls.size(), 2u);
            EXPECT_THAT(calls[0], testing::StartsWith("Bind(dir01:389, ou=Users,o=Shop, , "));
            EXPECT_EQ(calls[1], "LoadConfigurationFile(C:\\Site\\site.ini)")
                << "once the container is bound";
            EXPECT_EQ(std::ranges::count_if(
                          calls, [](const std::string& call) { return call.starts_with("Load"); }),
                      1);
        });
    }
}

TEST_FRESH(UserByGuid, ARefusedAccountFailsInTheContainersBind) {
    through_every_door([this](Behind<User>& user) {
        journal_.refuse("Bind", no_rights());
        expect_failure(raised_by([&] { bind(user); }), error_number(0x80072098), u"Its.Own",
                       block("80072098", bind_to_guid,
                             block("80072098", "OrvoMembership.Members.BindAs", "(50) no rights")));
    });
}

}  // namespace
}  // namespace orvo
