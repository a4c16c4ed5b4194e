#include "suite/directory/embedded/transfer/loader.h"

#include <gmock/gmock.h>

#include <sstream>

#include "platform/values/failure.h"
#include "suite/directory/embedded/directory/directory.h"
#include "suite/directory/policy/password_hash.h"
#include "suite/directory/policy/stored_password.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory::embedded {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

const Moment now = std::chrono::sys_days(std::chrono::year(2026) / 3 / 1);
constexpr const char* shop =
    "dn: o=Shop\nobjectClass: organization\no: Shop\n\n"
    "dn: ou=Users,o=Shop\nobjectClass: organizationalUnit\n\n";

class ALoader : public testing::Test {
protected:
    ALoader() {
        Store::create(path, Schema::of_product());
        store = Store::open(path);
    }
    void load(const std::string& ldif) {
        std::istringstream in(ldif);
        LdifReader reader(in);
        Loader loader(*store, now, HashCost::lowest);
        while (std::optional<LdifRecord> record = reader.next()) loader.take(*std::move(record));
        loader.commit();
    }
    // What is said to a file that is refused; nothing of it may be there.
    std::string refusal_of(const std::string& ldif) {
        const std::vector<std::string> before = names();
        try {
            load(ldif);
        } catch (const Failure& failure) {
            EXPECT_EQ(names(), before);
            return to_utf8(failure.description);
        }
        return "taken";
    }
    std::vector<std::string> names() {
        std::vector<std::string> names;
        store->read().every_entry([&](EntryData&& entry) {
            names.push_back(entry.name);
            return true;
        });
        return names;
    }
    std::vector<std::string> values(const std::string& name, const std::string& attribute) {
        const auto entry =
            store->read().find(DistinguishedName::try_parse(from_utf8(name)).value());
        const Attribute* held = entry ? find_attribute(*entry, attribute) : nullptr;
        return held ? held->values : std::vector<std::string>();
    }

    TempFolder folder;
    std::filesystem::path path = folder.path() / "shop.db";
    std::shared_ptr<Store> store;
};

std::string user(const std::string& cn, const std::string& more = {}) {
    return "dn: cn=" + cn + ",ou=Users,o=Shop\nobjectClass: orvoPerson\n" + more + "\n";
}

TEST_F(ALoader, StoresEntriesWithWhatADirectoryNotes) {
    load(shop + user("jsmith", "SURNAME: Smith\n"));
    EXPECT_THAT(names(), ElementsAre("o=Shop", "ou=Users,o=Shop", "cn=jsmith,ou=Users,o=Shop"));
    const std::string jsmith = "cn=jsmith,ou=Users,o=Shop";
    EXPECT_THAT(values(jsmith, "cn"), ElementsAre("jsmith"));
    EXPECT_THAT(values(jsmith, "sn"), ElementsAre("Smith"));
    EXPECT_THAT(values(jsmith, "structuralObjectClass"), ElementsAre("orvoPerson"));
    EXPECT_THAT(values(jsmith, "createTimestamp"), ElementsAre("20260301000000Z"));
    EXPECT_THAT(values(jsmith, "entryUUID"), ElementsAre(SizeIs(36)));
}

TEST_F(ALoader, KeepsWhatAnotherDirectoryNotedButForItsOwnBookkeeping) {
    load(shop + user("jsmith",
                     "structuralObjectClass: organization\n"
                     "entryUUID: 8a0c5d3e-0000-4000-8000-0123456789ab\n"
                     "creatorsName: cn=root,o=Shop\ncreateTimestamp: 20200101000000Z\n"
                     "entryCSN: 20200101000000.000000Z#000000#000#000000\n"
                     "hasSubordinates: FALSE\nentryDN: cn=jsmith,ou=Users,o=Shop\n"
                     "pwdFailureTime: 20200101000000.000001Z\n"
                     "pwdFailureTime: 20200101000000.000002Z\n"));
    const std::string jsmith = "cn=jsmith,ou=Users,o=Shop";
    EXPECT_THAT(values(jsmith, "entryUUID"), ElementsAre("8a0c5d3e-0000-4000-8000-0123456789ab"));
    EXPECT_THAT(values(jsmith, "creatorsName"), ElementsAre("cn=root,o=Shop"));
    EXPECT_THAT(values(jsmith, "createTimestamp"), ElementsAre("20200101000000Z"));
    EXPECT_THAT(values(jsmith, "modifyTimestamp"), ElementsAre("20260301000000Z"));
    EXPECT_THAT(values(jsmith, "structuralObjectClass"), ElementsAre("orvoPerson"));
    EXPECT_THAT(values(jsmith, "pwdFailureTime"), SizeIs(2));
    for (const char* attribute : {"entryCSN", "hasSubordinates", "entryDN"})
        EXPECT_THAT(values(jsmith, attribute), IsEmpty()) << attribute;
}

TEST_F(ALoader, HashesPasswordsInClearTextAndKeepsHashes) {
    const std::string hash = "{SSHA}ZEY7CJzuIUOwCnYfXDhYj4IpoL6NqH2iQGg31g==";
    load(shop + user("one", "userPassword: shop-sample\n") +
         user("two", "userPassword: " + hash + "\n"));
    EXPECT_THAT(values("cn=two,ou=Users,o=Shop", "userPassword"), ElementsAre(hash));
    const std::vector<std::string> made = values("cn=one,ou=Users,o=Shop", "userPassword");
    ASSERT_THAT(made, ElementsAre(StartsWith("{CRYPT}$y$")));
    EXPECT_TRUE(is_hash_of(made[0], Secret::of_bytes("shop-sample")));
    EXPECT_THAT(refusal_of(user("three", "userPassword: {SASL}three@shop\n")),
                AllOf(StartsWith("(19)"), HasSubstr("{SASL}")));
}

