#include <algorithm>
#include <sstream>

#include "platform/values/text_order.h"
#include "suite/directory/names/written_name.h"
#include "tests/suite/directory/provider/provider_test.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory {
namespace {

using testing::UnorderedElementsAreArray;

struct User {
    Text name;
    Text sn = u"Smith";
    Text mail = {};
    std::vector<Text> more_names = {};
};

std::string base64(const std::string& octets) {
    constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string result;
    unsigned bits = 0;
    int count = 0;
    for (const char c : octets) {
        bits = bits << 8 | static_cast<unsigned char>(c);
        for (count += 8; count >= 6; count -= 6) result += digits[bits >> (count - 6) & 63];
    }
    if (count > 0) result += digits[bits << (6 - count) & 63];
    while (result.size() % 4 != 0) result += '=';
    return result;
}

void write(std::ostream& out, const char* attribute, const Text& value) {
    out << attribute << ":: " << base64(to_utf8(value)) << "\n";
}

std::vector<User> tricky_users() {
    std::vector<User> users;
    for (const char16_t* name : {u"Smith",
                                 u"Smith John",
                                 u"smith john b",
                                 u"Smith!",
                                 u"Smith!!",
                                 u"Smith! John",
                                 u"Smith !",
                                 u"smith-x",
                                 u"Smith,John",
                                 u"Smith+",
                                 u"Smith\"",
                                 u"Smith#",
                                 u"Smith\t1",
                                 u"Smith\u0301",
                                 u"Smithe\u0301",
                                 u"Smith\u00C4",
                                 u"\u00C4rne",
                                 u"\u00E4rnb",
                                 u"\uFB01ncha",
                                 u"Finch",
                                 u"\uFF21lan",
                                 u"\u03B1\u03C2",
                                 u"\u03B1\u03C3",
                                 u"\u0416\u0430\u043D",
                                 u"\u65E5\u672C",
                                 u"\xD83D\xDE00",
                                 u"a\u200Bb",
                                 u"ab",
                                 u"a\u00ADb",
                                 u"!",
                                 u"!!",
                                 u"!a",
                                 u"#1",
                                 u"(x) y",
                                 u"*",
                                 u"~",
                                 u"'",
                                 u"O'Neill",
                                 u"0",
                                 u"00",
                                 u"9",
                                 u"Emil",
                                 u"Emil!",
                                 u"\u00C9mil",
                                 u"\u00C9mil!",
                                 u"Emil\u00E9",
                                 u"emile",
                                 u"\u00C9mile!",
                                 u"Emil!e"})
        users.push_back({name});
    // Other names of theirs come before and after their place.
    users.push_back({u"Nora", u"Lee", {}, {u"Aaron", u"zz top"}});
    users.push_back({u"nora b", u"Lee", {}, {u"\u00C4nne"}});
    return users;
}

// More of the ordinary kind, 3,000 in all.
std::vector<User> many_users() {
    std::vector<User> users = tricky_users();
    const Text letters = u"abcdefghijklmnopqrstuvwxyz";
    for (int number = 0; users.size() < 3000; ++number) {
        Text name(1, letters[(number * 7) % 26]);
        name += letters[(number / 26 * 5) % 26];
        name += (number % 3 == 0 ? u" " : number % 3 == 1 ? u"." : u"") + decimal(number);
        const Text mail = number % 5 == 0 ? name + u"@shop.example" : u"";
        if (number % 11 == 0) name += u"\u00F6";
        users.push_back({name, number % 2 == 0 ? u"Smith" : u"Lee", mail});
    }
    return users;
}

std::string ldif_of(const std::vector<User>& users) {
    std::ostringstream out;
    for (const User& user : users) {
        write(out, "dn", entry_name(u"cn=" + escaped_value(user.name), u"ou=Users,o=Shop"));
        out << "objectClass: orvoPerson\nobjectClass: top\nOrvoUserType: 1\n"
               "ProfileCN: Paging\n";
        write(out, "cn", user.name);
        for (const Text& name : user.more_names) write(out, "cn", name);
        write(out, "sn", user.sn);
        if (!user.mail.empty()) write(out, "mail", user.mail);
        out << "\n";
    }
    return out.str();
}

class PagingTest : public ProviderTest {
protected:
    PagingTest()
        : ProviderTest(Shared{{.ldif = {folder_.write("users.ldif", ldif_of(many_users()))}}}) {}

    Rows rows(const Text& criteria, std::int32_t size) {
        const Search search = new_search();
        connect(search, login_);
        return execute(search, u"(& (objectClass=orvoPerson)(OrvoUserType=*)" + criteria + u")",
                       columns_, size);
    }

    static std::vector<Text> names_of(const Rows& rows) {
        std::vector<Text> names;
        for (; !call<&RecordSet::IsEof>(rows); call<&RecordSet::MoveNext>(rows))
            names.push_back(call<&RecordSet::Collect>(rows, Variant(u"CN")).to<Text>());
        return names;
    }

    // The names of one page, as the component asks for it.
    std::vector<Text> page(const Text& criteria, std::int32_t size) {
        return names_of(rows(criteria, size));
    }

    // All pages, one after the other. What would be read otherwise in a filter is escaped.
    std::vector<Text> walk(const Text& criteria, std::int32_t size) {
        std::vector<Text> names;
        Text next;
        for (int count = 0; count <= 4000; ++count) {
            const std::vector<Text> found =
                page(next.empty() ? criteria : criteria + u"(cn>=" + next + u")", size);
            EXPECT_LE(found.size(), static_cast<std::size_t>(size));
            names.insert(names.end(), found.begin(), found.end());
            if (found.size() != static_cast<std::size_t>(size)) return names;
            next = found.back() + u"!";
            next = replaced(replaced(replaced(next, u"\\", u"\\5c"), u"(", u"\\28"), u")", u"\\29");
        }
        ADD_FAILURE() << "the pages have no end";
        return names;
    }

