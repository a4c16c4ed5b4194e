// What comes of logins: hashes, failures that are counted, and objects that outlive a password.

#include <gmock/gmock.h>

#include <thread>

#include "platform/values/values.h"
#include "tests/suite/directory/embedded/directory/shop_fixture.h"
#include "tests/support/environment.h"
#include "tests/support/processor_time.h"
#include "tests/support/recording/recording_log.h"

namespace orvo::directory::embedded {
namespace {

using namespace std::chrono_literals;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr std::int32_t wrong_credentials = error_number(0x8007052E);
constexpr std::int32_t no_rights = error_number(0x80072098);

// {SSHA} of "shop-sample" with the salt "saltsalt".
const std::string imported = "{SSHA}8KzM4e8GmKXHhkfJYf9p/j2OIPpzYWx0c2FsdA==";

class Logins : public AShop {};

TEST_F(Logins, AnImportedHashIsReplacedAtTheFirstRightLoginAndNotBefore) {
    put(user("jsmith"), "userPassword", {imported});
    EXPECT_EQ(check(user("jsmith"), "another"), password_check::wrong);
    EXPECT_THAT(stored(user("jsmith"), "userPassword"), testing::ElementsAre(imported));
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::right);
    const auto renewed = stored(user("jsmith"), "userPassword");
    ASSERT_THAT(renewed, SizeIs(1));
    EXPECT_THAT(renewed.front(), StartsWith("{CRYPT}$y$"));
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::right);
    EXPECT_EQ(stored(user("jsmith"), "userPassword"), renewed);
}

TEST_F(Logins, AWrongOneTakesAsLongForACheapHashAsForAnUnknownName) {
    const auto time_of_wrong = [&](const std::string& name) {
        return processor_time([&] { EXPECT_EQ(check(name, "another"), password_check::wrong); });
    };
    for (const std::string& cheap :
         {imported, hashed_password(Secret(u"shop-sample"), HashCost::lowest)}) {
        put(user("jsmith"), "userPassword", {cheap});
        EXPECT_GT(time_of_wrong(user("jsmith")), time_of_wrong(user("nobody")) / 1.6) << cheap;
    }
}

TEST_F(Logins, ARightOneWritesNothingAndWaitsForNoWriter) {
    demand({{"pwdLockout", {"TRUE"}}, {"pwdMaxFailure", {"3"}}});
    const Writing other = directory->store().write(Durability::process);
    Variant names = Values{u"WaitLimit"}, limits = Values{0};
    Directory::settings().change(names, limits);
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::right);
    EXPECT_EQ(failure_of([&] { check(user("jsmith"), "another"); }).number,
              error_number(0x8007200E))
        << "the failure cannot be counted, so nobody is told that it is one";
    limits = Values{5000};
    Directory::settings().change(names, limits);
}

TEST_F(Logins, AHashThatCannotBeRenewedNowIsRenewedLater) {
    put(user("jsmith"), "userPassword", {imported});
    std::optional<Login> early;
    {
        const Writing other = directory->store().write(Durability::process);
        early = login(user("jsmith"), "shop-sample");
    }
    EXPECT_THAT(stored(user("jsmith"), "userPassword"), testing::ElementsAre(imported));
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::right);
    EXPECT_THAT(stored(user("jsmith"), "userPassword"),
                testing::ElementsAre(StartsWith("{CRYPT}$y$")));
    EXPECT_EQ(early->read(user("jsmith")).name, user("jsmith")) << "the password is the same";
}

TEST_F(Logins, TheLogIsToldOfAHashThatCannotBeRenewed) {
    const Environment with_notes("ORVO_LOG_LEVEL", std::nullopt);
    RecordingLog log;
    put(user("jsmith"), "userPassword", {imported});
    const Writing other = directory->store().write(Durability::process);
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::right);
    const auto entries = log.take();
    ASSERT_THAT(entries, SizeIs(1));
    EXPECT_EQ(entries[0].source, "OrvoDirectory.Embedded");
    EXPECT_THAT(entries[0].message,
                StartsWith("Renewing the password's hash of 'cn=jsmith,ou=Users,o=Shop' failed, "
                           "0x8007200E: (51) "));
}

