#include "suite/configuration/ini_parser.h"

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>

namespace orvo {
namespace {

std::optional<std::string> value_in(const std::string& content, TextView section, TextView key) {
    const IniValues values = parse_ini(content, u"site.ini");
    const Text* found = values.find(section, key);
    return found ? std::optional(to_utf8(*found)) : std::nullopt;
}

struct Accepted {
    const char* name;
    std::string line;
    std::string value;
};

void PrintTo(const Accepted& row, std::ostream* out) { *out << row.name; }

const std::string long_value(5000, 'x');

const Accepted accepted_lines[] = {
    {"Plain", "key=value", "value"},
    {"BlanksAround", "  key \t=  some value \t", "some value"},
    {"ColonSeparates", "key: value", "value"},
    {"EmptyValue", "key=", ""},
    {"EqualsSignInValue", "key = cn=admin,o=Shop", "cn=admin,o=Shop"},
    {"ColonInValue", "key = host:389", "host:389"},
    {"EqualsSignAfterColon", "key: a=b", "a=b"},
    {"SemicolonInValue", "key = a;b", "a;b"},
    {"SemicolonBehindBlank", "key = pass ; word", "pass ; word"},
    {"SemicolonInFront", "key = ;word", ";word"},
    {"NumberSignInValue", "key = a #b", "a #b"},
    {"NumberSignInFront", "key = #b", "#b"},
    {"CommasInValue", "key = top, person,", "top, person,"},
    {"QuotesStay", "key = \" quoted \"", "\" quoted \""},
    {"ApostrophesStay", "key = 'x'", "'x'"},
    {"BracketsInValue", "key = [x]", "[x]"},
    {"BackslashStays", "key = C:\\n", "C:\\n"},
    {"TabInValue", "key = a\tb", "a\tb"},
    {"CarriageReturnAtTheEnd", "key = value\r", "value"},
    {"BeyondAscii", "key = Gr\xC3\xBC\xC3\x9F \xF0\x9F\x94\x91",
     "Gr\xC3\xBC\xC3\x9F \xF0\x9F\x94\x91"},
    {"LongerThanAnyFixedBuffer", "key = " + long_value, long_value},
};

class AcceptedLine : public testing::TestWithParam<Accepted> {};

TEST_P(AcceptedLine, GivesItsValueWhole) {
    const auto& row = GetParam();
    EXPECT_EQ(value_in("[s]\n" + row.line + "\n", u"s", u"key"), row.value);
    EXPECT_EQ(value_in("[s]\n" + row.line, u"s", u"key"), row.value) << "without a last line end";
}

INSTANTIATE_TEST_SUITE_P(Ini, AcceptedLine, testing::ValuesIn(accepted_lines),
                         [](const auto& row) { return std::string(row.param.name); });

struct Refused {
    const char* name;
    std::string content;
    TextView message;
};

void PrintTo(const Refused& row, std::ostream* out) { *out << row.name; }

const Refused refused_files[] = {
    {"LineWithoutSeparator", "[s]\na=1\nsecret\nb=2\n",
     u"site.ini:3: the line is no \"[section]\", no \"key = value\" and no comment"},
    {"ContinuationLine", "[s]\na=1,\n   2\n",
     u"site.ini:3: the line is no \"[section]\", no \"key = value\" and no comment"},
    {"UnterminatedSection", "[s]\na=1\n[t\nb=1\n",
     u"site.ini:3: the name of the section is not closed by \"]\""},
    {"SectionWithoutName", "[]\n", u"site.ini:1: the section has no name"},
    {"SectionOfBlanks", "[  ]\n", u"site.ini:1: the section has no name"},
    {"TextBehindSection", "[s] a=1\n", u"site.ini:1: there is text behind \"]\""},
    {"KeyBeforeAnySection", "; comment\na=1\n[s]\n",
     u"site.ini:2: the key stands outside any [section]"},
    {"KeyWithoutName", "[s]\n=secret\n", u"site.ini:2: the key has no name"},
    {"KeyGivenTwice", "[s]\na=1\nb=1\na=2\n",
     u"site.ini:4: \"a\" is given twice in [s], first on line 2"},
    {"KeyGivenTwiceInAnotherCase", "[Str]\nUser=1\n[x]\ny=1\n[STR]\nUSER=2\n",
     u"site.ini:6: \"USER\" is given twice in [STR], first on line 2"},
    {"NulInLine", std::string("[s]\na=1\0;\n", 10),
     u"site.ini:2: the line holds a control character"},
    {"CarriageReturnInLine", "[s]\na=1\rb=2\n", u"site.ini:2: the line holds a control character"},
    {"ControlCharacterInComment", "; \x1B[2J\n", u"site.ini:1: the line holds a control character"},
    {"Latin1", "[s]\na=Gr\xFC\xDF\n", u"site.ini:2: the line is not UTF-8"},
    {"OverlongUtf8", "[s]\na=\xC0\xAF\n", u"site.ini:2: the line is not UTF-8"},
    {"Utf16", std::string("\xFF\xFE[\0s\0]\0\n\0", 10), u"site.ini:1: the line is not UTF-8"},
};

class RefusedFile : public testing::TestWithParam<Refused> {};

TEST_P(RefusedFile, SaysWhereAndWhyWithoutAValue) {
    try {
        parse_ini(GetParam().content, u"site.ini");
        FAIL() << "was accepted";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, error_number(0x80040201));
        EXPECT_EQ(failure.source, u"Quendra.Configuration");
        EXPECT_EQ(to_utf8(failure.description), to_utf8(GetParam().message));
    }
}

INSTANTIATE_TEST_SUITE_P(Ini, RefusedFile, testing::ValuesIn(refused_files),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Ini, AnEmptyFileHasNoValues) {
    EXPECT_EQ(parse_ini("", u"site.ini"), IniValues{});
    EXPECT_TRUE(parse_ini("\n\r\n; a\n# b\n[s]\n", u"site.ini").keys().empty());
}

TEST(Ini, KeysAndSectionsAreToldAsTheyAreSpelledAndWhere) {
    const IniValues values = parse_ini("; c\n[One]\nKey = a\n[two]\n\nb:\n[ONE]\n", u"site.ini");
    EXPECT_EQ(values.keys(),
              (std::vector<IniKey>{{u"One", u"Key", u"a", 3}, {u"two", u"b", u"", 6}}));
    EXPECT_EQ(values.sections(), (std::vector<IniSection>{{u"One", 2}, {u"two", 4}, {u"ONE", 7}}));
}

TEST(Ini, AByteOrderMarkIsNoPartOfTheFirstName) {
    EXPECT_EQ(value_in("\xEF\xBB\xBF[s]\nkey=1\n", u"s", u"key"), "1");
}

TEST(Ini, NamesAreFoundWithoutRegardToCase) {
    EXPECT_EQ(value_in("[MemberShip]\nLdapServer=h\n", u"MEMBERSHIP", u"LDAPSERVER"), "h");
    EXPECT_EQ(value_in("[\xC3\x84]\n\xC3\xB6=h\n", u"\u00E4", u"\u00D6"), "h");
}

TEST(Ini, TheNameOfASectionIsTakenWithoutTheBlanksAroundIt) {
    EXPECT_EQ(value_in("[ s ] ; comment\nkey=1\n", u"s", u"key"), "1");
}

TEST(Ini, ALongNameOfASectionIsKeptWhole) {
    const std::string name(500, 's');
    EXPECT_EQ(value_in("[" + name + "]\nkey=1\n", Text(500, u's'), u"key"), "1");
}

TEST(Ini, ASectionMayBeOpenedAgain) {
    const std::string content = "[s]\na=1\n[t]\na=2\n[S]\nb=3\n";
    EXPECT_EQ(value_in(content, u"s", u"a"), "1");
    EXPECT_EQ(value_in(content, u"t", u"a"), "2");
    EXPECT_EQ(value_in(content, u"s", u"b"), "3");
}

TEST(Ini, AKeyOfAnotherSectionIsNotFound) {
    EXPECT_EQ(value_in("[s]\na=1\n[t]\nb=1\n", u"t", u"a"), std::nullopt);
}

TEST(Ini, CommentLinesMayBeIndented) {
    EXPECT_EQ(value_in("[s]\n  ; key=0\n\t# key=0\nkey=1\n", u"s", u"key"), "1");
}

}  // namespace
}  // namespace orvo
