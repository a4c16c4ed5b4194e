// Users and profiles with everything real behind them: the modules that a site registers, and a
// directory of the test's own.

#include <gmock/gmock.h>

#include <vector>

#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/values.h"
#include "tests/support/child_process.h"
#include "tests/support/each_directory.h"
#include "tests/support/environment.h"
#include "tests/support/raised.h"
#include "tests/support/recording/fresh_thread.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;

std::vector<std::string> texts(const Variant& array) {
    std::vector<std::string> all;
    for (const Variant& value : array.to<Values>()) all.push_back(to_utf8(value.to<Text>()));
    return all;
}

std::string text(const Object& object, TextView property) {
    return to_utf8(late::get(object, property).to<Text>());
}

// The user names of a record set, which is read to its end.
std::vector<std::string> names(const Object& record_set) {
    std::vector<std::string> all;
    for (; !late::get(record_set, u"EOF").to<bool>(); late::call(record_set, u"MoveNext"))
        all.push_back(to_utf8(late::get(record_set, u"Collect", {u"cn"}).to<Text>()));
    return all;
}

class UserLive : public testing::Test {
protected:
    UserLive() : UserLive(directory_kind()->make({})) {}

    Object user_as(const Text& cn, const std::string& account, const std::string& password) {
        const Object user = create_object(u"OrvoMembership.User");
        late::call(user, u"setServerInfo", {site_ini()});
        late::call(user, u"BindAs", {cn, from_utf8(account), from_utf8(password)});
        return user;
    }
    // A user that is bound with the service account, and one with its own.
    Object user(const Text& cn) {
        return user_as(cn, shop_.service_dn(), shop_.service_password());
    }
    Object user_itself(const Text& cn) {
        return user_as(cn, shop_.user_dn(to_utf8(cn)), shop_.user_password());
    }
    Object profile(const Text& cn) {
        const Object profile = create_object(u"OrvoMembership.Profile");
        late::call(profile, u"setServerInfo", {site_ini()});
        late::call(profile, u"BindAs",
                   {cn, from_utf8(shop_.service_dn()), from_utf8(shop_.service_password())});
        return profile;
    }

    int login(const std::string& cn, const std::string& password) {
        return shop_.bind(shop_.user_dn(cn), password);
    }

    Text site_ini() const { return from_utf8(shop_.site_ini().string()); }

private:
    explicit UserLive(std::unique_ptr<TestDirectory> directory) : directory_(std::move(directory)) {
        output_of({ORVO_REGISTER_TOOL, ORVO_MEMBERSHIP, ORVO_SUITE, ORVO_EMBEDDED, ORVO_PLATFORM});
    }
    const std::unique_ptr<TestDirectory> directory_;

protected:
    TestDirectory& shop_ = *directory_;

private:
    TempFolder folder_;
    Environment components_{"ORVO_COMPONENTS", folder_.path().string()};
    Environment site_{"ORVO_SITE_CONFIG", shop_.site_ini().string()};
    Environment log_{"ORVO_LOG_FILE", (folder_.path() / "orvo.log").string()};
};

TEST_FRESH_FOR_EACH(UserLive, IsBoundWithItsProfileAndTheAccountOfItsType) {
    const Object jsmith = user(u"jsmith");
    EXPECT_EQ(text(jsmith, u"CN"), "jsmith");
    EXPECT_EQ(text(jsmith, u"GUID"), "95489279F1CA185C11635B6F0DE4B28C");
    EXPECT_EQ(text(jsmith, u"NTUser"), "SHOP\\shop-user");
    EXPECT_EQ(text(late::get(jsmith, u"Profile").to<Object>(), u"CN"), "Buyers");
}

TEST_FRESH_FOR_EACH(UserLive, WithoutAProfileHasNoneAndFallsBackToNothing) {
    const Object norole = user(u"norole");
    EXPECT_FALSE(late::get(norole, u"Profile").to<Object>());
    EXPECT_EQ(late::get(norole, u"LanguageID"), Variant(u""));
    EXPECT_EQ(late::get(norole, u"Locale"), Variant(std::int16_t(0)));
    EXPECT_THAT(texts(late::get(norole, u"OrvoRoles")), ElementsAre("0"));
    EXPECT_EQ(late::call(norole, u"HasRole", {std::int16_t(2)}), Variant(false));
}

