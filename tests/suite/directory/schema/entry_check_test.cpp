#include "suite/directory/schema/entry_check.h"

#include <gmock/gmock.h>

#include "suite/directory/schema/entry_change.h"
#include "tests/suite/directory/schema/refused_entries.h"

namespace orvo::directory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const Schema& schema() { return Schema::of_product(); }

std::vector<std::string> values_of(const EntryData& entry, std::string_view name) {
    for (const Attribute& held : entry.attributes)
        if (held.name == name) return held.values;
    return {};
}

TEST(ANewEntry, IsTakenOrRefusedAsAServerDoes) {
    for (const AddCase& one : add_cases()) {
        EntryData entry{full_case_name(one.name), one.attributes};
        const Refusal refusal = check_new_entry(schema(), entry);
        SCOPED_TRACE(one.name + " " + one.attributes.back().name + ": " +
                     (one.attributes.back().values.empty() ? "" : one.attributes.back().values[0]));
        EXPECT_EQ(refusal.code, one.code);
        EXPECT_EQ(refusal.message, one.sentence);
        if (!refusal) {
            EXPECT_FALSE(check_entry(schema(), entry));
        }
    }
}

TEST(AChange, IsTakenOrRefusedAsAServerDoes) {
    for (const ChangeCase& one : change_cases()) {
        EntryData entry = sample_entry();
        const Refusal refusal = apply_changes(schema(), entry, one.changes);
        SCOPED_TRACE(one.changes.front().attribute + " " + one.sentence);
        EXPECT_EQ(refusal.code, one.code);
        EXPECT_EQ(refusal.message, one.sentence);
    }
}

TEST(ANewEntry, GetsTheSpellingOfTheSchemaAndTheValuesOfItsName) {
    EntryData entry{"CN = Smith\\, John + surname=Smith, OU=Users,o=Shop",
                    {{"OBJECTCLASS", {"ORVOPERSON"}},
                     {"SURNAME", {"SMITH"}},
                     {"mail;LANG-fr;lang-DE", {"a@b"}},
                     {"COMMONNAME", {"js"}}}};
    EXPECT_EQ(check_new_entry(schema(), entry).message, "");
    EXPECT_EQ(entry.name, "cn=Smith\\2C John+sn=Smith,ou=Users,o=Shop");
    EXPECT_THAT(values_of(entry, "objectClass"), ElementsAre("orvoPerson"));
    EXPECT_THAT(values_of(entry, "sn"), ElementsAre("SMITH"));
    EXPECT_THAT(values_of(entry, "cn"), ElementsAre("js", "Smith, John"));
    EXPECT_THAT(values_of(entry, "mail;lang-de;lang-fr"), ElementsAre("a@b"));
    EntryData group{"cn=x,o=Shop",
                    {{"objectClass", {"2.5.6.9"}}, {"member", {"CN = a , O = b", ""}}}};
    EXPECT_EQ(check_new_entry(schema(), group).message, "");
    EXPECT_THAT(values_of(group, "objectClass"), ElementsAre("groupOfNames"));
    EXPECT_THAT(values_of(group, "member"), ElementsAre("cn=a,o=b", ""));
}

TEST(ALoadedEntry, MayHaveWhatADirectoryAloneWrites) {
    EntryData entry{"cn=x,ou=Users,o=Shop",
                    {{"objectClass", {"orvoPerson"}},
                     {"creatorsName", {"cn=root,o=Shop"}},
                     {"entryUUID", {"8a0c5d3e-0000-4000-8000-0123456789ab"}},
                     {"pwdFailureTime", {"20200101000000.000001Z", "20200101000000.000002Z"}}}};
    EXPECT_EQ(check_loaded_entry(schema(), entry).message, "");
    EXPECT_EQ(check_new_entry(schema(), entry).code, 19);
    entry.attributes.push_back({"createTimestamp", {"yesterday"}});
    EXPECT_EQ(check_loaded_entry(schema(), entry).code, 21);
}

TEST(AChangedEntry, HasTheNewValuesBehindTheOthers) {
    EntryData entry = sample_entry();
    const std::vector<Replacement> changes = {{"SN", {"C"}, Change::add},
                                              {"sn", {"a"}, Change::remove},
                                              {"OrvoRole", {"7"}},
                                              {"OrvoGUID", {}},
                                              {"givenName", {"G"}}};
    EXPECT_FALSE(apply_changes(schema(), entry, changes));
    EXPECT_THAT(values_of(entry, "sn"), ElementsAre("B", "C"));
    EXPECT_THAT(values_of(entry, "OrvoRole"), ElementsAre("7"));
    EXPECT_THAT(values_of(entry, "OrvoGUID"), IsEmpty());
    EXPECT_THAT(values_of(entry, "givenName"), ElementsAre("G"));
}

TEST(AStoredEntry, IsCheckedWithoutBeingCompleted) {
    EntryData entry = sample_entry();
    EXPECT_FALSE(check_entry(schema(), entry));
    entry.name = "cn=y,ou=Users,o=Shop";
    EXPECT_EQ(check_entry(schema(), entry).message,
              "value of naming attribute 'cn' is not present in entry");
    entry = sample_entry();
    entry.attributes[0].values.push_back("nosuch");
    EXPECT_EQ(check_entry(schema(), entry).message, "unrecognized objectClass 'nosuch'");
}

TEST(TheStructuralClass, IsTheMostSpecific) {
    const auto of = [](std::vector<std::string> classes) -> std::string {
        const ObjectClass* found = structural_class(schema(), {"", {{"objectClass", classes}}});
        return found ? found->name() : "";
    };
    EXPECT_EQ(of({"top", "PERSON", "organizationalPerson"}), "organizationalPerson");
    EXPECT_EQ(of({"organizationalPerson", "person", "orvoMember"}), "organizationalPerson");
    EXPECT_EQ(of({"person", "orvoPerson"}), "");
    EXPECT_EQ(of({"top"}), "");
}

}  // namespace
}  // namespace orvo::directory
