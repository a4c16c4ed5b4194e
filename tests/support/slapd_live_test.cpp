#include "tests/support/slapd.h"

#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/ldap_probe.h"

namespace orvo {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

const std::string everybody = "(objectClass=orvoPerson)";

constexpr int success = 0;
constexpr int size_limit_exceeded = 4;
constexpr int invalid_credentials = 49;
constexpr int server_down = -1;
constexpr int timed_out = -5;

const std::string script = ORVO_SOURCE_DIR "/scripts/private-slapd";

LdapProbe service_of(const PrivateSlapd& slapd) {
    return LdapProbe(slapd.url(), slapd.service_dn(), slapd.service_password());
}

TEST(APrivateSlapd, HoldsTheSampleShop) {
    PrivateSlapd slapd;
    LdapProbe service = service_of(slapd);
    EXPECT_THAT(service.find("ou=Users,o=Shop", everybody), SizeIs(200));
    EXPECT_THAT(service.find("ou=Profiles,o=Shop", "(objectClass=orvoProfile)"), SizeIs(11));
    EXPECT_THAT(service.find("ou=Accounts,o=Shop", "(objectClass=orvoAccount)"), SizeIs(5));
    for (const char* type : {"0", "1", "2", "3", "4"}) {
        EXPECT_THAT(service.find("ou=Users,o=Shop", std::string("(OrvoUserType=") + type + ")"),
                    Not(SizeIs(0)))
            << type;
    }
    EXPECT_THAT(service.values(slapd.user_dn("Smith\\, John"), "givenName"), ElementsAre("John"));
    EXPECT_THAT(service.values(slapd.user_dn("O'Brien"), "sn"), ElementsAre("O'Brien"));
    EXPECT_THAT(service.values(slapd.user_dn("Research\\+Development"), "cn"),
                ElementsAre("Research+Development"));
    EXPECT_THAT(service.values(slapd.user_dn("山田 太郎"), "CompanyName"), ElementsAre("日本商店"));
    EXPECT_THAT(service.values("cn=Directory,ou=Config,o=Shop", "Locale"), ElementsAre("2057"));
}

TEST(APrivateSlapd, LetsItsUsersLogIn) {
    PrivateSlapd slapd;
    LdapProbe probe(slapd.url());
    EXPECT_EQ(probe.bind(slapd.user_dn("jsmith"), "shop-sample"), success);
    EXPECT_EQ(probe.bind(slapd.user_dn("Жанна Жукова"), "shop-sample"), success);
    EXPECT_EQ(probe.bind(slapd.user_dn("jsmith"), "wrong"), invalid_credentials);
    EXPECT_EQ(probe.bind(slapd.user_dn("barest"), "shop-sample"), invalid_credentials);
}

TEST(APrivateSlapd, ComesWithASiteConfigurationOfItsOwn) {
    PrivateSlapd slapd;
    std::string site = content_of(slapd.site_ini());
    EXPECT_THAT(site, HasSubstr("\nLDAPServer=" + slapd.server() + "\n"));
    EXPECT_THAT(site, HasSubstr("\nMemScriptCode=" + slapd.service_password() + "\n"));
    EXPECT_THAT(site, Not(HasSubstr("\nLDAPServer=@")));
    EXPECT_THAT(content_of(slapd.folder() / "Config" / "Directory.ini"),
                HasSubstr("\ndn=cn=Directory,ou=Config,o=Shop\n"));
}

TEST(APrivateSlapd, RefusesConnectionsWhileItIsAwayAndComesBackWithItsData) {
    PrivateSlapd slapd;
    std::string url = slapd.url();
    ASSERT_EQ(service_of(slapd).remove(slapd.user_dn("jsmith")), success);
    slapd.stop();
    EXPECT_FALSE(slapd.running());
    EXPECT_EQ(LdapProbe(url).bind("", ""), server_down);
    slapd.start();
    EXPECT_TRUE(slapd.running());
    EXPECT_EQ(slapd.url(), url);
    EXPECT_THAT(service_of(slapd).find("ou=Users,o=Shop", everybody), SizeIs(199));
}

TEST(APrivateSlapd, BreaksItsConnectionsWhenItStops) {
    PrivateSlapd slapd;
    LdapProbe service = service_of(slapd);
    slapd.stop();
    EXPECT_EQ(service.remove(slapd.user_dn("jsmith")), server_down);
}

TEST(APrivateSlapd, AnswersNothingWhileItIsPaused) {
    PrivateSlapd slapd;
    LdapProbe probe(slapd.url(), slapd.service_dn(), slapd.service_password());
    probe.set_patience(1);
    slapd.pause();
    EXPECT_EQ(probe.search_result("o=Shop", everybody), timed_out);
    slapd.resume();
    EXPECT_EQ(probe.search_result("o=Shop", "(cn=jsmith)"), success);
}

TEST(APrivateSlapd, StopsEvenWhilePaused) {
    PrivateSlapd slapd;
    slapd.pause();
    slapd.stop();
    EXPECT_FALSE(slapd.running());
}

TEST(APrivateSlapd, LeavesNothingBehind) {
    std::filesystem::path folder;
    std::string url;
    {
        PrivateSlapd slapd;
        folder = slapd.folder();
        url = slapd.url();
        EXPECT_TRUE(std::filesystem::exists(folder));
    }
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_EQ(LdapProbe(url).bind("", ""), server_down);
}

TEST(APrivateSlapd, StandsBesideAnother) {
    PrivateSlapd one;
    PrivateSlapd other;
    EXPECT_NE(one.url(), other.url());
    EXPECT_NE(one.root_password(), other.root_password());
    ASSERT_EQ(service_of(one).remove(one.user_dn("jsmith")), success);
    EXPECT_THAT(service_of(other).find("ou=Users,o=Shop", everybody), SizeIs(200));
}

TEST(APrivateSlapd, WithTlsShowsACertificateThatItsCaFileVouchesFor) {
    PrivateSlapd slapd({.tls = true});
    LdapProbe upgraded(slapd.url(), slapd.ca_file());
    EXPECT_EQ(upgraded.start_tls(), success);
    EXPECT_EQ(upgraded.bind(slapd.user_dn("jsmith"), slapd.user_password()), success);
    LdapProbe wrapped(slapd.tls_url(), slapd.ca_file());
    EXPECT_EQ(wrapped.bind(slapd.user_dn("jsmith"), slapd.user_password()), success);

    PrivateSlapd stranger({.tls = true});
    EXPECT_NE(LdapProbe(slapd.url(), stranger.ca_file()).start_tls(), success);
}

TEST(APrivateSlapd, SortsOnlyWhenAskedTo) {
    const std::string sort_control = "1.2.840.113556.1.4.473";
    PrivateSlapd plain;
    EXPECT_THAT(LdapProbe(plain.url()).values("", "supportedControl"), Not(Contains(sort_control)));
    PrivateSlapd sorting({.sorting = true});
    EXPECT_THAT(LdapProbe(sorting.url()).values("", "supportedControl"), Contains(sort_control));
}

TEST(APrivateSlapd, WithAPasswordPolicyLocksAnAccountAfterThreeFailures) {
    PrivateSlapd slapd({.password_policy = true});
    LdapProbe probe(slapd.url());
    const std::string jsmith = slapd.user_dn("jsmith");
    EXPECT_EQ(probe.bind(jsmith, slapd.user_password()), success);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(probe.bind(jsmith, "wrong"), invalid_credentials);
    EXPECT_EQ(probe.bind(jsmith, slapd.user_password()), invalid_credentials);
    EXPECT_EQ(probe.bind(slapd.user_dn("glee"), slapd.user_password()), success);
}

TEST(APrivateSlapd, TakesMoreEntriesAndMoreConfiguration) {
    TempFolder folder;
    std::filesystem::path more = folder.path() / "more.ldif";
    std::ofstream(more) << "dn: cn=extra,ou=Users,o=Shop\n"
                           "objectClass: orvoPerson\n"
                           "cn: extra\n";
    PrivateSlapd slapd({.config = "sizelimit 5", .ldif = {more}});
    LdapProbe service = service_of(slapd);
    EXPECT_THAT(service.find("ou=Users,o=Shop", "(cn=extra)"),
                ElementsAre("cn=extra,ou=Users,o=Shop"));
    EXPECT_EQ(service.search_result("ou=Users,o=Shop", everybody), size_limit_exceeded);
}

TEST(APrivateSlapd, EndsPlainSearchesAfter500EntriesButNotThoseThatAskForPages) {
    TempFolder folder;
    std::filesystem::path shop = folder.path() / "shop.ldif";
    std::ofstream(shop) << output_of(
        {ORVO_SOURCE_DIR "/examples/directory/make-shop", "--users", "1234"});
    PrivateSlapd slapd({.shop = shop});
    LdapProbe service = service_of(slapd);
    EXPECT_EQ(service.search_result("ou=Users,o=Shop", everybody), size_limit_exceeded);
    EXPECT_THAT(service.find("ou=Users,o=Shop", everybody), SizeIs(1234));
}

TEST(APrivateSlapd, SaysWhyItCannotStart) {
    try {
        PrivateSlapd slapd({.config = "nonsense here"});
        FAIL() << "nothing raised";
    } catch (const std::runtime_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("the entries could not be loaded"));
        EXPECT_THAT(error.what(), HasSubstr("<nonsense>"));
    }
}

