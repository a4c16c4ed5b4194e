// How a new password reaches servers of different makes. All of them are the one server of these
// tests, which shows something else in its root entry; tests/servers runs the real ones.

#include <gmock/gmock.h>

#include "platform/interfaces/call.h"
#include "platform/objects/dictionary/dictionary.h"
#include "suite/directory/ldap/provider/LdapEntry.h"
#include "suite/directory/ldap/provider/LdapValidator.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/bad_server.h"
#include "tests/suite/directory/ldap/support/rewriting_proxy.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// Configuration of a server whose root entry shows this, too.
std::string shown_in_root(const TempFolder& folder, const std::string& lines) {
    return "rootDSE " + folder.write("root.ldif", "dn:\n" + lines + "\n").string() + "\n";
}

// With what an Active Directory keeps of a user.
SlapdOptions active_directory(const TempFolder& folder) {
    const std::string schema = R"(
attributetype ( 1.2.840.113556.1.4.90 NAME 'unicodePwd'
    EQUALITY octetStringMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.40 SINGLE-VALUE )
attributetype ( 1.2.840.113556.1.4.8 NAME 'userAccountControl'
    EQUALITY integerMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 SINGLE-VALUE )
attributetype ( 1.2.840.113556.1.4.1464 NAME 'supportedCapabilities'
    SYNTAX 1.3.6.1.4.1.1466.115.121.1.38 )
ditcontentrule ( OrvoClass:2 NAME 'domainUser' MAY ( unicodePwd $ userAccountControl ) )
)";
    return {
        .tls = true,
        .config = schema + shown_in_root(folder, "supportedCapabilities: 1.2.840.113556.1.4.800")};
}

SlapdOptions of_389(const TempFolder& folder) {
    return {.password_policy = true, .config = shown_in_root(folder, "vendorName: 389 Project")};
}

SlapdOptions showing_nothing(const TempFolder&) {
    return {.config = "database frontend\naccess to dn.base=\"\" by * none\n"};
}