TEST_FRESH_FOR_EACH(UserLive, ReadsItsPropertiesWithTheirTypes) {
    const Object jsmith = user(u"jsmith");
    EXPECT_EQ(late::get(jsmith, u"SpendLimit"), Variant(Currency{12345000}));
    EXPECT_EQ(late::get(jsmith, u"ApproverLimit"), Variant(Currency{0}));
    EXPECT_EQ(late::get(jsmith, u"LimitforRFQ"), Variant(Currency{25000000}));
    EXPECT_EQ(late::get(jsmith, u"LimitforContract"), Variant(Currency{100000001}));
    EXPECT_EQ(late::get(jsmith, u"CreditCardExpiryDate"), Variant(Date{47118}));
    EXPECT_EQ(late::get(jsmith, u"ShowExplain"), Variant(true));
    EXPECT_EQ(late::get(jsmith, u"OutOfOfficeOn"), Variant(false));
    EXPECT_EQ(late::get(jsmith, u"CreditCardType"), Variant(std::int16_t(1)));
    EXPECT_EQ(late::get(jsmith, u"BusinessPartnerID"), Variant(std::int32_t(1001)));
    EXPECT_EQ(late::get(jsmith, u"Fax"), Variant(u"+44 20 7946 0019"));
    EXPECT_THAT(texts(late::get(jsmith, u"OrvoAddressIDs")), ElementsAre("501", "502"));

    const Object glee = user(u"glee");
    EXPECT_EQ(late::get(glee, u"ApproverLimit"), Variant(Currency{9223372036854775807}));
    EXPECT_EQ(late::get(glee, u"OutOfOfficeOn"), Variant(true)) << "stored as -1";
}

TEST_FRESH_FOR_EACH(UserLive, StoresItsPropertiesAsTheDirectoryHasThem) {
    const Object jsmith = user(u"jsmith");
    late::put(jsmith, u"LimitforContract", Currency{-15});
    late::put(jsmith, u"CreditCardExpiryDate", Date{47119.5});
    late::put(jsmith, u"ChargeLines", false);
    late::put(jsmith, u"Fax", u"");
    auto stored = [&](const char* name) { return shop_.values(shop_.user_dn("jsmith"), name); };
    EXPECT_THAT(stored("LimitforContract"), ElementsAre("-0.0015"));
    EXPECT_THAT(stored("CreditCardExpiryDate"), ElementsAre("20290101120000Z"));
    EXPECT_THAT(stored("ChargeLines"), ElementsAre("0"));
    EXPECT_THAT(stored("facsimileTelephoneNumber"), IsEmpty());
}

TEST_FRESH_FOR_EACH(UserLive, TakesFromItsProfileWhatIsZeroOrUnset) {
    const Object zeros = user(u"zeros");
    EXPECT_EQ(late::get(zeros, u"LanguageID"), Variant(u"en"));
    EXPECT_EQ(late::get(zeros, u"Locale"), Variant(std::int16_t(2057)));
    EXPECT_THAT(texts(late::get(zeros, u"OrvoCatalogIDs")), ElementsAre("10", "11", "12"));
    EXPECT_THAT(texts(late::get(zeros, u"OrvoDashboardIDs")), ElementsAre("1", "2"));
    EXPECT_THAT(texts(late::get(zeros, u"OrvoRoles")), ElementsAre("2", "3"));
    EXPECT_THAT(texts(late::get(zeros, u"OrvoApps")), ElementsAre("1", "2"));
    EXPECT_THAT(texts(late::get(zeros, u"AskbookVisibility")), ElementsAre("0"))
        << "here 0 is a value";
    EXPECT_THAT(texts(late::get(zeros, u"Roles")), ElementsAre("0")) << "never falls back";
}

TEST_FRESH_FOR_EACH(UserLive, FollowsAChangeOfItsProfileAtTheNextBind) {
    const Object zeros = user(u"zeros");
    late::put(zeros, u"ProfileCN", u"Sales");
    EXPECT_EQ(late::get(zeros, u"Locale"), Variant(std::int16_t(2057)));
    late::call(zeros, u"BindAs",
               {u"zeros", from_utf8(shop_.service_dn()), from_utf8(shop_.service_password())});
    EXPECT_EQ(late::get(zeros, u"Locale"), Variant(std::int16_t(1036)));
}

TEST_FRESH_FOR_EACH(UserLive, IsAssignedRolesAndLosesThem) {
    const Object norole = user(u"norole");
    auto stored = [&] { return shop_.values(shop_.user_dn("norole"), "OrvoRole"); };
    late::put(norole, u"FinancialRole", true);
    EXPECT_THAT(stored(), ElementsAre("5")) << "in place of the single 0";
    late::call(norole, u"AssignRole", {std::int16_t(24), true});
    EXPECT_THAT(stored(), UnorderedElementsAre("5", "24"));
    EXPECT_EQ(late::get(norole, u"ReceiverRole"), Variant(true));
    late::put(norole, u"FinancialRole", false);
    EXPECT_THAT(stored(), ElementsAre("24"));
    late::put(norole, u"ReceiverRole", false);
    EXPECT_THAT(stored(), ElementsAre("0")) << "never left without any";
    EXPECT_EQ(late::get(norole, u"ReceiverRole"), Variant(false));
}