TEST(TheScript, StartsAServerThatStaysUntilItIsStopped) {
    TempFolder folder;
    const std::string place = folder.path() / "a server's folder";
    std::string port = output_of({script, "start", place});
    port.pop_back();
    std::string url = "ldap://127.0.0.1:" + port;
    EXPECT_EQ(LdapProbe(url).bind("cn=jsmith,ou=Users,o=Shop", "shop-sample"), success);
    EXPECT_EQ(output_of({script, "start", place}), port + "\n") << "it runs already";
    EXPECT_THAT(content_of(place + "/site.ini"),
                HasSubstr("\nLDAPServer=127.0.0.1:" + port + "\n"));
    EXPECT_EQ(output_of({script, "stop", place}), "");
    EXPECT_EQ(LdapProbe(url).bind("", ""), server_down);
    EXPECT_EQ(output_of({script, "stop", place}), "") << "it is stopped already";
}

TEST(TheSampleShop, IsWhatItsScriptPrints) {
    const std::string folder = ORVO_SOURCE_DIR "/examples/directory/";
    EXPECT_EQ(content_of(folder + "shop.ldif"), output_of({folder + "make-shop"}))
        << "examples/directory/make-shop > examples/directory/shop.ldif";
}

}  // namespace
}  // namespace orvo
