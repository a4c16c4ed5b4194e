// Names and arguments as nobody should give them. Each works or is refused with a clear error, and
// no other entry is touched.

#include "tests/component/containers/containers_live_test.h"

namespace orvo {
namespace {

// A name for reading in messages.
std::string shown(const Text& name) {
    return name.size() > 40 ? to_utf8(name.substr(0, 40)) + "..." : to_utf8(name);
}

const Text names_that_work[] = {u"Miller, John",
                                u"a, b, c",
                                u",",
                                u"a+b",
                                u"+",
                                u"\"quoted\"",
                                u"\"",
                                u"O'Neill",
                                u"'",
                                u"#hash",
                                u"# 41",
                                u"star*",
                                u"*",
                                u"(paren",
                                u"paren)",
                                u"(both)",
                                u"back\\slashes",
                                u"a=b",
                                u"<tag>",
                                u";semi;",
                                u"a/b",
                                u"!",
                                u"100%",
                                u"tab\there",
                                u"a\nb",
                                u"NOT",
                                u"M\u00FCller \u00DF",
                                u"\u0416\u0430\u043D\u043D\u0430",
                                u"\u65E5\u672C",
                                u"\xD83D\xDE00",
                                u" leading",
                                u"trailing ",
                                Text(u"nul\0mid", 7),
                                Text(u"nul\0", 4),
                                Text(200, u'x'),
                                Text(80, u'\u65E5')};

// A filter item that finds just this name; what has a meaning there is written as \xx.
Text item_for(const Text& name) {
    Text item = u"cn=";
    for (const char unit : to_utf8(name)) {
        constexpr char digits[] = "0123456789abcdef";
        const auto octet = static_cast<unsigned char>(unit);
        item += u'\\';
        item += static_cast<char16_t>(digits[octet >> 4]);
        item += static_cast<char16_t>(digits[octet & 15]);
    }
    return item;
}

class NamesLive : public ContainersLive {};

TEST_FRESH_FOR_EACH(NamesLive, GoThroughCreationListGuidBindAndDeletion) {
    const Object container = members();
    const auto before = shop_.everything();
    for (const Text& name : names_that_work) {
        SCOPED_TRACE(shown(name));
        const Object made = create(container, name);
        EXPECT_EQ(late::get(made, u"CN"), Variant(name));
        EXPECT_EQ(shop_.everything().size(), before.size() + 1);
        EXPECT_EQ(column(found(container, Values{item_for(name)})).size(), 1u);
        const Variant guid = late::get(made, u"GUID");
        const Object by_guid = late::call(container, u"GetUserFromGUID", {guid}).to<Object>();
        EXPECT_EQ(late::get(by_guid, u"CN"), Variant(name));
        late::put(by_guid, u"Position", u"Clerk");
        EXPECT_EQ(late::get(user(name), u"Position"), Variant(u"Clerk"));
        late::call(container, u"DeleteUser", {name});
        EXPECT_EQ(shop_.everything(), before);
    }
}

TEST_FRESH_FOR_EACH(NamesLive, LogInWithTheNameOfTheirEntry) {
    const Object container = members();
    const std::pair<const char16_t*, const char16_t*> users[] = {
        {u"Miller, John", u"cn=Miller\\, John"},
        {u"a+b", u"cn=a\\+b"},
        {u"#hash", u"cn=\\#hash"},
        {u"star*", u"cn=star*"},
        {u"(both)", u"cn=(both)"},
        {u"back\\slashes", u"cn=back\\\\slashes"},
        {u"\"quoted\"", u"cn=\\\"quoted\\\""},
        {u"O'Neill", u"cn=O'Neill"},
        {u" leading", u"cn=\\ leading"},
        {u"\u65E5\u672C", u"cn=\u65E5\u672C"}};
    const Object validator = create_object(u"OrvoMembership.Validator");
    for (const auto& [name, escaped] : users) {
        SCOPED_TRACE(to_utf8(Text(name)));
        create(container, name, u"own-sample");
        const Object itself = create_object(u"OrvoMembership.User");
        late::call(itself, u"BindAs", {name, Text(escaped) + u",ou=Users,o=Shop", u"own-sample"});
        EXPECT_EQ(late::get(itself, u"CN"), Variant(name));
        EXPECT_EQ(late::call(validator, u"ValidatePassword", {escaped, u"own-sample"}), Variant(0));
        EXPECT_EQ(late::call(validator, u"ValidatePassword", {escaped, u"wrong"}), Variant(-1));
    }
}

TEST_FRESH_FOR_EACH(NamesLive, LogInAndChangeTheirPasswordAsTheyAreTyped) {
    load_settings();
    const Object validator = create_object(u"OrvoMembership.Validator");
    const auto check = [&](const Text& name, const char16_t* password) {
        return late::call(validator, u"ValidatePassword", {name, password}).to<std::int32_t>();
    };
    for (const char16_t* name :
         {u"Smith, John", u"Research+Development", u"#1 Buyer", u"Temp (night) *", u"back\\slash",
          u"Ann \"Andy\" <Smith>; =", u"O'Brien", u"J\u00F6rg Wei\u00DF"}) {
        SCOPED_TRACE(to_utf8(Text(name)));
        const Text account = u"cn=" + Text(name) + u",ou=Users,o=Shop";
        // "=" in a user id says that it names its attribute itself.
        const Text id = Text(name).find(u'=') == Text::npos ? Text(name) : u"cn=" + Text(name);
        EXPECT_EQ(check(id, u"shop-sample"), 0);
        EXPECT_EQ(check(id, u"wrong"), -1);
        const Object itself = create_object(u"OrvoMembership.User");
        late::call(itself, u"BindAs", {name, account, u"shop-sample"});
        EXPECT_EQ(late::get(itself, u"CN"), Variant(name));
        if (id != name) continue;
        late::call(itself, u"ChangePassword", {u"shop-sample", u"own-sample"});
        EXPECT_EQ(check(id, u"own-sample"), 0);
        EXPECT_EQ(check(id, u"shop-sample"), -1);
    }
}

TEST_FRESH_FOR_EACH(NamesLive, AreRefusedWhereTheyReadAsThoseOfAnotherEntry) {
    const Object container = members();
    const auto before = shop_.everything();
    for (const char16_t* name : {u"a,cn=jsmith", u"a+sn=b", u"Smith\\, John", u"Smith\\2C John",
                                 u"#6A736D697468", u"jsmith,ou=Users,o=Shop"}) {
        const Failure failure = raised_by([&] { create(container, name); });
        expect_failure(
            failure, error_number(0x80072032), source(),
            block("80072032", "Members.CreateUser",
                  "(34) The distinguished name is not valid. The name '" + to_utf8(Text(name)) +
                      "' could be taken for that of another entry."));
    }
    EXPECT_EQ(shop_.everything(), before);
}

TEST_FRESH_FOR_EACH(NamesLive, AreRefusedWhereNobodyCouldLogInWithThem) {
    const Object container = members();
    const auto before = shop_.everything();
    const std::pair<const char16_t*, const char*> names[] = {
        {u"back\\", "cn=back\\,ou=Users,o=Shop"},
        {u"R&D <core>, team=blue", "cn=R&D \\<core\\>, team=blue,ou=Users,o=Shop"}};
    for (const auto& [name, read] : names) {
        const Failure failure = raised_by([&] { create(container, name); });
        expect_failure(
            failure, error_number(0x80072032), source(),
            block("80072032", "Members.CreateUser",
                  "(34) The distinguished name is not valid. Nobody could log in as 'cn=" +
                      to_utf8(Text(name)) + "': with its container it is read as '" + read + "'."));
    }
    EXPECT_EQ(shop_.everything(), before);
}

TEST_FRESH_FOR_EACH(NamesLive, AreRefusedWhereTheyAreTooLong) {
    const Object container = members();
    const auto before = shop_.everything();
    for (const std::size_t length : {300u, 1'000u, 100'000u}) {
        const Text name(length, u'x');
        if (length < 8192 && shop_.own(differences::long_name).empty()) {
            create(container, name);
            late::call(container, u"DeleteUser", {name});
            continue;
        }
        const std::string description =
            to_utf8(raised_by([&] { create(container, name); }).description);
        EXPECT_THAT(description,
                    testing::AnyOf(HasSubstr("The name may be too long for it."),
                                   HasSubstr("invalid DN"), HasSubstr("more than 8192 characters")))
            << length;
        const Failure missing = raised_by([&] { late::call(container, u"DeleteUser", {name}); });
        EXPECT_THAT(missing.number,
                    testing::AnyOf(error_number(0x80072030), error_number(0x80072032)))
            << missing.what();
    }
    EXPECT_EQ(shop_.everything(), before);
}

TEST_FRESH_FOR_EACH(NamesLive, ThatAreEmptyAreRefusedEverywhere) {
    const Object container = members();
    const auto before = shop_.everything();
    EXPECT_EQ(raised_by([&] { create(container, u""); }).number, error_number(0x80072032));
    EXPECT_EQ(raised_by([&] { late::call(container, u"DeleteUser", {u""}); }).number,
              error_number(0x80072032));
    EXPECT_EQ(raised_by([&] { late::call(profiles(), u"CreateProfile", {u""}); }).number,
              error_number(0x80072032));
    EXPECT_EQ(raised_by([&] { late::call(profiles(), u"DeleteProfile", {u""}); }).number,
              error_number(0x80072032));
    EXPECT_EQ(shop_.everything(), before);
}

TEST_FRESH_FOR_EACH(NamesLive, DeleteTheEntryTheyNameAndNoOther) {
    const Object container = members();
    const auto expected = shop_.everything();
    for (const char16_t* name :
         {u"*", u"j*", u"jsmith*", u"(cn=*)", u"nobody,cn=jsmith", u"Smith", u"#1", u"\\"}) {
        EXPECT_THAT(raised_by([&] { late::call(container, u"DeleteUser", {name}); }).number,
                    testing::AnyOf(error_number(0x80072030), error_number(0x80072032)))
            << to_utf8(Text(name));
    }
    EXPECT_EQ(
        raised_by([&] { late::call(container, u"DeleteUser", {Text(u"jsmith\0", 7)}); }).number,
        error_number(0x80072030));
    EXPECT_EQ(shop_.everything(), expected);
    for (const char16_t* name :
         {u"Smith, John", u"Research+Development", u"#1 Buyer", u"Temp (night) *", u"back\\slash",
          u"Ann \"Andy\" <Smith>; =", u"O'Brien"}) {
        late::call(container, u"DeleteUser", {name});
    }
    const auto left = shop_.everything();
    EXPECT_EQ(left.size(), expected.size() - 7);
    for (const auto& [name, change] : left) EXPECT_EQ(expected.at(name), change) << name;
}

class ArgumentsLive : public ContainersLive {};

TEST_FRESH_FOR_EACH(ArgumentsLive, AnArrayWhereATextIsExpectedIsATypeMismatch) {
    const Object users = members(), all_profiles = profiles();
    const auto before = shop_.everything();
    const Variant array = list({u"a", u"b"});
    const std::pair<Object, std::pair<TextView, std::vector<Variant>>> calls[] = {
        {users, {u"CreateUser", {array, u"x"}}},
        {users, {u"CreateUser", {u"x", array}}},
        {users, {u"DeleteUser", {array}}},
        {users, {u"GetUserFromGUID", {array}}},
        {users, {u"GetAttribValue", {array}}},
        {users, {u"BindAs", {array, u"x"}}},
        {users, {u"GetOrvoUsers", {list({u"cn=a"}), array}}},
        {users, {u"GetOrvoUsers", {list({u"cn=a"}), u"", array}}},
        {users, {u"GetOrvoUsers", {Values{array}}}},
        {users, {u"GetOrvoMembersHavingRole", {array}}},
        {users, {u"CreateUserWithAttributes", {array, u"x", list({}), list({})}}},
        {all_profiles, {u"CreateProfile", {array}}},
        {all_profiles, {u"DeleteProfile", {array}}},
    };
    for (const auto& [object, call] : calls) {
        std::vector<Variant> arguments = call.second;
        EXPECT_EQ(raised_by([&] { late::call_by_reference(object, call.first, arguments); }).number,
                  13)
            << to_utf8(call.first);
    }
    EXPECT_EQ(shop_.everything(), before);
}

TEST_FRESH_FOR_EACH(ArgumentsLive, ATextWhereAnArrayIsExpectedIsATypeMismatch) {
    const Object users = members();
    EXPECT_EQ(raised_by([&] { found(users, u"cn=a"); }).number, 13);
    EXPECT_EQ(raised_by([&] { late::call(users, u"GetOrvoUsers"); }).number, 13) << "left out";
    EXPECT_EQ(raised_by([&] {
                  late::call(users, u"CreateUserWithAttributes", {u"tina", u"first", u"sn", u"x"});
              }).number,
              13);
    EXPECT_EQ(stored("tina", "sn").size(), 0u);
    EXPECT_THAT(stored("tina", "cn"), ElementsAre("tina")) << "what was done stays done";
}

TEST_FRESH_FOR_EACH(ArgumentsLive, ArraysMayBeginAnywhere) {
    Values from_7(7, 2), from_minus_2(-2, 2);
    from_7[7] = from_minus_2[-2] = u"sn=Smith";
    from_7[8] = from_minus_2[-1] = u"givenName=John";
    for (const Values& criteria : {from_7, from_minus_2})
        EXPECT_THAT(column(found(members(), criteria)), ElementsAre("jsmith", "Smith, John"));

    Values columns(3, 1);
    columns[3] = u"mail";
    const Object rows =
        late::call(members(), u"GetOrvoUsersEx", {list({u"cn=jsmith"}), columns}).to<Object>();
    EXPECT_EQ(late::get(rows, u"Collect", {u"mail"}), Variant(u"john.smith@shop.example"));

    Values names(-1, 3), values(-1, 3);
    names[-1] = values[-1] = u"passed over: attributes count from 0";
    names[0] = u"sn";
    values[0] = u"Miller";
    names[1] = u"OrvoRole";
    values[1] = [] {
        Values roles(4, 1);
        roles[4] = 24;
        return roles;
    }();
    const Object tina = late::call(members(), u"CreateUserWithAttributes",
                                   {u"tina", u"first-sample", names, values})
                            .to<Object>();
    EXPECT_EQ(property(tina, u"LastName"), "Miller");
    EXPECT_THAT(stored("tina", "OrvoRole"), ElementsAre("24"));
}

TEST_FRESH_FOR_EACH(ArgumentsLive, FortyThousandElementsAreMoreThanAnIndexCounts) {
    constexpr std::int32_t many = 40'000;
    const Object users = members();
    const auto before = shop_.everything();
    Values texts(0, many);
    for (std::int32_t i = 0; i < many; ++i) texts[i] = u"cn=a*";
    EXPECT_EQ(raised_by([&] { found(users, texts); }).number, 6);
    const Object wide = late::call(users, u"GetOrvoUsersEx", {list({u"cn=a"}), texts}).to<Object>();
    EXPECT_EQ(late::get(late::get(wide, u"Fields").to<Object>(), u"Count"), Variant(many))
        << "columns are not counted with an index, and may be the same";
    EXPECT_EQ(shop_.everything(), before);
    EXPECT_EQ(column(found(users, list({u"cn=jsmith"}))).size(), 1u) << "it goes on working";
}

TEST_FRESH_FOR_EACH(ArgumentsLive, FortyThousandValuesOfOneAttributeAreStored) {
    constexpr std::int32_t many = 40'000;
    Values roles(0, many);
    for (std::int32_t i = 0; i < many; ++i) roles[i] = i + 1;
    load_settings();
    late::call(create_object(u"OrvoMembership.Members"), u"CreateUserWithAttributes",
               {u"tina", u"first-sample", list({u"OrvoRole"}), Values{roles}});
    EXPECT_EQ(stored("tina", "OrvoRole").size(), 40'000u);
}

}  // namespace
}  // namespace orvo