TEST_F(Logins, WhoLosesTheRightMeanwhileSetsNoPassword) {
    bool is_taken_away = true;
    // The time is asked for between the look at the rights and the writing.
    directory = std::make_shared<Directory>(Store::open(path), [&] {
        if (!is_taken_away) {
            is_taken_away = true;
            Writing writing = directory->store().write(Durability::process);
            writing.set_setting("access", "rule\n    read users\n    authenticate anonymous\n");
            writing.commit();
        }
        return now.load();
    });
    Login administrator = service_login();
    const auto before = stored(user("jsmith"), "userPassword");
    is_taken_away = false;
    EXPECT_EQ(failure_of([&] {
                  administrator.set_password(user("jsmith"), Secret::of_bytes("another"), {});
              }).number,
              no_rights);
    EXPECT_EQ(stored(user("jsmith"), "userPassword"), before);
}

TEST_F(Logins, APasswordTooLongForAnotherHashKeepsTheImportedOne) {
    const std::string password(600, 'x');
    const std::string hash = "{SSHA}P/P35o1yj9kSvuu8w7j1Jt4FOoJzYWx0c2FsdA==";
    put(user("jsmith"), "userPassword", {hash});
    EXPECT_EQ(check(user("jsmith"), password), password_check::right);
    EXPECT_THAT(stored(user("jsmith"), "userPassword"), testing::ElementsAre(hash));
}

TEST_F(Logins, NobodyReadsAFormerHash) {
    put(user("jsmith"), "pwdHistory",
        {"20260101000000Z#1.3.6.1.4.1.1466.115.121.1.40#46#" + imported});
    Login administrator = service_login();
    const EntryData read = administrator.read(user("jsmith"));
    EXPECT_NE(find_attribute(read, "cn"), nullptr);
    EXPECT_EQ(find_attribute(read, "pwdHistory"), nullptr);
    int found = 0;
    administrator.search({user("jsmith"),
                          Filter::parse(u"(cn=jsmith)"),
                          {"cn", "pwdHistory", "1.3.6.1.4.1.42.2.27.8.1.20"}},
                         [&](EntryData&& entry) {
                             EXPECT_EQ(find_attribute(entry, "pwdHistory"), nullptr);
                             return ++found;
                         });
    administrator.search({user("jsmith"), Filter::parse(u"(!(pwdHistory=x))"), {"cn"}},
                         [&](EntryData&&) { return ++found; });
    EXPECT_EQ(found, 1);
}

TEST_F(Logins, EveryFailureCountsOnceHoweverManyComeAtTheSameTime) {
    demand({{"pwdLockout", {"TRUE"}}, {"pwdMaxFailure", {"100"}}});
    std::vector<std::thread> guessers;
    for (int thread = 0; thread < 4; ++thread)
        guessers.emplace_back([&] {
            for (int guess = 0; guess < 3; ++guess) check(user("jsmith"), "another");
        });
    for (std::thread& guesser : guessers) guesser.join();
    EXPECT_THAT(stored(user("jsmith"), "pwdFailureTime"), SizeIs(12));
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::right);
    EXPECT_THAT(stored(user("jsmith"), "pwdFailureTime"), IsEmpty());
}

TEST_F(Logins, ALockedAccountIsOpenAgainAfterItsTime) {
    demand({{"pwdLockout", {"TRUE"}}, {"pwdMaxFailure", {"2"}}, {"pwdLockoutDuration", {"60"}}});
    for (int guess = 0; guess < 2; ++guess)
        EXPECT_EQ(check(user("jsmith"), "another"), password_check::wrong);
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::locked);
    now = now.load() + 61s;
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::right);
}

TEST_F(Logins, ALockedAccountIsNotToldFromANameThatIsNotThereByItsTime) {
    demand({{"pwdLockout", {"TRUE"}}, {"pwdMaxFailure", {"1"}}});
    check(user("jsmith"), "another");
    const double locked = processor_time([&] { check(user("jsmith"), "another"); });
    const double nobody = processor_time([&] { check(user("nobody"), "another"); });
    EXPECT_GT(locked, nobody / 1.6);
}

TEST_F(Logins, WhoUnlocksAnAccountEndsItsFailures) {
    demand({{"pwdLockout", {"TRUE"}}, {"pwdMaxFailure", {"2"}}});
    for (int guess = 0; guess < 2; ++guess) check(user("jsmith"), "another");
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::locked);
    service_login().modify(user("jsmith"), {{"pwdAccountLockedTime", {}}});
    EXPECT_EQ(check(user("jsmith"), "another"), password_check::wrong);
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::right);
}

