// The directory goes away in the middle of every operation: at each of its requests in turn. The
// operation fails clearly, and works once the directory is back.

#include <fstream>
#include <functional>

#include "tests/component/containers/containers_live_test.h"
#include "tests/component/containers/cutting_proxy.h"
#include "tests/support/environment.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

class DirectoryAwayLive : public ContainersOverLdap {
protected:
    ~DirectoryAwayLive() override {
        in_fresh_thread([] { check_again_after(5); });
    }
    static void check_again_after(int seconds) {
        late::call(create_object(u"OrvoMembership.Initialize"), u"InitializeConnectionPool",
                   {list({u"RecheckAfter"}), Values{seconds}});
    }
    // The site's settings with the proxy in place of the server.
    void use_proxy() {
        std::string settings = content_of(shop_.site_ini());
        const std::string setting = "LDAPServer=" + shop_.server();
        settings.replace(settings.find(setting), setting.size(), "LDAPServer=" + proxy_.server());
        const auto file = shop_.site_ini().parent_path() / "proxy.ini";
        std::ofstream(file) << settings;
        proxy_site_.emplace("ORVO_SITE_CONFIG", file.string());
        // A bind asks the server about its credentials every time, so that it can fail there.
        check_again_after(0);
    }
    Object bound_by(const Text& class_name) {
        const Object container = create_object(class_name);
        late::call(container, u"BindAs", {service(), service_code()});
        return container;
    }

    // Lets the directory go away after 0, 1, 2, ... requests of the operation, until it needs no
    // more. `undo` takes back what the operation did.
    void expect_clear_failures(
        const std::string& name, const std::function<void()>& operation,
        const std::function<void()>& undo = [] {}) {
        SCOPED_TRACE(name);
        operation();
        undo();
        int failures = 0;
        for (int requests = 0;; ++requests) {
            ASSERT_LT(requests, 20);
            SCOPED_TRACE(std::to_string(requests) + " requests");
            proxy_.close_after(requests);
            try {
                operation();
                proxy_.open();
                undo();
                break;
            } catch (const Failure& failure) {
                proxy_.open();
                EXPECT_TRUE(proxy_.has_cut());
                EXPECT_EQ(failure.number, unreachable) << failure.what();
                EXPECT_THAT(to_utf8(failure.description),
                            testing::AnyOf(HasSubstr("(81) The server cannot be reached."),
                                           HasSubstr("The following query failed: "),
                                           HasSubstr("Error setting the value for attribute: ")));
                ++failures;
            }
            try {
                operation();
            } catch (const Failure& failure) {
                ADD_FAILURE() << "once the directory is back: " << failure.what();
            }
            undo();
        }
        EXPECT_GT(failures, 0);
    }

    CuttingProxy proxy_{std::stoi(shop_.server().substr(shop_.server().find(':') + 1))};

private:
    std::optional<Environment> proxy_site_;
};

TEST_FRESH(DirectoryAwayLive, SearchesFailClearlyAndWorkOnceItIsBack) {
    use_proxy();
    const Object users = bound_by(u"OrvoMembership.Members");
    const Object all = bound_by(u"OrvoMembership.Profiles");
    const Object accessor = create_object(u"OrvoMembership.PMMAccessor");
    late::call(accessor, u"InitConfigFile",
               {from_utf8((shop_.site_ini().parent_path() / "proxy.ini").string())});
    expect_clear_failures("GetOrvoUsers", [&] {
        EXPECT_THAT(column(found(users, list({u"cn=jsmith"}))), ElementsAre("jsmith"));
    });
    expect_clear_failures("GetOrvoUsersEx", [&] {
        const Variant rows =
            late::call(users, u"GetOrvoUsersEx", {list({u"cn=jsmith"}), list({u"mail"})});
        EXPECT_THAT(column(rows.to<Object>(), u"mail"), ElementsAre("john.smith@shop.example"));
    });
    expect_clear_failures("GetOrvoMembersHavingRole", [&] {
        const Variant rows = late::call(users, u"GetOrvoMembersHavingRoleEx",
                                        {std::int16_t(24), list({u"cn=Temp*"})});
        EXPECT_THAT(column(rows.to<Object>()), ElementsAre("Temp (night) *"));
    });
    expect_clear_failures("Profiles.AsRecordset", [&] {
        EXPECT_EQ(column(late::call(all, u"AsRecordset").to<Object>()).size(), 11u);
    });
    expect_clear_failures("PMMAccessor.GetLDAPUsers", [&] {
        const Variant rows = late::call(accessor, u"GetLDAPUsers", {std::int32_t(10)});
        EXPECT_EQ(column(rows.to<Object>(), u"CN").size(), 5u);
    });
}