TEST_FRESH_FOR_EACH(UserLive, HasApplicationsThatCanBeReplacedAndCleared) {
    const Object jsmith = user(u"jsmith");
    auto stored = [&] { return shop_.values(shop_.user_dn("jsmith"), "OrvoApps"); };
    EXPECT_THAT(texts(late::get(jsmith, u"OrvoApps")), ElementsAre("1", "2"));
    late::put(jsmith, u"OrvoApps", Values{std::int16_t(3), std::int16_t(4)});
    EXPECT_THAT(stored(), UnorderedElementsAre("3", "4"));
    late::call(jsmith, u"ClearOrvoApps");
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_FRESH_FOR_EACH(UserLive, MayUseItsApplicationsAndNoOther) {
    const Object jsmith = user(u"jsmith");
    late::call(jsmith, u"CheckAppUserAccess", {u"Shop", std::int16_t(2)});
    const Failure failure = raised_by([&] {
        late::call(jsmith, u"CheckAppUserAccess", {u"Warehouse", std::int16_t(99)});
    });
    expect_failure(failure, error_number(0x8004032B), u"Validate",
                   "\r\nERROR 0x8004032B\r\n METHOD: OrvoMembership.User.CheckAppUserAccess\r\n"
                   " DESC:  Warehouse.\r\n");
}

TEST_FRESH_FOR_EACH(UserLive, ChangesItsPasswordWhichIsStoredHashed) {
    const Object glee = user(u"glee");
    late::call(glee, u"ChangePassword", {u"shop-sample", u"better-sample"});
    EXPECT_EQ(login("glee", "better-sample"), 0);
    EXPECT_EQ(login("glee", "shop-sample"), 49);
    const auto stored = shop_.values(shop_.user_dn("glee"), "userPassword");
    ASSERT_EQ(stored.size(), 1u);
    EXPECT_THAT(stored[0], StartsWith(shop_.own(differences::stored_password)));
    EXPECT_THAT(stored[0], Not(HasSubstr("better-sample")));
}

TEST_FRESH_FOR_EACH(UserLive, KeepsItsPasswordWhenTheOldOneIsWrong) {
    const Object glee = user(u"glee");
    const Failure failure = raised_by([&] {
        late::call(glee, u"ChangePassword", {u"guessed", u"better-sample"});
    });
    expect_failure(failure, error_number(0x80040325), u"OrvoMembership.User.ChangePassword",
                   "\r\nERROR 0x80040325\r\n METHOD: OrvoMembership.User.ChangePassword\r\n"
                   " DESC: The current password is not correct.\r\n");
    EXPECT_EQ(login("glee", "shop-sample"), 0);
}

TEST_FRESH_FOR_EACH(UserLive, HasOneAddressToStartAtForEveryApplication) {
    const Object jsmith = user(u"jsmith");
    auto start = [&](int app) { return late::call(jsmith, u"GetDefaultURL", {app}); };
    EXPECT_EQ(start(1), Variant(u"/buy/start.asp"));
    late::call(jsmith, u"SetDefaultURL", {1, u"/other.asp"});
    EXPECT_EQ(start(2), Variant(u"/other.asp"));
    late::call(jsmith, u"SetDefaultURL", {3, u""});
    EXPECT_EQ(start(1), Variant(u""));
    EXPECT_THAT(shop_.values(shop_.user_dn("jsmith"), "DefaultURL"), IsEmpty());
}

TEST_FRESH_FOR_EACH(UserLive, BoundAsItselfMayWriteItsTelephoneNumberButNoRoles) {
    const Object jsmith = user_itself(u"jsmith");
    late::put(jsmith, u"PhoneNumber", u"+44 20 7946 0000");
    EXPECT_THAT(shop_.values(shop_.user_dn("jsmith"), "PhoneNumber"),
                ElementsAre("+44 20 7946 0000"));
    const Failure failure = raised_by([&] { late::put(jsmith, u"FinancialRole", true); });
    EXPECT_EQ(failure.number, error_number(0x80072098)) << failure.what();
    EXPECT_THAT(shop_.values(shop_.user_dn("jsmith"), "OrvoRole"), ElementsAre("2", "3", "24"));
}

TEST_FRESH_FOR_EACH(UserLive, AProfileNamesItsUsersOrElseItsLocalAdministrators) {
    auto users_of = [&](const Text& cn) {
        return names(late::call(profile(cn), u"GetUsers").to<Object>());
    };
    EXPECT_THAT(users_of(u"Sales"),
                UnorderedElementsAre("fturner", "zvisser", "lvogel", "sheiler", "chtheodorou",
                                     "ukilic", "inunez", "dgreen", "fijzerman", "ukrause",
                                     "pyashin", "npsarras", "ounal", "lvazquez"));
    EXPECT_THAT(users_of(u"Branch Office"),
                UnorderedElementsAre("local", "lkowalski", "inibanez", "zzajac", "bvazquez",
                                     "edabrowski", "jgomez"));
    EXPECT_THAT(users_of(u"Nobody"), IsEmpty());
    EXPECT_THAT(users_of(u"Buyer's Friends"), IsEmpty())
        << "an apostrophe is doubled, as a quoted query wants it; the directory takes it literally";
}

}  // namespace
}  // namespace orvo
