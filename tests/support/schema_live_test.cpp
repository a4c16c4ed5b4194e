// The product's directory schema: both of its forms, and what each attribute takes.

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo {
namespace {

using testing::Contains;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;
using Strings = std::vector<std::string>;

constexpr int success = 0;
constexpr int constraint_violation = 19;
constexpr int invalid_syntax = 21;

const std::string schema = ORVO_SOURCE_DIR "/schema/";

// The product's definitions as a configuration database holds them, sorted.
Strings definitions_in(const std::filesystem::path& database) {
    std::istringstream dump(
        output_of({"/usr/sbin/slapcat", "-n0", "-F", database, "-o", "ldif-wrap=no", "-a",
                   "(&(objectClass=olcSchemaConfig)(cn=*orvo*))"}));
    Strings found;
    for (std::string line; std::getline(dump, line);) {
        if (line.starts_with("olc")) found.push_back(line);
    }
    std::sort(found.begin(), found.end());
    return found;
}

TEST(TheSchema, HasAnLdifFormThatIsWhatTheScriptPrints) {
    for (const std::string name : {"orvo", "orvo-standalone"}) {
        EXPECT_EQ(content_of(schema + name + ".ldif"),
                  output_of({schema + "to-ldif", schema + name + ".schema"}))
            << "schema/to-ldif schema/" << name << ".schema > schema/" << name << ".ldif";
    }
}

TEST(TheSchema, MeansTheSameToAServerInBothForms) {
    TempFolder folder;
    std::filesystem::path from_schema = folder.path() / "from schema";
    std::filesystem::path from_ldif = folder.path() / "from ldif";
    std::filesystem::create_directories(from_schema);
    std::filesystem::create_directories(from_ldif);
    const std::string conf = folder.path() / "slapd.conf";
    std::ofstream(conf) << "include /etc/ldap/schema/core.schema\n"
                        << "include \"" << schema << "orvo-standalone.schema\"\n"
                        << "include \"" << schema << "orvo.schema\"\n";
    output_of({"/usr/sbin/slaptest", "-f", conf, "-F", from_schema});
    const std::string ldif = folder.path() / "config.ldif";
    std::ofstream(ldif) << "dn: cn=config\nobjectClass: olcGlobal\ncn: config\n\n"
                        << "dn: cn=schema,cn=config\nobjectClass: olcSchemaConfig\ncn: schema\n\n"
                        << content_of("/etc/ldap/schema/core.ldif") << "\n"
                        << content_of(schema + "orvo-standalone.ldif") << "\n"
                        << content_of(schema + "orvo.ldif");
    output_of({"/usr/sbin/slapadd", "-n0", "-F", from_ldif, "-l", ldif});

    Strings definitions = definitions_in(from_schema);
    EXPECT_THAT(definitions, SizeIs(70));
    EXPECT_THAT(definitions_in(from_ldif), ElementsAreArray(definitions));
}

TEST(TheSchema, LoadsBesideTheUsualOnesOfAServer) {
    TempFolder folder;
    const std::string conf = folder.path() / "slapd.conf";
    std::ofstream file(conf);
    for (const char* name : {"core", "cosine", "nis", "inetorgperson", "misc", "dyngroup"}) {
        file << "include /etc/ldap/schema/" << name << ".schema\n";
    }
    file << "include \"" << schema << "orvo.schema\"\n";
    file.close();
    EXPECT_THAT(output_of({"/usr/sbin/slaptest", "-u", "-f", conf}),
                HasSubstr("config file testing succeeded"));
}

// A kind of attribute: what it takes, and what it refuses with which result.
struct Kind {
    Strings names;
    Strings taken;
    Strings refused;
    bool several;
};

const Kind kinds[] = {
    {.names = {"PhoneNumber",
               "Modem",
               "Position",
               "OutOfOfficeApprover",
               "ManagerCN",
               "CreditCardNr",
               "ReqPrefix",
               "AdminOffice",
               "PurOffice",
               "CompanyName",
               "LocalAdminProfileCN",
               "LanguageID",
               "employeeNumber",
               "ILSServer",
               "Manager",
               "ProfileCN",
               "WhReqPrefix",
               "SubstituteBuyer",
               "BuyerManager",
               "ApproverManager",
               "CompanyNumber",
               "FinancialCompanyAdmin",
               "FinancialCompanyCardUser",
               "CardUserManager",
               "CostCenter",
               "DefaultURL",
               "OrvoGUID"},
     .taken = {"x", "grace.lee@shop.example", "Größe 日本 😀, \"two\"; <three>"},
     .refused = {""},
     .several = false},
    {.names = {"ShowExplain", "OutOfOfficeOn", "CreditCardType", "DeliveryAddressID",
               "BillToBusinessPartnerID", "Locale", "BusinessPartnerID", "OrvoUserType", "BPType",
               "OrvoBillAddress", "OrvoShipAddress", "PropertyGroupID", "ChargeLines",
               "ProjectUserType", "OneTimeUser", "OnBehalfOf"},
     .taken = {"0", "1", "-1", "32767", "-2147483648", "5000000000"},
     .refused = {"", "TRUE", "1.5", "one", "+1"},
     .several = false},
    {.names = {"OrvoRole", "OrvoApps", "OrvoCatalogIDS", "OrvoAddressIDs", "AskbookVisibility",
               "OrvoDashboardIDs", "ExcludedVexIDs", "ProjectRole", "OnBehalfOfAdminOffice",
               "OnBehalfOfRequisitioner"},
     .taken = {"0", "-1", "25", "2147483647"},
     .refused = {"", "TRUE", "1.5", "one"},
     .several = true},
    {.names = {"SpendLimit", "LimitforRFQ", "LimitforContract", "ApproverLimit"},
     .taken = {"0", "1234.5", "-0.0001", "922337203685477.5807"},
     .refused = {"", "€5", "1;5"},
     .several = false},
    {.names = {"CreditCardExpiryDate"},
     .taken = {"20281231000000Z", "20240229235959.5Z", "20281231120000+0100"},
     .refused = {"", "2028-12-31", "20281331000000Z", "31.12.2028"},
     .several = false},
};

TEST(TheSchema, TakesAndRefusesValuesAsTheKindOfTheAttributeSays) {
    PrivateSlapd slapd;
    LdapProbe service(slapd.url(), slapd.service_dn(), slapd.service_password());
    const std::string bare = slapd.user_dn("bare");
    for (const Kind& kind : kinds) {
        for (const std::string& name : kind.names) {
            SCOPED_TRACE(name);
            for (const std::string& value : kind.taken) {
                EXPECT_EQ(service.replace(bare, name, {value}), success) << value;
                EXPECT_THAT(service.values(bare, name), ElementsAreArray({value}));
            }
            for (const std::string& value : kind.refused) {
                EXPECT_EQ(service.replace(bare, name, {value}), invalid_syntax) << value;
            }
            Strings two = {kind.taken[0], kind.taken[1]};
            EXPECT_EQ(service.replace(bare, name, two),
                      kind.several ? success : constraint_violation);
            EXPECT_EQ(service.replace(bare, name, {}), success);
        }
    }
}

TEST(TheSchema, HasEveryAttributeOfItsFileTriedHere) {
    Strings expected = {"OrvoNTUser", "OrvoNTPassword"};
    for (const Kind& kind : kinds) {
        expected.insert(expected.end(), kind.names.begin(), kind.names.end());
    }
    Strings defined;
    std::istringstream lines(content_of(schema + "orvo-standalone.schema") +
                             content_of(schema + "orvo.schema"));
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("attributetype")) continue;
        std::size_t quote = line.find('\'') + 1;
        defined.push_back(line.substr(quote, line.find('\'', quote) - quote));
    }
    EXPECT_THAT(defined, UnorderedElementsAreArray(expected));
}