    template <class Condition>
    std::vector<Text> expected(Condition condition) {
        std::vector<Text> names;
        for (const User& user : many_users())
            if (condition(user)) names.push_back(user.name);
        return names;
    }

    Login login_ = service();
    Variant columns_ = Values{u"CN", u"BusinessPartnerID", u"mail", u"givenName", u"sn"};

private:
    static inline TempFolder folder_;
};
FOR_EVERY_DIRECTORY(PagingTest);

const auto everybody = [](const User&) { return true; };

TEST_P(PagingTest, VisitsEveryUserExactlyOnceWhateverTheSizeOfAPage) {
    const std::vector<Text> names = expected(everybody);
    ASSERT_EQ(names.size(), 3000u);
    std::vector<Text> in_order;
    for (const std::int32_t size : {1000, 101, 2999, 3000, 3001}) {
        const std::vector<Text> walked = walk(u"(ProfileCN=Paging)", size);
        EXPECT_THAT(walked, UnorderedElementsAreArray(names)) << size;
        if (in_order.empty()) in_order = walked;
        EXPECT_EQ(walked, in_order) << size;
    }
}

TEST_P(PagingTest, VisitsEveryUserExactlyOnceInTheSmallestPages) {
    std::vector<Text> tricky;
    for (const User& user : tricky_users()) tricky.push_back(user.name);
    const Text criteria =
        u"(ProfileCN=Paging)(!(|(cn=*0*)(cn=*1*)(cn=*2*)(cn=*3*)(cn=*4*)(cn=*5*)"
        u"(cn=*6*)(cn=*7*)(cn=*8*)(cn=*9*)))";
    std::erase_if(tricky,
                  [](const Text& name) { return name.find_first_of(u"0123456789") != Text::npos; });
    for (const std::int32_t size : {1, 2, 3, 7})
        EXPECT_THAT(walk(criteria, size), UnorderedElementsAreArray(tricky)) << size;
}

TEST_P(PagingTest, ListsUsersInTheOrderOfSortedRecordSets) {
    const Rows everyone = rows(u"(ProfileCN=Paging)", 3000);
    const std::vector<Text> listed = names_of(everyone);
    ASSERT_EQ(listed.size(), 3000u);
    call<&RecordSet::SetSort>(everyone, u"CN DESC");
    EXPECT_NE(names_of(everyone), listed);
    call<&RecordSet::SetSort>(everyone, u"CN");
    EXPECT_EQ(names_of(everyone), listed);
}

TEST_P(PagingTest, WorksForAnOrdinaryUser) {
    login_ = user("jsmith");
    EXPECT_THAT(walk(u"(ProfileCN=Paging)", 500), UnorderedElementsAreArray(expected(everybody)));
}

TEST_P(PagingTest, WorksTogetherWithOtherCriteria) {
    EXPECT_THAT(walk(u"(ProfileCN=Paging)(sn=lee)", 100),
                UnorderedElementsAreArray(expected([](auto& user) { return user.sn == u"Lee"; })));
    EXPECT_THAT(walk(u"(ProfileCN=Paging)(! mail=*)", 300),
                UnorderedElementsAreArray(expected([](auto& user) { return user.mail.empty(); })));
    EXPECT_THAT(walk(u"(ProfileCN=Paging)(|(&(sn=Lee)(mail=*))(cn=Smith*))", 70),
                UnorderedElementsAreArray(expected([](auto& user) {
                    return (user.sn == u"Lee" && !user.mail.empty()) ||
                           lower(user.name).starts_with(u"smith");
                })));
}

TEST_P(PagingTest, DoesNotDependOnTheColumns) {
    columns_ = Values{u"sn", u"commonName", u"CN"};
    EXPECT_THAT(walk(u"(ProfileCN=Paging)", 1000), UnorderedElementsAreArray(expected(everybody)));
}

TEST_P(PagingTest, ListsAUserOfSeveralCommonNamesOnceUnderTheOneInItsName) {
    EXPECT_THAT(page(u"(ProfileCN=Paging)(cn>=nor!)(cn<=nora~)", 10),
                ElementsAre(u"Nora", u"nora b"));
    EXPECT_THAT(page(u"(ProfileCN=Paging)(cn=aaron)", 10), ElementsAre(u"Nora"));
}

TEST_P(PagingTest, ComparesAlsoWhereTheComparisonIsNotTheWholeCondition) {
    const auto before_b = [](const User& user) { return letters_of(user.name) < u"b"; };
    const auto names = [&](auto condition) {
        return UnorderedElementsAreArray(expected(condition));
    };
    EXPECT_THAT(page(u"(ProfileCN=Paging)(!(cn>=b))", 3000), names(before_b));
    EXPECT_THAT(page(u"(ProfileCN=Paging)(|(!(cn>=b))(sn=Lee))", 3000),
                names([&](auto& user) { return before_b(user) || user.sn == u"Lee"; }));
    EXPECT_THAT(page(u"(ProfileCN=Paging)(!(|(cn>=b)(sn=Lee)))", 3000),
                names([&](auto& user) { return before_b(user) && user.sn != u"Lee"; }));
    EXPECT_THAT(page(u"(ProfileCN=Paging)(mail>=a!)(mail<=b)", 3000), names([](auto& user) {
                    return lower(user.mail) > u"a" && lower(user.mail) <= u"b";
                }));
    EXPECT_THAT(page(u"(ProfileCN>=paging!)(ProfileCN<=paginz)", 3000), IsEmpty());
}

}  // namespace
}  // namespace orvo::directory