TEST_F(Logins, AnAccountCanBeLockedForGood) {
    demand({{"pwdLockout", {"TRUE"}}, {"pwdLockoutDuration", {"60"}}});
    service_login().modify(user("jsmith"), {{"pwdAccountLockedTime", {"000001010000Z"}}});
    now = now.load() + 24h;
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::locked);
    service_login().modify(user("jsmith"), {{"pwdAccountLockedTime", {}}});
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::right);
}

TEST_F(Logins, ANameThatIsNobodysIsWrongLikeAWrongPassword) {
    for (const std::string& name :
         {user("nobody"), user(""), std::string("no name"), std::string("ou=Users,o=Shop")})
        EXPECT_EQ(check(name, "shop-sample"), password_check::wrong) << name;
}

TEST_F(Logins, UsersWhoChangeTheirPasswordGoOnWithTheNewOne) {
    Login one = login(user("jsmith"), "shop-sample"), other = login(user("jsmith"), "shop-sample");
    one.set_password(user("jsmith"), Secret(u"changed-1"), std::nullopt);
    EXPECT_EQ(one.read(user("jsmith")).name, user("jsmith"));
    EXPECT_EQ(other.read(user("jsmith")).name, user("jsmith"));
    EXPECT_EQ(failure_of([&] { login(user("jsmith"), "shop-sample"); }).number, wrong_credentials);
    EXPECT_EQ(login(user("jsmith"), "changed-1").read(user("jsmith")).name, user("jsmith"));
}

TEST_F(Logins, ThoseWhosePasswordSomebodyElseHasSetAreOut) {
    Login own = login(user("jsmith"), "shop-sample");
    own.known(user("jsmith"));
    service_login().set_password(user("jsmith"), Secret(u"changed-1"), std::nullopt);
    EXPECT_EQ(failure_of([&] { own.known(user("jsmith")); }).number, wrong_credentials);
    EXPECT_EQ(failure_of([&] { own.read(user("jsmith")); }).number, wrong_credentials);
}

TEST_F(Logins, WhoProvesTheFormerPasswordChangesItAsTheUser) {
    Login own = login(user("jsmith"), "shop-sample"), administrator = service_login();
    administrator.set_password(user("jsmith"), Secret(u"changed-1"), Secret(u"shop-sample"));
    EXPECT_EQ(own.read(user("jsmith")).name, user("jsmith")) << "it was the user's own change";
    administrator.set_password(user("jsmith"), Secret(u"changed-2"), Secret(u"not this one"));
    EXPECT_EQ(failure_of([&] { own.read(user("jsmith")); }).number, wrong_credentials);
}

TEST_F(Logins, WhatUsersMayNotChangeAnAdministratorMaySet) {
    demand({{"pwdAllowUserChange", {"FALSE"}}});
    Login own = login(user("jsmith"), "shop-sample");
    EXPECT_EQ(failure_of([&] {
                  own.set_password(user("jsmith"), Secret(u"changed-1"), std::nullopt);
              }).number,
              no_rights);
    service_login().set_password(user("jsmith"), Secret(u"changed-1"), Secret(u"shop-sample"));
    EXPECT_EQ(check(user("jsmith"), "changed-1"), password_check::right);
}

TEST_F(Logins, WhoHasToChangeThePasswordDoesNothingElse) {
    demand({{"pwdMustChange", {"TRUE"}}});
    put(user("jsmith"), "pwdReset", {"TRUE"});
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::expired);
    Login own = login(user("jsmith"), "shop-sample");
    const Failure refused = failure_of([&] { own.read(user("jsmith")); });
    EXPECT_EQ(refused.number, no_rights);
    EXPECT_EQ(to_utf8(refused.description),
              "(50) The rights are not sufficient. Operations are restricted to "
              "bind/unbind/abandon/StartTLS/modify password");
    own.set_password(user("jsmith"), Secret(u"changed-2"), std::nullopt);
    EXPECT_EQ(own.read(user("jsmith")).name, user("jsmith"));
}

TEST_F(Logins, AResetPasswordHoldsNobodyBackWhereThePolicyDoesNotMindIt) {
    demand({{"pwdLockout", {"TRUE"}}});
    put(user("jsmith"), "pwdReset", {"TRUE"});
    EXPECT_EQ(check(user("jsmith"), "shop-sample"), password_check::right);
    EXPECT_EQ(login(user("jsmith"), "shop-sample").read(user("jsmith")).name, user("jsmith"));
}