const Text with_nul{u"shop-sample\0more", 16};
const Text too_long(65'537, u'x');

std::string utf16(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

class PasswordWritingTest : public testing::Test {
protected:
    using Make = SlapdOptions (*)(const TempFolder&);
    explicit PasswordWritingTest(Make make = nullptr)
        : server_(make ? make(folder_) : SlapdOptions{}) {}

    std::string djansen() const { return server_.user_dn("djansen"); }
    virtual Text address() const { return from_utf8(server_.server()); }

    void bind(LdapEntry& entry, const Text& name = u"cn=djansen") const {
        bind_as(entry, server_.service_dn(), server_.service_password(), address(), name);
    }
    static void bind_as(LdapEntry& entry, const std::string& user, const std::string& password,
                        Text server, Text name) {
        Text container = u"ou=Users,o=Shop", user_text = from_utf8(user);
        Secret password_text = Secret::of_bytes(password);
        Variant none = Values{};
        entry.Bind(server, container, name, user_text, password_text, none);
    }
    static void set(LdapEntry& entry, Variant password) {
        Text name = u"userPassword";
        entry.SetValues(name, password);
    }
    static void clear(LdapEntry& entry) {
        Text name = u"userPassword";
        entry.ClearValues(name);
    }
    static void create(LdapEntry& users, const Variant& password, const Text& another = u"sn",
                       const Text& value_of_it = u"New") {
        const auto given = make<DictionaryObject>();
        const std::initializer_list<std::pair<Variant, Variant>> attributes = {
            {u"cn", u"new"}, {another, value_of_it}, {u"userPassword", password}};
        for (auto [name, value] : attributes) call<&Dictionary::Add>(given, name, value);
        Object object = given.object();
        Variant classes = u"orvoPerson";
        Text naming = u"cn";
        users.CreateChild(classes, naming, object);
    }
    std::int32_t checked(const std::string& user, const Variant& password) const {
        LdapValidator validator{Limits{2s, 2s}};
        Text server = address(), container = u"ou=Users,o=Shop";
        validator.Open(server, container);
        Variant path = from_utf8(user), given = password;
        return validator.Validate(path, given);
    }
    // Who wrote to the entry last.
    std::string writer() { return probe_.values(djansen(), "modifiersName").at(0); }
    int raw_bind(const std::string& password) {
        return LdapProbe(server_.url()).bind(djansen(), password);
    }
    std::vector<std::string> stored() { return probe_.values(djansen(), "userPassword"); }

    TempFolder folder_;
    PrivateSlapd server_;
    LdapProbe probe_{server_.url(), server_.root_dn(), server_.root_password()};
};

TEST(PasswordThatNobodyHas, IsWrongWithoutAskingTheServer) {
    BadServer silent({});
    const Text server = from_utf8(silent.server());
    for (const Text& password : {with_nul, too_long}) {
        LdapValidator validator;
        Text address = server, container = u"ou=Users,o=Shop";
        validator.Open(address, container);
        Variant path = u"cn=djansen,ou=Users,o=Shop", given = password;
        EXPECT_EQ(validator.Validate(path, given), -1);

        LdapEntry entry;
        Text name = u"cn=djansen", user = u"cn=djansen,ou=Users,o=Shop";
        Secret own{TextView(password)};
        Variant none = Values{};
        EXPECT_EQ(failure_of([&] { entry.Bind(address, container, name, user, own, none); }).number,
                  error_number(0x8007052E));
    }
    EXPECT_EQ(silent.connections(), 0);
}

// A server that neither lists the operation nor is known to take hashes.
class UnknownServerTest : public PasswordWritingTest {
protected:
    Text address() const override { return from_utf8(unknown_.server()); }

    RewritingProxy without_operation_{server_.server(), "1.3.6.1.4.1.4203.1.11.1",
                                      "1.3.6.1.4.1.4203.1.11.9"};
    RewritingProxy unknown_{without_operation_.server(), "OpenLDAProotDSE", "SomeOtherServer"};
};

TEST_F(UnknownServerTest, ShowsNoWayToSetAPasswordSoNothingIsChanged) {
    LdapEntry entry;
    bind(entry);
    const auto before = stored();
    const Failure failure = failure_of([&] { set(entry, u"other-sample"); });
    EXPECT_EQ(failure.number, error_number(0x80072040));
    EXPECT_EQ(failure.description,
              u"(92) The directory client does not support this. The server shows no way to set a "
              u"password: its root entry lists no Password Modify operation (RFC 3062).");
    EXPECT_EQ(stored(), before);
    EXPECT_EQ(raw_bind("shop-sample"), 0);
}

TEST_F(UnknownServerTest, GetsNoUserWithAPassword) {
    LdapEntry users;
    bind(users, u"");
    EXPECT_EQ(failure_of([&] { create(users, u"new-sample"); }).number, error_number(0x80072040));
    EXPECT_THAT(probe_.find("ou=Users,o=Shop", "(cn=new)"), IsEmpty());
    create(users, u"");
    EXPECT_THAT(probe_.find("ou=Users,o=Shop", "(cn=new)"), testing::SizeIs(1));
}

struct HiddenRootTest : PasswordWritingTest {
    HiddenRootTest() : PasswordWritingTest(showing_nothing) {}
};

TEST_F(HiddenRootTest, IsAskedForTheOperationAllTheSame) {
    LdapEntry entry;
    bind(entry);
    set(entry, u"other-sample");
    EXPECT_THAT(stored(), ElementsAre(StartsWith("{SSHA}")));
    EXPECT_EQ(raw_bind("other-sample"), 0);
}

class ActiveDirectoryTest : public PasswordWritingTest {
protected:
    ActiveDirectoryTest() : PasswordWritingTest(active_directory) {}
    Text address() const override {
        return from_utf8(server_.tls_url() + "/?cafile=" + server_.ca_file().string());
    }
    std::vector<std::string> password_of(const std::string& cn) {
        return probe_.values(server_.user_dn(cn), "unicodePwd");
    }
    static std::vector<std::string> quoted(std::u16string_view password) {
        return {utf16(u"\"" + Text(password) + u"\"")};
    }
};

TEST_F(ActiveDirectoryTest, GetsThePasswordAsItTakesIt) {
    LdapEntry entry;
    bind(entry);
    const auto before = stored();
    set(entry, u"gr\u00FC\u00DF \u0416");
    EXPECT_EQ(password_of("djansen"), quoted(u"gr\u00FC\u00DF \u0416"));
    set(entry, u"another");
    EXPECT_EQ(password_of("djansen"), quoted(u"another")) << "whatever it was";
    EXPECT_EQ(stored(), before) << "no hash for others to read";
}

TEST_F(ActiveDirectoryTest, ComparesTheFormerPasswordOfUsersWhoChangeTheirOwn) {
    LdapEntry entry;
    bind(entry);
    set(entry, u"shop-sample");
    ASSERT_EQ(checked(djansen(), u"shop-sample"), 0);
    set(entry, u"other-sample");
    EXPECT_EQ(password_of("djansen"), quoted(u"other-sample"));
    ASSERT_EQ(checked(djansen(), u"shop-sample"), 0) << "the other attribute of this server";
    EXPECT_THAT(to_utf8(failure_of([&] { set(entry, u"third-sample"); }).description),
                StartsWith("(16) "));
    EXPECT_EQ(password_of("djansen"), quoted(u"other-sample"));
}

TEST_F(ActiveDirectoryTest, GetsNoPasswordOverAPlainConnection) {
    LdapEntry entry, users;
    const auto bind_plain = [&](LdapEntry& plain, const Text& name) {
        bind_as(plain, server_.service_dn(), server_.service_password(),
                from_utf8(server_.server()), name);
    };
    bind_plain(entry, u"cn=djansen");
    bind_plain(users, u"");
    const Failure failure = failure_of([&] { set(entry, u"other-sample"); });
    EXPECT_EQ(failure.number, error_number(0x8007202D));
    EXPECT_EQ(failure.description,
              u"(13) The server requires an encrypted connection. This server's passwords are "
              u"written over encrypted connections alone.");
    EXPECT_THAT(password_of("djansen"), IsEmpty());
    EXPECT_EQ(failure_of([&] { create(users, u"new-sample"); }).number, failure.number);
    EXPECT_THAT(probe_.find("ou=Users,o=Shop", "(cn=new)"), IsEmpty());
}

TEST_F(ActiveDirectoryTest, GetsAnAccountThatMayLogInTogetherWithItsPassword) {
    LdapEntry users;
    bind(users, u"");
    create(users, u"new-sample");
    EXPECT_EQ(password_of("new"), quoted(u"new-sample"));
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "userAccountControl"), ElementsAre("512"));
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "userPassword"), IsEmpty());

    ASSERT_EQ(probe_.remove(server_.user_dn("new")), 0);
    create(users, u"new-sample", u"userAccountControl", u"66048");
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "userAccountControl"), ElementsAre("66048"));

    ASSERT_EQ(probe_.remove(server_.user_dn("new")), 0);
    create(users, u"");
    EXPECT_THAT(probe_.values(server_.user_dn("new"), "userAccountControl"), IsEmpty());
}

