// The searches of a real directory, its paging and its roles.

#include <algorithm>
#include <fstream>
#include <set>

#include "tests/component/containers/containers_live_test.h"

namespace orvo {
namespace {

// Without regard to the order of the pages' names, which is the provider's (docs/provider.md).
using Names = std::multiset<std::string>;

class MembersQueriesLive : public ContainersLive {
protected:
    using ContainersLive::ContainersLive;

    std::vector<std::string> names(const Variant& criteria) {
        return column(found(members(), criteria));
    }
    Object with_role(int role, const Variant& criteria = Object(), const Text& sort = u"") {
        return late::call(members(), u"GetOrvoMembersHavingRoleEx",
                          {std::int16_t(role), criteria, sort})
            .to<Object>();
    }
    // Every user, page after page, and how many pages they took.
    Names all_pages(std::int16_t size, int& pages) {
        const Object container = members();
        Names all;
        Variant criteria = list({u"objectClass=*"});
        for (pages = 1;; ++pages) {
            const Object page =
                late::call(container, u"GetOrvoUsers", {criteria, u"", size}).to<Object>();
            const auto rows = column(page);
            all.insert(rows.begin(), rows.end());
            if (static_cast<std::int16_t>(rows.size()) < size) return all;
            Text last = late::call(container, u"GetLastPageValue").to<Text>();
            for (std::size_t at = 0; (at = last.find_first_of(u"\\()", at)) != Text::npos; at += 3)
                last.replace(at, 1,
                             last[at] == u'\\'  ? u"\\5c"
                             : last[at] == u'(' ? u"\\28"
                                                : u"\\29");
            criteria = Values{u"objectClass=*", u"cn>=" + last};
        }
    }
    Names everybody_with_a_type() {
        Names all;
        for (const std::string& name : shop_.find("ou=Users,o=Shop", "(OrvoUserType=*)"))
            for (const std::string& cn : shop_.values(name, "cn")) all.insert(cn);
        return all;
    }
};

TEST_FRESH_FOR_EACH(MembersQueriesLive, FindUsersWhoMeetAllCriteria) {
    EXPECT_THAT(names(list({u"cn=jsmith"})), ElementsAre("jsmith"));
    EXPECT_THAT(names(list({u"SN=smith", u"givenName=J*"})), ElementsAre("jsmith", "Smith, John"));
    EXPECT_THAT(names(list({u"sn=Smith", u"NOT givenName=*"})),
                ElementsAre("Ann \"Andy\" <Smith>; ="));
    EXPECT_THAT(names(list({u"|(cn=admin)(cn=local)"})), ElementsAre("admin", "local"));
    EXPECT_THAT(names(list({u"cn=Temp \\28night\\29 \\2a"})), ElementsAre("Temp (night) *"));
    EXPECT_THAT(names(list({u"cn=bare"})), IsEmpty()) << "without a type, in no list of users";
    EXPECT_THAT(names(list({u"cn=nobody"})), IsEmpty());
}

TEST_FRESH_FOR_EACH(MembersQueriesLive, WithoutCriteriaFindEverybodyWithAType) {
    const Object all = found(members(), Object());
    EXPECT_EQ(late::get(all, u"RecordCount"), Variant(197));
    const auto rows = column(all);
    EXPECT_EQ(Names(rows.begin(), rows.end()), everybody_with_a_type());
}

TEST_FRESH_FOR_EACH(MembersQueriesLive, HaveTheirColumnsInOrder) {
    const Object rows = found(members(), list({u"cn=jsmith"}));
    const Object fields = late::get(rows, u"Fields").to<Object>();
    ASSERT_EQ(late::get(fields, u"Count"), Variant(5));
    int at = 0;
    for (const char16_t* name : {u"CN", u"BusinessPartnerID", u"mail", u"givenName", u"sn"})
        EXPECT_EQ(late::get(late::get(fields, u"Item", {at++}).to<Object>(), u"Name"),
                  Variant(name));
    EXPECT_EQ(late::get(rows, u"Collect", {u"BusinessPartnerID"}), Variant(1001));
    EXPECT_EQ(late::get(rows, u"Collect", {u"mail"}), Variant(u"john.smith@shop.example"));

    const Object own = late::call(members(), u"GetOrvoUsersEx",
                                  {list({u"cn=jsmith"}), list({u"OrvoRole", u"SpendLimit"})})
                           .to<Object>();
    EXPECT_EQ(late::get(own, u"Collect", {0}), Variant(Values{2, 3, 24}));
    EXPECT_EQ(late::get(own, u"Collect", {1}), Variant(u"1234.5"));
}

TEST_FRESH_FOR_EACH(MembersQueriesLive, WithCriteriaThatAreNoFilterFailWithTheWholeQuery) {
    const Failure failure = raised_by([&] { names(list({u"cn=("})); });
    EXPECT_EQ(failure.number, error_number(0x8007203E));
    EXPECT_EQ(to_utf8(failure.source), "OrvoMembership.Members.QueryMembers");
    EXPECT_EQ(to_utf8(failure.description),
              block("8007203E", "Members.GetOrvoUsers",
                    block("8007203E", "Members.QueryMembers",
                          "The following query failed: (& "
                          "(objectClass=orvoPerson)(OrvoUserType=*)(cn=())")));
}

TEST_FRESH_FOR_EACH(MembersQueriesLive, PageAfterPageEveryUserIsSeenExactlyOnce) {
    const Names everybody = everybody_with_a_type();
    for (const auto& [size, count] : {std::pair{1, 198}, {7, 29}, {197, 2}, {198, 1}}) {
        SCOPED_TRACE(size);
        int pages = 0;
        EXPECT_EQ(all_pages(static_cast<std::int16_t>(size), pages), everybody);
        EXPECT_EQ(pages, count);
    }
}

TEST_FRESH_FOR_EACH(MembersQueriesLive, APageThatIsNotFullLeavesTheFormerBookmark) {
    const Object container = members();
    EXPECT_EQ(late::call(container, u"GetLastPageValue"), Variant(u""));
    late::call(container, u"GetOrvoUsers", {list({u"cn=j*"}), u"", std::int16_t(1)});
    const Variant bookmark = late::call(container, u"GetLastPageValue");
    late::call(container, u"GetOrvoUsers", {list({u"cn=nobody"}), u"", std::int16_t(1)});
    late::call(container, u"GetOrvoUsersEx",
               {list({u"cn=glee"}), list({u"cn"}), u"", std::int16_t(1)});
    EXPECT_EQ(late::call(container, u"GetLastPageValue"), bookmark);
    EXPECT_THAT(to_utf8(bookmark.to<Text>()), testing::EndsWith("!"));
}

TEST_FRESH_FOR_EACH(MembersQueriesLive, FindARoleOfOnesOwnAndElseTheProfiles) {
    // Receivers and Buyers have roles 24 and 2; jsmith has 24 himself and Buyers' 2 besides.
    EXPECT_THAT(column(with_role(24, list({u"|(cn=jsmith)(cn=Temp*)(cn=norole)"}), u"cn")),
                ElementsAre("jsmith", "Temp (night) *"));
    EXPECT_THAT(
        column(with_role(2, list({u"|(cn=jsmith)(cn=#1 Buyer)(cn=zeros)(cn=Smith, John)"}), u"cn")),
        ElementsAre("#1 Buyer", "jsmith", "Smith, John"))
        << "zeros has a role, 0, of his own";

    const auto rows = column(with_role(24));
    Names expected;
    for (const std::string& name :
         shop_.find("ou=Users,o=Shop", "(&(OrvoRole=24)(!(OrvoUserType=0))(OrvoUserType=*))"))
        expected.insert(shop_.values(name, "cn")[0]);
    for (const std::string& name :
         shop_.find("ou=Users,o=Shop",
                    "(&(ProfileCN=Receivers)(!(OrvoRole=*))(!(OrvoUserType=0))(OrvoUserType=*))"))
        expected.insert(shop_.values(name, "cn")[0]);
    EXPECT_GT(expected.size(), 20u);
    EXPECT_EQ(Names(rows.begin(), rows.end()), expected);
}

TEST_FRESH_FOR_EACH(MembersQueriesLive, SortRolesByWhatTheCallerNames) {
    const Variant some = list({u"|(cn=jsmith)(cn=#1 Buyer)(cn=Smith, John)"});
    EXPECT_THAT(column(with_role(2, some, u"cn DESC")),
                ElementsAre("Smith, John", "jsmith", "#1 Buyer"));
    EXPECT_THAT(column(with_role(2, some, u"BusinessPartnerID, cn")),
                ElementsAre("jsmith", "#1 Buyer", "Smith, John"));
}

TEST_FRESH_FOR_EACH(MembersQueriesLive, ARoleThatNobodyHasGivesNoRows) {
    const Object none = with_role(99);
    EXPECT_EQ(late::get(none, u"RecordCount"), Variant(0));
    EXPECT_EQ(late::get(none, u"EOF"), Variant(true));
}

TEST_FRESH_FOR_EACH(MembersQueriesLive, APartnerBeyond32BitsIsZeroInTheRowAndALineInTheLog) {
    const Object rows = with_role(7, list({u"cn=bigpartner"}));
    EXPECT_EQ(late::get(rows, u"Collect", {u"BusinessPartnerID"}), Variant(0));
    EXPECT_EQ(late::get(rows, u"Collect", {u"mail"}), Variant(u"big@shop.example"));
    EXPECT_THAT(logged(), HasSubstr(" METHOD: OrvoMembership.Members.AddUserToResultSet"));
    EXPECT_THAT(logged(),
                HasSubstr(" INFO: Invalid BusinessPartnerID for user bigpartner -- value set "
                          "to 0 in resultset.\n"));
}

// Two thousand users, of whom a plain search gets five hundred from this server.
class MembersQueriesOfManyLive : public MembersQueriesLive {
protected:
    explicit MembersQueriesOfManyLive(int users = 2000)
        : MembersQueriesLive({.shop = shop_file(users)}) {}

private:
    std::filesystem::path shop_file(int users) {
        const auto file = big_.path() / "shop.ldif";
        std::ofstream(file) << output_of(
            {ORVO_SOURCE_DIR "/examples/directory/make-shop", "--users", std::to_string(users)});
        return file;
    }
    static inline TempFolder big_;
};

TEST_FRESH_FOR_EACH(MembersQueriesOfManyLive, PagesGoBeyondTheServersOwnLimit) {
    int pages = 0;
    const Names all = all_pages(1000, pages);
    EXPECT_EQ(all, everybody_with_a_type());
    EXPECT_EQ(all.size(), 1997u);
    EXPECT_EQ(pages, 2);
    EXPECT_EQ(late::get(found(members(), Object()), u"RecordCount"), Variant(1000))
        << "the usual page";
}

class ApplicationOfManyLive : public MembersQueriesOfManyLive {
protected:
    ApplicationOfManyLive() : MembersQueriesOfManyLive(3000) {}
};

TEST_FRESH_FOR_EACH(ApplicationOfManyLive, ItsUsersAreListedUpToAThousand) {
    EXPECT_GT(shop_.find("ou=Users,o=Shop", "(orvoapps=1)").size(), 1000u);
    const Object accessor = create_object(u"OrvoMembership.PMMAccessor");
    late::call(accessor, u"InitConfigFile", {from_utf8(shop_.site_ini().string())});
    const Object users = late::call(accessor, u"GetLDAPUsers", {1}).to<Object>();
    EXPECT_EQ(late::get(users, u"RecordCount"), Variant(1000));
}

}  // namespace
}  // namespace orvo
