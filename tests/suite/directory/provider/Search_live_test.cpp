#include <algorithm>

#include "suite/directory/entries/entry_order.h"
#include "tests/suite/directory/provider/provider_test.h"
#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory {
namespace {

class SearchTest : public ProviderTest {
protected:
    explicit SearchTest(const DirectoryOptions& options) : ProviderTest(options) {}
    SearchTest() : ProviderTest(Shared()) {}

    const Search& connected(const Text& container = users) {
        connect(search_, service(), container);
        return search_;
    }
    std::vector<std::string> found(const Text& filter, std::int32_t maximum = 1000) {
        return first_column(execute(connected(), filter, Values{u"cn"}, maximum));
    }

    const Search search_ = new_search();
};
FOR_EVERY_DIRECTORY(SearchTest);

TEST_P(SearchTest, OrdersRowsByTheNamingAttribute) {
    EXPECT_THAT(found(u"(sn=Smith)"),
                ElementsAre("Ann \"Andy\" <Smith>; =", "jsmith", "Smith, John"));
    EXPECT_THAT(found(u"(&(BusinessPartnerID=1006)(!(mail=*)))"),
                ElementsAre("#1 Buyer", "Ann \"Andy\" <Smith>; =", "ashchukin", "back\\slash",
                            "O'Brien", "Research+Development", "Smith, John", "Temp (night) *"));
}

TEST_P(SearchTest, OrdersAndKeepsNamesBeyondAscii) {
    EXPECT_THAT(
        found(u"(&(BusinessPartnerID=1007)(!(mail=*)))"),
        ElementsAre("epapadopoulos", "J\xC3\xB6rg Wei\xC3\x9F",
                    "\xC5\x81ukasz \xC5\xBB\xC3\xB3\xC5\x82\xC4\x87", "skostis",
                    "\xCE\x95\xCE\xBB\xCE\xAD\xCE\xBD\xCE\xB7 "
                    "\xCE\x95\xCE\xBB\xCE\xBB\xCE\xAC\xCE\xB4\xCE\xB1",
                    "\xD0\x96\xD0\xB0\xD0\xBD\xD0\xBD\xD0\xB0 "
                    "\xD0\x96\xD1\x83\xD0\xBA\xD0\xBE\xD0\xB2\xD0\xB0",
                    "\xE5\xB1\xB1\xE7\x94\xB0 \xE5\xA4\xAA\xE9\x83\x8E", "\xF0\x9F\x98\x80 Emoji"));
}

TEST_P(SearchTest, ReturnsTheFirstInOrderOfMoreThanTheMaximum) {
    const auto everybody = found(u"(OrvoUserType=*)");
    ASSERT_THAT(everybody, SizeIs(197));
    for (const std::int32_t maximum : {1, 2, 50, 196, 197, 198}) {
        std::vector<std::string> expected = everybody;
        expected.resize(std::min<std::size_t>(expected.size(), maximum));
        EXPECT_EQ(found(u"(OrvoUserType=*)", maximum), expected) << maximum;
    }
}

TEST_P(SearchTest, TakesAMaximumOfZeroOrLessForNoLimit) {
    EXPECT_THAT(found(u"(OrvoUserType=*)", 0), SizeIs(197));
    EXPECT_THAT(found(u"(OrvoUserType=*)", -1), SizeIs(197));
}

TEST_P(SearchTest, NamesAndOrdersColumnsAsTheyWereAskedFor) {
    const Rows rows = execute(connected(), u"(cn=jsmith)", Values{u"MAIL", u"Surname", u"Cn"});
    const Ref<Fields> fields = call<&RecordSet::Fields>(rows);
    ASSERT_EQ(call<&Fields::Count>(fields), 3);
    std::vector<Text> names;
    for (std::int32_t index = 0; index < 3; ++index)
        names.push_back(call<&Field::Name>(call<&Fields::Item>(fields, Variant(index))));
    EXPECT_THAT(names, ElementsAre(u"MAIL", u"Surname", u"Cn"));
    EXPECT_THAT(all(rows), ElementsAre(Row{u"john.smith@shop.example", u"Smith", u"jsmith"}));
}

TEST_P(SearchTest, GivesNoValueOneTypedValueOrTheArrayOfSeveral) {
    const Values columns{u"cn", u"OrvoUserType", u"OrvoRole", u"mail", u"noSuchAttribute"};
    EXPECT_THAT(all(execute(connected(), u"(|(cn=jsmith)(cn=bare)(cn=twomails))", columns)),
                ElementsAre(Row{u"bare", Variant(), Variant(), Variant(), Variant()},
                            Row{u"jsmith", std::int32_t(1),
                                Values{std::int32_t(2), std::int32_t(3), std::int32_t(24)},
                                u"john.smith@shop.example", Variant()},
                            Row{u"twomails", std::int32_t(1), Variant(),
                                Values{u"first@shop.example", u"second@shop.example"}, Variant()}));
    EXPECT_THAT(all(execute(connected(), u"(cn=bigpartner)", u"BusinessPartnerID")),
                ElementsAre(Row{Currency{50000000000000}}));
    EXPECT_THAT(all(execute(connected(), u"(cn=jsmith)", u"creditcardexpirydate")),
                ElementsAre(Row{date_from_parts({2028, 12, 31, 0, 0, 0})}));
}

TEST_P(SearchTest, StandsOnTheFirstRow) {
    const Rows rows = execute(connected(), u"(sn=Smith)");
    EXPECT_EQ(call<&RecordSet::State>(rows), adStateOpen);
    EXPECT_EQ(call<&RecordSet::RecordCount>(rows), 3);
    EXPECT_EQ(call<&RecordSet::AbsolutePosition>(rows), 1);
    EXPECT_EQ(call<&RecordSet::Collect>(rows, Variant(u"cn")), Variant(u"Ann \"Andy\" <Smith>; ="));
}

TEST_P(SearchTest, OfNoEntriesIsAnOpenRecordSetWithoutRows) {
    const Rows rows = execute(connected(), u"(cn=nobody)", Values{u"cn", u"mail"});
    EXPECT_EQ(call<&RecordSet::State>(rows), adStateOpen);
    EXPECT_EQ(call<&RecordSet::RecordCount>(rows), 0);
    EXPECT_TRUE(call<&RecordSet::IsBof>(rows));
    EXPECT_TRUE(call<&RecordSet::IsEof>(rows));
    EXPECT_EQ(call<&Fields::Count>(call<&RecordSet::Fields>(rows)), 2);
}

TEST_P(SearchTest, ReadsFiltersAsTheComponentWritesThem) {
    const std::pair<const char16_t*, std::size_t> filters[] = {
        {u"(& (objectClass=orvoPerson)(OrvoUserType=*))", 197},
        {u"(&(objectClass=orvoPerson)(!OrvoUserType = 0)(ProfileCN=Guests))", 17},
        {u"(& (objectClass=orvoPerson)(OrvoUserType=*)(! mail=*))", 48},
        {u"(&(objectClass=orvoPerson)(!OrvoUserType = 0)(|(ProfileCN=Sales) (ProfileCN=Guests)))",
         29},
        {u"cn=jsmith", 1},
        {u"(cn=Temp (night) \\2A)", 1},
        {u"(cn=J\u00F6rg Wei\u00DF)", 1},
    };
    for (const auto& [filter, count] : filters)
        EXPECT_THAT(found(filter), SizeIs(count)) << to_utf8(filter);
}

TEST_P(SearchTest, FindsByItemsOfEveryKind) {
    const std::pair<const char16_t*, std::size_t> filters[] = {
        {u"(sn~=smith)", 3},
        {u"(OrvoUserType>=3)", 13},
        {u"(OrvoUserType<=0)", 9},
        {u"(createTimestamp>=20200101000000Z)", 201},
        {u"(createTimestamp<=20200101000000Z)", 0},
        {u"(cn:caseExactMatch:=JSMITH)", 0},
        {u"(cn:caseExactMatch:=jsmith)", 1},
        {u"(cn:dn:=jsmith)", 1},
        {u"(ou:dn:=Users)", 201},
        {u"(:caseIgnoreMatch:=jsmith)", 1},
        {u"(objectClass=top)", 201},
        {u"(objectClass=ORVOPERSON)", 200},
        {u"(objectClass=person)", 0},
        {u"(objectClass=orvoMember)", 0},
        {u"(!(sn=Smith))", 198},
        {u"(userPassword=*)", 0},
        {u"(!(userPassword=x))", 0},
        {u"(&)", 201},
        {u"(|)", 0},
        {u"(entryUUID=*)", 201},
        {u"(structuralObjectClass=orvoPerson)", 200},
        {u"(OrvoUserType=abc)", 0},
        {u"(!(OrvoUserType=abc))", 0},
        {u"(ShowExplain=TRUE)", 0},
        {u"(mail=JOHN.SMITH@shop.example)", 1},
        {u"(cn=  jsmith )", 1},
        {u"(cn=smith,  john)", 1},
        {u"(BusinessPartnerID>=1006)", 138},
        {u"(sn=*i*t*)", 9},
        {u"(2.5.4.3=jsmith)", 1},
        {u"(commonname=jsmith)", 1},
        {u"(nosuch=x)", 0},
        {u"(!(nosuch=x))", 0},
        {u"(|(nosuch=x)(cn=jsmith))", 1},
        {u"(OrvoGUID=95489279f1ca185c11635b6f0de4b28c)", 1},
        {u"(CreditCardExpiryDate>=20280101000000Z)", 14},
        {u"(CreditCardExpiryDate=2028*)", 0},
        {u"(OrvoRole=2*)", 0},
        {u"(sn>=x)", 63},
        {u"(sn<=b)", 5},
        {u"(ProfileCN>=Guests)", 50},
        {u"(cn;lang-de=jsmith)", 0},
        {u"(modifiersName=*)", 201},
        {u"(description=*)", 0},
        {u"(cn=*\u00FC*)", 0},
        {u"(cn=\uFF4A\uFF53mith)", 1},
        {u"(cn=j\\6fhn)", 0},
        {u"(facsimileTelephoneNumber=+44 20 7946 0019)", 0},
        {u"(facsimileTelephoneNumber=+442079460019)", 0},
        {u"(facsimileTelephoneNumber=*)", 1},
        {u"(PhoneNumber=*44*)", 56},
    };
    for (const auto& [filter, count] : filters)
        EXPECT_THAT(found(filter), SizeIs(count)) << to_utf8(Text(filter));
}

TEST_P(SearchTest, DiffersInItemsThatNeedMoreThanAnEntry) {
    const std::pair<const char16_t*, Difference> filters[] = {
        {u"(name=jsmith)", differences::superior_attribute},
        {u"(hasSubordinates=TRUE)", differences::computed_attribute},
        {u"(entryDN=CN=jsmith,ou=Users,o=Shop)", differences::computed_attribute},
        {u"(OrvoUserType=01)", differences::leading_zeros},
        {u"(entryCSN=*)", differences::replication},
    };
    for (const auto& [filter, difference] : filters)
        EXPECT_EQ(std::to_string(found(filter).size()), shop_.own(difference))
            << to_utf8(Text(filter)) << ": " << difference.reason;
}

TEST_P(SearchTest, RefusesAFilterThatCannotBeRead) {
    const Failure failure = refusal_of([&] { found(u"(cn=a"); });
    EXPECT_EQ(failure.number, error_number(0x8007203E));
    EXPECT_EQ(failure.description,
              u"(87) The search filter is not valid. Character 1: the parenthesis is not closed. "
              u"The filter is '(cn=a'.");
}

TEST_P(SearchTest, AColumnThatIsAskedForTwiceAppearsTwice) {
    connected();
    const auto rows = execute(search_, u"(cn=jsmith)", Values{u"cn", u"sn", u"CN"});
    const auto fields = call<&RecordSet::Fields>(rows);
    const auto shown = [&](int column) {
        const auto field = call<&Fields::Item>(fields, Variant(column));
        return call<&Field::Name>(field) + u"=" + call<&Field::Value>(field).to<Text>();
    };
    ASSERT_EQ(call<&Fields::Count>(fields), 3);
    EXPECT_EQ(shown(0), u"cn=jsmith");
    EXPECT_EQ(shown(1), u"sn=Smith");
    EXPECT_EQ(shown(2), u"CN=jsmith");
}

TEST_P(SearchTest, RefusesNamesThatNoDirectoryCanHave) {
    connected();
    const Text nul(u"cn\0", 3);
    for (const Text& name : {nul, Text(u"cn\xD83D")}) {
        const Failure failure = refusal_of([&] { execute(search_, u"(cn=a)", Values{name}); });
        EXPECT_EQ(failure.number, error_number(0x8007203F));
        EXPECT_EQ(failure.description,
                  u"(89) A setting or argument is not valid. The name of an attribute holds a NUL "
                  u"or half of a surrogate pair.");
    }
    EXPECT_EQ(refusal_of([&] { connected(u"ou=Users,o=Shop" + nul); }).description,
              u"(34) The distinguished name is not valid. A name cannot hold a NUL.");
    EXPECT_EQ(refusal_of([&] { connected(u"ou=\xD83D,o=Shop"); }).description,
              u"(34) The distinguished name is not valid. A name cannot hold half of a surrogate "
              u"pair.");
}

TEST_P(SearchTest, RefusesAContainerThatIsNotThere) {
    connected(u"ou=Nowhere,o=Shop");
    const Failure failure = refusal_of([&] { execute(search_, u"(cn=*)"); });
    EXPECT_EQ(failure.number, error_number(0x80072030));
    EXPECT_EQ(failure.description, u"(32) There is no such entry. The nearest entry is 'o=Shop'.");
}

TEST_P(SearchTest, LooksAtTheWholeTreeBelowTheContainer) {
    connected(u"o=Shop");
    EXPECT_THAT(first_column(execute(search_, u"(|(cn=Buyers)(cn=jsmith))")),
                ElementsAre("Buyers", "jsmith"));
    EXPECT_THAT(first_column(execute(search_, u"(objectClass=organization)", u"o")),
                ElementsAre("Shop"));
    connected(u"o=Shop/ou=Profiles");
    EXPECT_THAT(first_column(execute(search_, u"(|(cn=Buyers)(cn=jsmith))")),
                ElementsAre("Buyers"));
}

TEST_P(SearchTest, ShowsAUserWhatTheDirectoryLetsItSee) {
    connect(search_, user("jsmith"));
    EXPECT_THAT(all(execute(search_, u"(cn=glee)", Values{u"cn", u"sn", u"SpendLimit"})),
                ElementsAre(Row{u"glee", u"Lee", Variant()}));
}

TEST_P(SearchTest, RefusesWrongCredentials) {
    for (const Login& login : {Login{service().user, "wrong"}, Login{"cn=nobody,o=Shop", "wrong"},
                               Login{"nobody", "wrong"}}) {
        const Failure failure = refusal_of([&] { connect(search_, login); });
        EXPECT_EQ(failure.number, error_number(0x8007052E)) << login.user;
    }
}

TEST_P(SearchTest, RefusesAnEmptyPassword) {
    const Failure failure = refusal_of([&] { connect(search_, {service().user, ""}); });
    EXPECT_EQ(failure.number, error_number(0x8007052E));
    EXPECT_EQ(failure.description,
              u"(49) The user name or the password is wrong. A password is required.");
}

TEST_P(SearchTest, MustBeConnected) {
    EXPECT_EQ(refusal_of([&] { execute(search_, u"(cn=*)"); }).number, 91);
    connected();
    EXPECT_NE(refusal_of([&] { connect(search_, {service().user, "wrong"}); }).number, 0);
    EXPECT_EQ(refusal_of([&] { execute(search_, u"(cn=*)"); }).number, 91);
}

// More than a server sends in one answer.
class SearchOfManyTest : public SearchTest {
protected:
    SearchOfManyTest() : SearchTest({.shop = file()}) {}

private:
    std::filesystem::path file() const {
        return folder_.write(
            "shop.ldif",
            output_of({ORVO_SOURCE_DIR "/examples/directory/make-shop", "--users", "2300"}));
    }
    static inline TempFolder folder_;
};
FOR_EVERY_DIRECTORY(SearchOfManyTest);

TEST_P(SearchOfManyTest, ReturnsThemAllOrTheFirst) {
    connected();
    const auto everybody =
        first_column(execute(search_, u"(objectClass=orvoPerson)", Values{u"cn"}, 32767));
    EXPECT_THAT(everybody, SizeIs(2300));
    EXPECT_TRUE(std::is_sorted(everybody.begin(), everybody.end(), [](auto& a, auto& b) {
        return order_key("cn=" + a) < order_key("cn=" + b);
    }));
    const auto first =
        first_column(execute(search_, u"(objectClass=orvoPerson)", Values{u"cn"}, 1200));
    ASSERT_THAT(first, SizeIs(1200));
    EXPECT_TRUE(std::equal(first.begin(), first.end(), everybody.begin()));
}

}  // namespace
}  // namespace orvo::directory