TEST_F(ActiveDirectoryTest, ClearsNoPassword) {
    LdapEntry entry;
    bind(entry);
    EXPECT_THAT(to_utf8(failure_of([&] { clear(entry); }).description), StartsWith("(53) "));
    EXPECT_EQ(raw_bind("shop-sample"), 0);
}

TEST_F(ActiveDirectoryTest, GetsTimesWithAFraction) {
    LdapEntry entry;
    bind(entry);
    Text name = u"CreditCardExpiryDate";
    for (const Variant& given :
         {Variant(date_from_parts({2031, 12, 31, 0, 0, 0})), Variant(u"20311231000000Z")}) {
        Variant value = given;
        entry.SetValues(name, value);
        EXPECT_THAT(probe_.values(djansen(), "CreditCardExpiryDate"),
                    ElementsAre("20311231000000.0Z"));
        EXPECT_EQ(entry.GetValues(name), Variant(Values{date_from_parts({2031, 12, 31, 0, 0, 0})}));
        entry.ClearValues(name);
    }
}

// A server that tells users from administrators: a password that the latter have set is to be
// changed, which only the user can do.
struct TellingServerTest : PasswordWritingTest {
    TellingServerTest() : PasswordWritingTest(of_389) {}
};

TEST_F(TellingServerTest, SeesUsersChangeTheirOwnPassword) {
    LdapEntry entry;
    bind(entry);
    set(entry, u"other-sample");
    EXPECT_EQ(writer(), server_.service_dn());
    ASSERT_EQ(checked(djansen(), u"other-sample"), 0);
    set(entry, u"third-sample");
    EXPECT_EQ(writer(), djansen());
    EXPECT_EQ(raw_bind("third-sample"), 0);
}

TEST_F(TellingServerTest, SeesThoseWhoMustChangeTheirPasswordDoSo) {
    LdapEntry entry;
    bind(entry);
    ASSERT_EQ(probe_.replace(djansen(), "pwdReset", {"TRUE"}), 0);
    ASSERT_EQ(checked(djansen(), u"shop-sample"), -4);
    set(entry, u"other-sample");
    EXPECT_EQ(writer(), djansen());
    EXPECT_EQ(checked(djansen(), u"other-sample"), 0);
}

// The sample shop lets no service account change its own password.
TEST_F(TellingServerTest, HasAnotherSetThePasswordOfThoseWhoMayNotDoItThemselves) {
    LdapEntry entry;
    Text server = address(), container = u"ou=Services,o=Shop", name = u"cn=orvo-service";
    Text root = from_utf8(server_.root_dn());
    Secret password = Secret::of_bytes(server_.root_password());
    Variant none = Values{};
    entry.Bind(server, container, name, root, password, none);
    LdapValidator validator{Limits{2s, 2s}};
    validator.Open(server, container);
    Variant path = from_utf8(server_.service_dn()), own = from_utf8(server_.service_password());
    ASSERT_EQ(validator.Validate(path, own), 0);
    set(entry, u"other-service");
    EXPECT_EQ(LdapProbe(server_.url()).bind(server_.service_dn(), "other-service"), 0);
}

}  // namespace
}  // namespace orvo::directory::ldap
