// Plain names of users through creation, search, password check, bind as the user and deletion.

#include "suite/directory/filters/filter.h"
#include "suite/directory/names/written_name.h"
#include "tests/suite/directory/provider/provider_test.h"

namespace orvo::directory {
namespace {

// As the component puts it together.
Text path(const Text& name) { return u"cn=" + name + u"," + users; }

class NamesTest : public ProviderTest {
protected:
    void create(const Text& name) {
        directory::create(
            bound(u""),
            {{u"cn", name}, {u"userPassword", u"secret"}, {u"objectClass", u"orvoPerson"}}, u"cn",
            u"orvoPerson");
    }
    void remove(const Text& path) { directory::remove(bound(u""), path); }
    std::int32_t found(const Text& name) {
        const Filter filter{
            .kind = Filter::Kind::equality, .attribute = "cn", .value = to_utf8(name)};
        return ProviderTest::found(from_utf8(filter.text()));
    }
    static Variant cn_of(const Entry& entry) { return values(entry, u"cn"); }
};
FOR_EVERY_DIRECTORY(NamesTest);

TEST_P(NamesTest, WorkEverywhereWhateverIsInThem) {
    const Text names[] = {u"Miller, John",
                          u"a+b",
                          u"a=b",
                          u"a, b, c",
                          u"a, b+c=d\"",
                          u",",
                          u", ,",
                          u"+",
                          u"=",
                          u"a+",
                          u"a,",
                          u"\"quoted\"",
                          u"He said \"x\"",
                          u"'single'",
                          u"O'Neill",
                          u"#hash",
                          u"# 41",
                          u"#4",
                          u"a#b",
                          u"star*",
                          u"*",
                          u"(paren",
                          u"paren)",
                          u"(both)",
                          u"back\\s",
                          u"<tag>",
                          u"R&D <core>",
                          u"R&D <core>, team blue",
                          u";semi;",
                          u"a;b\\",
                          u"a/b",
                          u"/",
                          u"tab\there",
                          u"new\nline",
                          u"!",
                          u"a!",
                          u"%2C",
                          u"a  b",
                          u" leading",
                          u"trailing ",
                          u"\u00FCmlaut \u00DF",
                          u"e\u0301, decomposed",
                          u"\uFF21\uFF0C full width",
                          u"\u65E5\u672C",
                          u"\xD83D\xDE00",
                          u"\u200Bwidth",
                          Text(u"nul\0mid", 7),
                          Text(u"nul\0", 4),
                          Text(200, u'x'),
                          Text(60, u','),
                          Text(50, u'\u65E5')};
    const auto before = shop_.everything();
    for (const Text& name : names) {
        SCOPED_TRACE(to_utf8(name));
        create(name);
        EXPECT_EQ(shop_.everything().size(), before.size() + 1);
        EXPECT_EQ(found(name), 1);
        EXPECT_EQ(checked(path(name), u"secret"), 0);
        EXPECT_EQ(checked(path(name), u"wrong"), -1);
        const Entry entry = bound(u"cn=" + name), own = new_entry();
        EXPECT_EQ(cn_of(entry), Variant(Values{name}));
        bind(own, path(name), Secret(u"secret"), u"cn=" + name);
        EXPECT_EQ(cn_of(own), Variant(Values{name}));
        remove(path(name));
        EXPECT_EQ(shop_.everything(), before);
    }
}

TEST_P(NamesTest, ThatNobodyCouldLogInWithAreRefusedAtCreation) {
    const std::pair<Text, TextView> names[] = {
        {u"R&D <core>, team=blue", u"cn=R&D \\<core\\>, team=blue,ou=Users,o=Shop"},
        {u"He said \"x\", a=b", u"cn=He said \\\"x\\\", a=b,ou=Users,o=Shop"},
        {u"#x, a=b", u"cn=\\#x, a=b,ou=Users,o=Shop"},
        {u"a, b, c=d", u"cn=a\\, b, c=d,ou=Users,o=Shop"},
        {u"a\\", u"cn=a\\,ou=Users,o=Shop"},
        {u"\\", u"cn=\\,ou=Users,o=Shop"}};
    const auto before = shop_.everything();
    for (const auto& [name, read] : names) {
        const Failure failure = refusal_of([&] { create(name); });
        EXPECT_EQ(failure.number, error_number(0x80072032)) << to_utf8(name);
        EXPECT_EQ(to_utf8(failure.description),
                  to_utf8(u"(34) The distinguished name is not valid. Nobody could log in as 'cn=" +
                          name + u"': with its container it is read as '" + Text(read) + u"'."));
    }
    EXPECT_EQ(shop_.everything(), before);
}

TEST_P(NamesTest, OfAnotherEntryWhereTheyAreNotEscapedAreRefusedAtCreation) {
    const auto before = shop_.everything();
    for (const char16_t* name : {u"a,cn=jsmith", u"a+sn=b", u"Smith\\, John", u"Smith\\2C John",
                                 u"#6A736D697468", u"jsmith,ou=Users,o=Shop", u" "}) {
        const Failure failure = refusal_of([&] { create(name); });
        EXPECT_EQ(failure.number, error_number(0x80072032)) << to_utf8(name);
        EXPECT_EQ(failure.description, u"(34) The distinguished name is not valid. The name '" +
                                           Text(name) +
                                           u"' could be taken for that of another entry.");
    }
    EXPECT_EQ(shop_.everything(), before);
}

TEST_P(NamesTest, ThatAreTooLongAreRefusedAtCreation) {
    const auto before = shop_.everything();
    const std::string long_name = shop_.own(differences::long_name);
    for (const std::size_t length : {300, 1'000, 8'000}) {
        const Text name(length, u'x');
        if (long_name.empty()) {
            create(name);
            EXPECT_EQ(checked(path(name), u"secret"), 0);
            remove(path(name));
        } else {
            EXPECT_EQ(to_utf8(refusal_of([&] { create(name); }).description), long_name);
        }
    }
    EXPECT_EQ(refusal_of([&] { create(Text(100'000, u'x')); }).description,
              u"(34) The distinguished name is not valid. With its container it has more than "
              u"8192 characters.");
    EXPECT_EQ(shop_.everything(), before);
}

// Sent to the server, such a half would be U+FFFD, and the name that of another user.
TEST_P(NamesTest, WithHalfOfASurrogatePairAreNobodys) {
    create(u"\xFFFD");
    const auto before = shop_.everything();
    const TextView description =
        u"(34) The distinguished name is not valid. A name cannot hold half of a surrogate pair.";
    for (const Text name : {u"\xD83D", u"\xDE00"}) {
        EXPECT_EQ(refusal_of([&] { create(name); }).description, description);
        EXPECT_EQ(refusal_of([&] { remove(path(name)); }).description, description);
        EXPECT_EQ(checked(path(name), u"secret"), -1);
        EXPECT_EQ(refusal_of([&] { bound(u"cn=" + name); }).description, description);
        const Failure refused =
            refusal_of([&] { bind(new_entry(), path(name), Secret(u"secret"), u"cn=\xFFFD"); });
        EXPECT_EQ(refused.number, error_number(0x8007052E));
        EXPECT_EQ(refused.description,
                  u"(49) The user name or the password is wrong. The user's name holds half of a "
                  u"surrogate pair.");
    }
    EXPECT_EQ(shop_.everything(), before);
    EXPECT_EQ(checked(path(u"\xFFFD"), u"secret"), 0);
}

TEST_P(NamesTest, FoldTheirBlanksAsTheServerDoes) {
    create(u" new  name ");
    EXPECT_THAT(shop_.values(shop_.user_dn("new name"), "cn"), ElementsAre(" new  name "));
    EXPECT_EQ(refusal_of([&] { create(u"new name"); }).number, error_number(0x8004044F));
    EXPECT_EQ(checked(path(u"New Name"), u"secret"), 0);
    remove(path(u"new name"));
    EXPECT_THAT(shop_.find("ou=Users,o=Shop", "(cn=new name)"), IsEmpty());
}

// Such entries come from other programs.
TEST_P(NamesTest, ThatCanBeReadWithTheirContainerAloneHaveTheirPasswordChecked) {
    for (const char16_t* name : {u"R&D <core>, team=blue", u"He said \"x\", a=b", u"a\\", u"\\"}) {
        const std::string entry = to_utf8(u"cn=" + escaped_value(name) + u"," + users);
        ASSERT_EQ(shop_.add(entry, {{"objectClass", {"orvoPerson"}},
                                    {"cn", {to_utf8(name)}},
                                    {"userPassword", {"secret"}}}),
                  0);
        EXPECT_EQ(checked(path(name), u"secret"), 0) << to_utf8(name);
        EXPECT_EQ(checked(path(name), u"wrong"), -1) << to_utf8(name);
        remove(path(name));
    }
    EXPECT_EQ(checked(path(u"a\\"), u"secret"), -1);
}

}  // namespace
}  // namespace orvo::directory