TEST_F(ALoader, LeavesNothingOfWhatItRefuses) {
    load(shop);
    EXPECT_EQ(refusal_of(user("a") + user("b", "serialNumber: 1\n")),
              "(65) The entry does not agree with its object class. attribute 'serialNumber' not "
              "allowed");
    EXPECT_THAT(refusal_of(user("a") + user("A")), StartsWith("(68)"));
    EXPECT_THAT(refusal_of(user("a", "OrvoRole: x\n")), StartsWith("(21)"));
    EXPECT_THAT(refusal_of(user("a") + "dn: cn=b,ou=Nowhere,o=Shop\nobjectClass: orvoPerson\n"),
                AllOf(StartsWith("(32)"), HasSubstr("'o=Shop'")));
    EXPECT_THAT(refusal_of("dn: o=Else\nobjectClass: organization\n"), StartsWith("(32)"));
    EXPECT_THAT(refusal_of("dn: nonsense\nobjectClass: organization\n"), StartsWith("(34)"));
    EXPECT_THAT(refusal_of("dn:\nobjectClass: organization\n"), StartsWith("(34)"));
}

TEST_F(ALoader, PutsTheBaseThatIsLoadedInThePlaceOfTheOneThatWasMade) {
    {
        Loader loader(*store, now, HashCost::lowest);
        loader.set_setting(store_setting::base, "o=Shop");
        loader.take({.entry = {"o=Shop", {{"objectClass", {"organization"}}}}});
        loader.commit();
    }
    EXPECT_THAT(refusal_of("dn: o=Else\nobjectClass: organization\n"), StartsWith("(32)"));
    load(
        "dn: O=shop\nobjectClass: organization\ndescription: ours\n\n"
        "dn: ou=Users,o=Shop\nobjectClass: organizationalUnit\n");
    EXPECT_THAT(names(), ElementsAre("o=shop", "ou=Users,o=shop"));
    EXPECT_THAT(values("o=Shop", "description"), ElementsAre("ours"));
    EXPECT_THAT(refusal_of("dn: o=Shop\nobjectClass: organization\n"), StartsWith("(68)"))
        << "others stand on it";
}

TEST_F(ALoader, KnowsWhatItHasJustPutBelowAnEntry) {
    const std::string base = "dn: o=Shop\nobjectClass: organization\n\n";
    const std::string unit = "dn: ou=Users,o=Shop\nobjectClass: organizationalUnit\n\n";
    EXPECT_THAT(refusal_of(base + unit + base), StartsWith("(68)"));
    EXPECT_THAT(refusal_of(base + unit + "dn: o=Shop\nchangetype: delete\n"), StartsWith("(66)"));
    load(base + unit + "dn: ou=Users,o=Shop\nchangetype: delete\n\n" + unit);
    EXPECT_THAT(names(), ElementsAre("o=Shop", "ou=Users,o=Shop"));
}

TEST_F(ALoader, CarriesChangesOut) {
    load(shop + user("a", "sn: A\nuserPassword: shop-sample\n") + user("b"));
    load(
        "dn: cn=a,ou=Users,o=Shop\nchangetype: modify\nadd: mail\nmail: a@b\n-\n"
        "replace: userPassword\nuserPassword: other\n\n"
        "dn: cn=b,ou=Users,o=Shop\nchangetype: delete\n\n"
        "dn: cn=c,ou=Users,o=Shop\nchangetype: add\nobjectClass: orvoPerson\n");
    EXPECT_THAT(values("cn=a,ou=Users,o=Shop", "mail"), ElementsAre("a@b"));
    EXPECT_TRUE(is_hash_of(values("cn=a,ou=Users,o=Shop", "userPassword").at(0),
                           Secret::of_bytes("other")));
    EXPECT_THAT(names(), ElementsAre("o=Shop", "ou=Users,o=Shop", "cn=a,ou=Users,o=Shop",
                                     "cn=c,ou=Users,o=Shop"));
    EXPECT_THAT(refusal_of("dn: ou=Users,o=Shop\nchangetype: delete\n"), StartsWith("(66)"));
    EXPECT_THAT(refusal_of("dn: cn=x,o=Shop\nchangetype: delete\n"), StartsWith("(32)"));
    EXPECT_THAT(refusal_of("dn: cn=x,o=Shop\nchangetype: modify\nreplace: sn\nsn: x\n"),
                StartsWith("(32)"));
    EXPECT_THAT(refusal_of("dn: cn=a,ou=Users,o=Shop\nchangetype: modify\nadd: sn\nsn: a\n"),
                StartsWith("(20)"));
}

TEST_F(ALoader, FindsAnEntryGoneUnderWhichItHasPutOthers) {
    load(shop + user("a"));
    EXPECT_THAT(refusal_of("dn: cn=x,cn=a,ou=Users,o=Shop\nobjectClass: orvoPerson\n\n"
                           "dn: cn=x,cn=a,ou=Users,o=Shop\nchangetype: delete\n\n"
                           "dn: cn=a,ou=Users,o=Shop\nchangetype: delete\n\n"
                           "dn: cn=y,cn=a,ou=Users,o=Shop\nobjectClass: orvoPerson\n"),
                StartsWith("(32)"));
}

}  // namespace
}  // namespace orvo::directory::embedded