TEST_FRESH(DirectoryAwayLive, BindsAndAttributesFailClearlyAndWorkOnceItIsBack) {
    use_proxy();
    const Object users = bound_by(u"OrvoMembership.Members");
    expect_clear_failures("Members.BindAs", [&] {
        late::call(users, u"BindAs", {service(), service_code()});
    });
    const Object all = bound_by(u"OrvoMembership.Profiles");
    expect_clear_failures("Profiles.BindAs", [&] {
        late::call(all, u"BindAs", {service(), service_code()});
    });
    expect_clear_failures("GetAttribValue", [&] {
        EXPECT_EQ(late::call(users, u"GetAttribValue", {u"ou"}), Variant(Values{u"Users"}));
    });
    expect_clear_failures("SetAttribValue", [&] {
        late::call(users, u"SetAttribValue", {u"description", u"Everybody"});
    });
    expect_clear_failures("GetUserFromGUID", [&] {
        const Object jsmith =
            late::call(users, u"GetUserFromGUID", {u"95489279F1CA185C11635B6F0DE4B28C"})
                .to<Object>();
        EXPECT_EQ(property(jsmith, u"CN"), "jsmith");
    });
    const Object jsmith = create_object(u"OrvoMembership.User");
    expect_clear_failures("User.BindToGuid", [&] {
        late::call(jsmith, u"BindToGuid",
                   {u"95489279F1CA185C11635B6F0DE4B28C", service(), service_code()});
        EXPECT_EQ(property(jsmith, u"CN"), "jsmith");
    });
}

TEST_FRESH(DirectoryAwayLive, DeletionsFailClearlyAndWorkOnceItIsBack) {
    use_proxy();
    const Object users = bound_by(u"OrvoMembership.Members");
    const Object all = bound_by(u"OrvoMembership.Profiles");
    const auto before = shop_.everything();
    const auto add = [&](const std::string& dn, const char* object_class) {
        ASSERT_EQ(shop_.add(dn, {{"objectClass", {object_class}}, {"cn", {"tina"}}}), 0);
    };
    add(shop_.user_dn("tina"), "orvoPerson");
    expect_clear_failures(
        "DeleteUser", [&] { late::call(users, u"DeleteUser", {u"tina"}); },
        [&] { add(shop_.user_dn("tina"), "orvoPerson"); });
    shop_.remove(shop_.user_dn("tina"));
    const std::string profile = "cn=tina,ou=Profiles,o=Shop";
    add(profile, "orvoProfile");
    expect_clear_failures(
        "DeleteProfile",
        [&] { EXPECT_EQ(late::call(all, u"DeleteProfile", {u"tina"}), Variant(true)); },
        [&] { add(profile, "orvoProfile"); });
    shop_.remove(profile);
    EXPECT_EQ(shop_.everything(), before);
}

