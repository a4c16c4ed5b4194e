#include "suite/directory/entries/new_entry.h"

#include <gmock/gmock.h>

#include <array>

#include "platform/values/failure.h"
#include "platform/values/values.h"
#include "suite/directory/names/written_name.h"
#include "tests/suite/directory/expect_failure.h"

namespace orvo::directory {

bool operator==(const Attribute& one, const Attribute& other) {
    return one.name == other.name && one.values == other.values;
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

AttributeTypes types() {
    return AttributeTypes::from_descriptions(std::array<std::string, 5>{
        "( 2.5.4.3 NAME ( 'cn' 'commonName' ) SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )",
        "( 2.5.4.4 NAME ( 'sn' 'surname' ) SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )",
        "( 1.1.1 NAME 'type' SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 )",
        "( 1.1.2 NAME 'active' SYNTAX 1.3.6.1.4.1.1466.115.121.1.7 )",
        "( 2.5.4.0 NAME 'objectClass' SYNTAX 1.3.6.1.4.1.1466.115.121.1.38 )"});
}

NewEntry entry(const std::vector<GivenAttribute>& given, const Variant& classes = u"person",
               const std::string& naming = "cn") {
    return NewEntry(given, classes, naming, types());
}

TEST(ANewEntry, HasItsValuesTypedAndItsNameEscaped) {
    const NewEntry made = entry({{"cn", u"Smith, John"},
                                 {"type", u"4"},
                                 {"active", true},
                                 {"userPassword", u"secret"},
                                 {"objectClass", Values{u"person", u"top"}}});
    EXPECT_EQ(made.relative_name, u"cn=Smith\\, John");
    EXPECT_THAT(
        made.attributes,
        ElementsAre(Attribute{"cn", {"Smith, John"}}, Attribute{"type", {"4"}},
                    Attribute{"active", {"TRUE"}}, Attribute{"objectClass", {"person", "top"}}));
    EXPECT_EQ(made.password.reveal(), "secret");
    EXPECT_THAT(made.left_empty, IsEmpty());
}

TEST(ANewEntry, LeavesEmptyTextsOutButForNumbers) {
    const NewEntry made = entry({{"cn", u"a"},
                                 {"sn", u""},
                                 {"type", u""},
                                 {"active", u""},
                                 {"unknown", u""},
                                 {"userPassword", u""}});
    EXPECT_THAT(made.attributes, ElementsAre(Attribute{"cn", {"a"}}, Attribute{"type", {"0"}},
                                             Attribute{"objectClass", {"person"}}));
    EXPECT_THAT(made.left_empty, ElementsAre("sn", "unknown"));
    EXPECT_TRUE(made.password.empty());
}

TEST(ANewEntry, KnowsWhichEmptyTextsItsClassesRequire) {
    const auto classes = ObjectClasses::from_descriptions(std::array<std::string, 2>{
        "( 2.5.6.6 NAME 'person' SUP top MUST ( surname $ cn $ active ) MAY unknown )",
        "( 1.2.3 NAME 'other' MUST unknown )"});
    const auto required = [&](const std::vector<GivenAttribute>& given) {
        return NewEntry(given, u"person", "cn", types(), classes).required_empty;
    };
    EXPECT_THAT(required({{"cn", u"a"}, {"sn", u""}, {"unknown", u""}, {"active", u""}}),
                ElementsAre("sn"));
    EXPECT_THAT(required({{"cn", u"a"}, {"sn", u""}, {"SN", u""}, {"surname", u""}}),
                ElementsAre("sn"));
    EXPECT_THAT(required({{"cn", u"a"}, {"sn", u""}, {"surname", u"b"}}), IsEmpty());
    EXPECT_THAT(required({{"cn", u"a"}, {"sn;lang-de", u""}}), IsEmpty());
    EXPECT_THAT(required({{"cn", u"a"}, {"unknown", u""}, {"objectClass", Values{u"other"}}}),
                ElementsAre("unknown"));
}

TEST(ANewEntry, TakesSeveralNamesOfOneAttributeForOne) {
    const NewEntry made = entry({{"cn", u"a"},
                                 {"CN", u"a"},
                                 {"surname", Values{u"b", u"c"}},
                                 {"2.5.4.4", u"c"},
                                 {"sn;lang-de", u"d"},
                                 {"OBJECTCLASS", u"top"}},
                                u"person", "commonName");
    EXPECT_EQ(made.relative_name, u"commonName=a");
    EXPECT_THAT(made.attributes,
                ElementsAre(Attribute{"cn", {"a"}}, Attribute{"surname", {"b", "c"}},
                            Attribute{"sn;lang-de", {"d"}}, Attribute{"OBJECTCLASS", {"top"}}));
}

TEST(ANewEntry, IsRefusedWhereItsNameIsNoneOrAnothers) {
    const std::vector<GivenAttribute> refused[] = {
        {},
        {{"sn", u"a"}},
        {{"cn", u""}},
        {{"cn", Values{}}},
        {{"cn", Values{u"a", u"b"}}},
        {{"cn", u"a,ou=b"}},
        {{"cn", u"a\\2Cb"}},
        {{"cn", u"#0401"}},
        {{"cn", u"a+sn=b"}},
    };
    for (const std::vector<GivenAttribute>& given : refused)
        EXPECT_EQ(failure_of([&] { entry(given); }).number, error_number(0x80072032));
}

TEST(ANewEntry, HasANameBelowItsContainerUnlessNobodyCouldLogInWithIt) {
    EXPECT_EQ(entry({{"cn", u"Smith, John"}}).name_below(u"ou=Users,o=Shop"),
              u"cn=Smith\\, John,ou=Users,o=Shop");
    EXPECT_EQ(entry({{"cn", u"a<b"}, {"userPassword", u""}}).name_below(u""), u"cn=a\\<b");
    EXPECT_EQ(entry({{"cn", u"a<b, team=blue"}}).name_below(u"o=Shop"),
              u"cn=a\\<b\\, team=blue,o=Shop")
        << "it is no login";
    const NewEntry blue = entry({{"cn", u"a<b, team=blue"}, {"userPassword", u""}});
    const Failure failure = failure_of([&] { blue.name_below(u"o=Shop"); });
    EXPECT_EQ(failure.number, error_number(0x80072032));
    EXPECT_EQ(failure.description,
              u"(34) The distinguished name is not valid. Nobody could log in as 'cn=a<b, "
              u"team=blue': with its container it is read as 'cn=a\\<b, team=blue,o=Shop'.");
}

TEST(ANewEntry, ThatIsNoLoginIsRefusedWhereItsNameMeansSomethingElseInAFilter) {
    for (const Text name :
         {u"a*", u"*", u"(a", u"a)", u"a)(b=c", u"a (b=c)", u"a)(|(b=*", u"a\t", u"a\n", u"\t"}) {
        const Failure failure = failure_of([&] { entry({{"cn", name}}); });
        EXPECT_EQ(failure.number, error_number(0x80072032)) << to_utf8(name);
        EXPECT_EQ(failure.description, u"(34) The distinguished name is not valid. The name '" +
                                           name + u"' would mean something else in a filter.");
        EXPECT_EQ(failure_of([&] {
                      entry({{"cn", name}, {"userPassword", u""}});
                  }).number,
                  0)
            << to_utf8(name);
    }
    for (const Text name : {u"a (b)", u"a\\x", u"O'Neill", u" a ", u"a b", u"a=b", u">=a", u"!",
                            u"&a", u"|a", u":=a"})
        EXPECT_EQ(failure_of([&] { entry({{"cn", name}}); }).number, 0) << to_utf8(name);
}

TEST(ANewEntry, ComesFromADictionary) {
    EXPECT_EQ(failure_of([] { given_attributes(Object()); }).number, 91);
}

TEST(ANewEntry, IsRefusedWhereItsNameHoldsHalfOfASurrogatePair) {
    const char16_t* description =
        u"(34) The distinguished name is not valid. A name cannot hold half of a surrogate pair.";
    EXPECT_EQ(failure_of([] { entry({{"cn", u"a\xD83D"}}); }).description, description);
    EXPECT_EQ(failure_of([] { entry({{"commonName", u"\xDE00"}}); }).description, description);
    EXPECT_EQ(failure_of([] {
                  entry({{"cn", u"a"}, {"sn", u"\xDE00"}});
              }).description,
              u"(21) The value does not have the attribute's syntax. A text cannot hold half of a "
              u"surrogate pair.");
    EXPECT_EQ(
        failure_of([] {
            entry({{"cn", u"a"}, {"userPassword", u"secret\xDE00"}});
        }).description,
        u"(21) The value does not have the attribute's syntax. A password cannot hold half of "
        u"a surrogate pair.");
}

TEST(ANewEntry, IsRefusedWhereItsNameIsTooLongToLogInWith) {
    const Text container = u"ou=Users,o=Shop";
    const auto description = [&](std::size_t size) {
        const Text value = Text(size - 4 - container.size(), u'x');
        return failure_of([&] { entry({{"cn", value}}).name_below(container); }).description;
    };
    EXPECT_EQ(description(longest_name), u"nothing was raised");
    EXPECT_EQ(description(longest_name + 1),
              u"(34) The distinguished name is not valid. With its container it has more than 8192 "
              u"characters.");
}

}  // namespace
}  // namespace orvo::directory