TEST_F(Logins, AUserWhoIsDeletedIsOutAtOnce) {
    Login own = login(user("jsmith"), "shop-sample");
    own.known(user("jsmith"));
    service_login().remove(user("jsmith"));
    EXPECT_EQ(failure_of([&] { own.known(user("jsmith")); }).number, wrong_credentials);
}

TEST_F(Logins, AFileThatIsPutInTheOldOnesPlaceIsOpenedAnew) {
    const Text server = from_utf8(path.string());
    const auto first = Directory::of(server);
    EXPECT_EQ(Directory::of(server), first);
    for (const char* end : {"", "-wal", "-shm"}) std::filesystem::remove(path.string() + end);
    EXPECT_EQ(failure_of([&] { Directory::of(server); }).number, error_number(0x8007203A));
    Store::create(path, Schema::of_product());
    EXPECT_NE(Directory::of(server), first);
    EXPECT_EQ(failure_of([&] {
                  Login(server, from_utf8(user("jsmith")), Secret(u"shop-sample")).authenticate();
              }).number,
              wrong_credentials);
}

TEST_F(Logins, ARefusedFirstPasswordLeavesNoEntry) {
    demand({{"pwdMinLength", {"8"}}, {"pwdCheckQuality", {"1"}}});
    Login administrator = service_login();
    const EntryData tina{user("tina"), {{"objectClass", {"orvoPerson"}}, {"cn", {"tina"}}}};
    EXPECT_EQ(failure_of([&] { administrator.add(tina, Secret(u"short")); }).number,
              error_number(0x8007202F));
    EXPECT_THAT(stored(user("tina"), "cn"), IsEmpty());
    administrator.add(tina, Secret(u"long enough"));
    EXPECT_EQ(check(user("tina"), "long enough"), password_check::right);
    EXPECT_THAT(stored(user("tina"), "creatorsName"), testing::ElementsAre(service));
    EXPECT_THAT(stored(user("tina"), "structuralObjectClass"), testing::ElementsAre("orvoPerson"));
}

TEST_F(Logins, NobodyWritesToAFileThatIsNoLongerThere) {
    Login administrator = service_login();
    for (const char* end : {"", "-wal", "-shm"}) std::filesystem::remove(path.string() + end);
    const auto write = [&] { administrator.modify(user("jsmith"), {{"PhoneNumber", {"1"}}}); };
    EXPECT_EQ(
        to_utf8(failure_of(write).description),
        "(81) The server cannot be reached. '" + path.string() + "': No such file or directory.");
    make_shop(path);
    EXPECT_EQ(to_utf8(failure_of(write).description),
              "(81) The server cannot be reached. '" + path.string() +
                  "': another file has been put in its place.");
}

class Searches : public AShop {
protected:
    std::vector<std::string> found(TextView filter) {
        std::vector<std::string> names;
        service_login().search({"o=Shop", Filter::parse(filter), {"cn"}}, [&](EntryData&& entry) {
            names.push_back(entry.name);
            return true;
        });
        return names;
    }
};

TEST_F(Searches, FindWhatIsNotBeyondABoundInTheOrderOfLists) {
    EXPECT_THAT(found(u"(!(cn>=e))"), testing::ElementsAre(user("djansen"), "ou=Services,o=Shop",
                                                           "o=Shop", "ou=Users,o=Shop"));
    EXPECT_THAT(found(u"(&(objectClass=orvoPerson)(|(!(cn>=e))(cn=jsmith)))"),
                testing::ElementsAre(user("djansen"), user("jsmith")));
}

TEST_F(Searches, LookAtEveryPartOfAName) {
    EXPECT_THAT(found(u"(ou:dn:=Users)"),
                testing::ElementsAre(user("djansen"), user("jsmith"), "ou=Users,o=Shop"));
}

TEST_F(Searches, AHiddenContainerIsNotThereAndTellsNothingOfThoseAboveIt) {
    Login own = login(user("jsmith"), "shop-sample");
    EXPECT_EQ(to_utf8(failure_of([&] { own.read("ou=Services,o=Shop"); }).description),
              "(32) There is no such entry.");
}

TEST_F(Searches, ANewEntryIsNamedAsTheContainerAboveItIs) {
    service_login().add(
        {"cn=tina,OU=users,O=shop", {{"objectClass", {"orvoPerson"}}, {"cn", {"tina"}}}}, Secret());
    EXPECT_THAT(found(u"(cn=tina)"), testing::ElementsAre(user("tina")));
}

}  // namespace
}  // namespace orvo::directory::embedded