// A creation has several steps, and what was done before a failure stays done: then the next one
// finds the entry there.
TEST_FRESH(DirectoryAwayLive, CreationsFailClearlyAndTheNextOneWorks) {
    use_proxy();
    const Object users = bound_by(u"OrvoMembership.Members");
    const Object all = bound_by(u"OrvoMembership.Profiles");
    const auto before = shop_.everything();
    int number = 0;
    const auto next = [&] { return u"tina " + from_utf8(std::to_string(++number)); };
    const auto undo = [&] {
        for (const std::string& dn : shop_.find("o=Shop", "(cn=tina *)")) shop_.remove(dn);
    };
    expect_clear_failures(
        "CreateUser",
        [&] {
            const Text name = next();
            EXPECT_EQ(late::get(create(users, name, u"first-sample"), u"CN"), Variant(name));
            EXPECT_EQ(shop_.bind(shop_.user_dn(to_utf8(name)), "first-sample"), 0);
        },
        undo);
    expect_clear_failures(
        "CreateUserOnFormsLogin",
        [&] {
            late::call(users, u"CreateUserOnFormsLogin", {next(), u"first-sample"});
        },
        undo);
    expect_clear_failures(
        "CreateUserWithAttributes",
        [&] {
            const Text name = next();
            late::call(users, u"CreateUserWithAttributes",
                       {name, u"first-sample", list({u"sn", u"mail"}), list({u"Miller", u"m"})});
            EXPECT_THAT(stored(to_utf8(name), "mail"), ElementsAre("m"));
        },
        undo);
    expect_clear_failures(
        "CreateProfile", [&] { late::call(all, u"CreateProfile", {next()}); }, undo);
    EXPECT_EQ(shop_.everything(), before);
}

TEST_FRESH(DirectoryAwayLive, AServerThatStopsAndStartsIsNoticedByEveryObject) {
    const Object users = members(), all = profiles();
    server_.stop();
    const auto expect_unreachable = [&](const std::function<void()>& call) {
        const Failure failure = raised_by(call);
        EXPECT_EQ(failure.number, unreachable) << failure.what();
    };
    expect_unreachable([&] { create(users, u"tina"); });
    expect_unreachable([&] { found(users, list({u"cn=jsmith"})); });
    expect_unreachable([&] { late::call(users, u"DeleteUser", {u"jsmith"}); });
    expect_unreachable([&] { late::call(all, u"CreateProfile", {u"Night Shift"}); });
    expect_unreachable([&] { late::call(all, u"DeleteProfile", {u"Nobody"}); });
    expect_unreachable([&] { late::call(all, u"AsRecordset"); });
    EXPECT_THAT(logged(), HasSubstr("(81) The server cannot be reached."));

    server_.start();
    EXPECT_EQ(property(create(users, u"tina"), u"CN"), "tina");
    EXPECT_THAT(column(found(users, list({u"cn=tina"}))), ElementsAre("tina"));
    late::call(users, u"DeleteUser", {u"tina"});
    late::call(all, u"CreateProfile", {u"Night Shift"});
    EXPECT_EQ(late::call(all, u"DeleteProfile", {u"Night Shift"}), Variant(true));
    EXPECT_EQ(column(late::call(all, u"AsRecordset").to<Object>()).size(), 11u);
}

TEST_FRESH(DirectoryAwayLive, AUserFailsClearlyWhileTheServerIsAwayAndWorksOnceItIsBack) {
    const Object jsmith = user(u"jsmith");
    EXPECT_EQ(property(jsmith, u"LastName"), "Smith");
    server_.stop();
    const Failure write = raised_by([&] { late::put(jsmith, u"Position", u"Reader"); });
    EXPECT_EQ(write.number, error_number(0x8007203A)) << write.what();
    EXPECT_EQ(to_utf8(write.source), "OrvoDirectory.Ldap");
    EXPECT_THAT(to_utf8(write.description), HasSubstr(shop_.server()));
    const Failure bind = raised_by([&] { user(u"glee"); });
    EXPECT_EQ(bind.number, error_number(0x8007203A)) << bind.what();

    server_.start();
    late::put(jsmith, u"Position", u"Reader");
    EXPECT_EQ(property(user(u"jsmith"), u"Position"), "Reader");
    EXPECT_EQ(property(user(u"glee"), u"LastName"), "Lee");
}

}  // namespace
}  // namespace orvo