TEST(TheSchema, ReusesTheStandardAttributesWithTheirOwnRules) {
    PrivateSlapd slapd;
    LdapProbe service(slapd.url(), slapd.service_dn(), slapd.service_password());
    const std::string bare = slapd.user_dn("bare");
    EXPECT_EQ(service.replace(bare, "facsimiletelephonenumber", {"+44 20 7946 0019"}), success);
    EXPECT_EQ(service.replace(bare, "sn", {"Größe"}), success);
    EXPECT_EQ(service.replace(bare, "givenName", {"日本"}), success);
    EXPECT_EQ(service.replace(bare, "mail", {"a@shop.example"}), success);
    EXPECT_EQ(service.replace(bare, "mail", {"größe@shop.example"}), invalid_syntax);
    EXPECT_EQ(service.replace(bare, "c", {"NL"}), success);
    EXPECT_EQ(service.replace(bare, "c", {"Netherlands"}), invalid_syntax);
}

TEST(TheSchema, ComparesTextsWithoutRegardToCaseAndNumbersAndDatesByTheirOrder) {
    PrivateSlapd slapd;
    LdapProbe service(slapd.url(), slapd.service_dn(), slapd.service_password());
    auto jsmith_has = [&](const std::string& part) {
        return service.find(slapd.user_dn("jsmith"), "(&(objectClass=orvoPerson)" + part + ")")
                   .size() == 1;
    };
    EXPECT_TRUE(jsmith_has("(profilecn=BUYERS)"));
    EXPECT_TRUE(jsmith_has("(Position=senior*)"));
    EXPECT_TRUE(jsmith_has("(orvorole=24)"));
    EXPECT_TRUE(jsmith_has("(BusinessPartnerID>=999)"));
    EXPECT_FALSE(jsmith_has("(BusinessPartnerID>=1002)"));
    EXPECT_TRUE(jsmith_has("(CreditCardExpiryDate>=20280101000000Z)"));
    EXPECT_FALSE(jsmith_has("(CreditCardExpiryDate>=20290101000000Z)"));
    EXPECT_TRUE(jsmith_has("(SpendLimit=1234.5)"));
    EXPECT_FALSE(jsmith_has("(SpendLimit>=1)")) << "amounts have no order rather than a wrong one";
}

TEST(TheSchema, LetsNoFilterGuessAServicePassword) {
    PrivateSlapd slapd;
    LdapProbe service(slapd.url(), slapd.service_dn(), slapd.service_password());
    EXPECT_THAT(service.find("ou=Accounts,o=Shop", "(OrvoNTUser=shop\\5cshop-user)"), SizeIs(1));
    EXPECT_THAT(service.find("ou=Accounts,o=Shop", "(OrvoNTPassword=nt-sample-1)"), SizeIs(0));
}

}  // namespace
}  // namespace orvo
