#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/suite/directory/embedded/store/store_fixture.h"

namespace orvo::directory::embedded {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

Selection selection_of(const std::string& base, const char16_t* filter, std::size_t wanted = 0) {
    return {.base = dn(base), .filter = Filter::parse(filter), .wanted = wanted};
}

class AStoreSearch : public AStore {
protected:
    // The names of what is handed over, the first value alone; at most `most`.
    std::vector<std::string> found(const Selection& selection, std::size_t most = 1000) {
        std::vector<std::string> names;
        store->read().search(selection, [&](EntryData&& entry) {
            names.push_back(entry.name.substr(0, entry.name.find(',')));
            return names.size() < most;
        });
        return names;
    }

    // cn=user0000 and so on; each has a GUID, every tenth the role 10.
    void add_users(int count) {
        Writing writing = store->write(Durability::process);
        for (int i = 0; i < count; ++i) {
            std::string digits = std::to_string(i);
            digits.insert(0, 4 - digits.size(), '0');
            EntryData entry{"cn=user" + digits + ",ou=Users,o=Shop",
                            {{"objectClass", {"top", "orvoPerson"}},
                             {"cn", {"user" + digits}},
                             {"OrvoGUID", {"A" + digits}},
                             {"ProfileCN", {i < count / 2 ? "first" : "second"}}}};
            if (i % 10 == 0) entry.attributes.push_back({"OrvoRole", {"10", "20"}});
            if (i == count - 1) entry.attributes.push_back({"OrvoRole", {"99"}});
            writing.add(entry);
        }
        writing.commit();
    }
};

TEST_F(AStoreSearch, GoesByTheOrderOfListsAndByWholeNamesAmongEquals) {
    add({"ou=Staff,o=Shop", {}});
    for (const char* name : {"cn=b,ou=Users,o=Shop", "cn=a,ou=Users,o=Shop", "cn=a,ou=Staff,o=Shop",
                             "cn=B,ou=Staff,o=Shop", "ou=a,o=Shop"})
        add({name, {}});
    std::vector<std::string> names;
    store->read().search(selection_of("", u"(!(cn=z))"), [&](EntryData&& entry) {
        names.push_back(entry.name);
        return true;
    });
    EXPECT_THAT(names, ElementsAre("cn=a,ou=Staff,o=Shop", "cn=a,ou=Users,o=Shop", "ou=a,o=Shop",
                                   "cn=B,ou=Staff,o=Shop", "cn=b,ou=Users,o=Shop", "o=Shop",
                                   "ou=Staff,o=Shop", "ou=Users,o=Shop"));
}

TEST_F(AStoreSearch, KeepsToItsScope) {
    add({"cn=a,ou=Users,o=Shop", {}});
    add({"cn=b,cn=a,ou=Users,o=Shop", {}});
    Selection selection = selection_of("ou=Users,o=Shop", u"(!(cn=z))");
    EXPECT_THAT(found(selection), ElementsAre("cn=a", "cn=b", "ou=Users"));
    selection.scope = Scope::one_level;
    EXPECT_THAT(found(selection), ElementsAre("cn=a"));
    selection.scope = Scope::base;
    EXPECT_THAT(found(selection), ElementsAre("ou=Users"));
    selection.base = dn("");
    EXPECT_THAT(found(selection), IsEmpty());
    selection.scope = Scope::one_level;
    EXPECT_THAT(found(selection), ElementsAre("o=Shop"));
    selection.base = dn("ou=none,o=Shop");
    EXPECT_THAT(found(selection), IsEmpty());
}

TEST_F(AStoreSearch, KeepsToItsScopeWhereTheIndexFindsMore) {
    add({"cn=a,ou=Users,o=Shop", {{"sn", {"x"}}}});
    add({"cn=b,cn=a,ou=Users,o=Shop", {{"sn", {"x"}}}});
    add({"cn=c,o=Shop", {{"sn", {"x"}}}});
    Selection selection = selection_of("ou=Users,o=Shop", u"(sn=x)");
    EXPECT_THAT(found(selection), ElementsAre("cn=a", "cn=b"));
    selection.scope = Scope::one_level;
    EXPECT_THAT(found(selection), ElementsAre("cn=a"));
    selection.base = dn("");
    EXPECT_THAT(found(selection), IsEmpty());
    selection.scope = Scope::subtree;
    EXPECT_THAT(found(selection), ElementsAre("cn=a", "cn=b", "cn=c"));
}

TEST_F(AStoreSearch, GivesTheWantedAttributesAlone) {
    add({"cn=a,ou=Users,o=Shop", {{"cn", {"a"}}, {"sn;lang-de", {"x"}}, {"OrvoRole", {"1"}}}});
    Selection selection = selection_of("o=Shop", u"(OrvoRole=1)");
    const auto attributes = [&] {
        std::vector<Attribute> attributes;
        store->read().search(selection, [&](EntryData&& entry) {
            attributes = entry.attributes;
            return true;
        });
        return attributes;
    };
    EXPECT_THAT(attributes(), SizeIs(3));
    selection.attributes = {"surname"};
    EXPECT_THAT(attributes(), ElementsAre(Attribute{"sn;lang-de", {"x"}}));
    selection.attributes = {"unheardOf"};
    EXPECT_THAT(attributes(), IsEmpty());
}

TEST_F(AStoreSearch, BeginsAPageWhereThePageBeforeEnded) {
    add_users(1000);
    const char16_t* filters[] = {u"(&(objectClass=orvoPerson)(cn>=user0000!))",
                                 u"(&(objectClass=orvoPerson)(cn>=user0900!))"};
    EXPECT_THAT(found(selection_of("o=Shop", filters[0], 3), 3),
                ElementsAre("o=Shop", "cn=user0001", "cn=user0002"))
        << "what another attribute names is not bounded";
    EXPECT_THAT(found(selection_of("o=Shop", filters[1], 3), 3),
                ElementsAre("o=Shop", "cn=user0901", "cn=user0902"));
}

TEST_F(AStoreSearch, BoundsOnlyWhatTheAttributeNames) {
    add({"ou=Abc,o=Shop", {{"ou", {"Abc"}}, {"cn", {"zed"}}}});
    add({"cn=x,o=Shop", {{"cn", {"x"}}}});
    add({"cn=a,o=Shop", {{"cn", {"a"}}}});
    EXPECT_THAT(found(selection_of("ou=Abc,o=Shop", u"(cn>=m!)")), ElementsAre("ou=Abc"));
    EXPECT_THAT(found(selection_of("o=Shop", u"(&(cn>=m!)(cn<=y!))")),
                ElementsAre("ou=Abc", "o=Shop", "ou=Users", "cn=x"));
}

TEST_F(AStoreSearch, ForARoleThatNobodyHasTouchesNoEntry) {
    add_users(200);
    const Selection selection =
        selection_of("o=Shop", u"(&(objectClass=orvoPerson)(OrvoRole=77))", 1000);
    EXPECT_THAT(found(selection), IsEmpty());
    EXPECT_THAT(store->read().plan(selection), Contains("from the index: 0 entries"));
}

TEST_F(AStoreSearch, LetsTheRarestPartDecide) {
    add_users(200);
    EXPECT_THAT(found(selection_of("o=Shop", u"(&(objectClass=orvoPerson)(OrvoGUID=a0123))")),
                ElementsAre("cn=user0123"));
    EXPECT_THAT(found(selection_of("o=Shop", u"(|(OrvoGUID=a0123)(OrvoRole>=90)(cn=USER0007))")),
                ElementsAre("cn=user0007", "cn=user0123", "cn=user0199"));
}

TEST_F(AStoreSearch, KnowsBeginningsRangesPresenceAndPiecesByTheIndex) {
    add_users(200);
    EXPECT_THAT(found(selection_of("o=Shop", u"(cn=user019*)")), SizeIs(10));
    EXPECT_THAT(found(selection_of("o=Shop", u"(cn=user01*7)")), SizeIs(10));
    EXPECT_THAT(found(selection_of("o=Shop", u"(OrvoRole=*)")), SizeIs(21));
    EXPECT_THAT(found(selection_of("o=Shop", u"(OrvoRole>=99)")), ElementsAre("cn=user0199"));
    EXPECT_THAT(found(selection_of("o=Shop", u"(OrvoRole<=10)")), SizeIs(20));
    EXPECT_THAT(found(selection_of("o=Shop", u"(OrvoRole<=9)")), IsEmpty());
    EXPECT_THAT(found(selection_of("o=Shop", u"(OrvoRole=ten)")), IsEmpty());
    EXPECT_THAT(found(selection_of("o=Shop", u"(mail=*)")), IsEmpty()) << "nobody has one";
    EXPECT_THAT(found(selection_of("o=Shop", u"(cn:caseIgnoreMatch:=USER0150)")),
                ElementsAre("cn=user0150"));
}

// 60 entries at the end of the list are more than a handful.
TEST_F(AStoreSearch, ChangesFromTheWalkToTheIndexWhereThatHasFewEnough) {
    add_users(2000);
    {
        Writing writing = store->write(Durability::process);
        for (int i = 0; i < 60; ++i) {
            std::string digits = std::to_string(i);
            digits.insert(0, 2 - digits.size(), '0');
            writing.add({"cn=vip" + digits + ",ou=Users,o=Shop", {{"sn", {"rare"}}}});
        }
        writing.add({"cn=a first one,ou=Users,o=Shop", {{"sn", {"rare"}}}});
        writing.commit();
    }
    std::vector<std::string> rare;
    std::size_t handed_over = 0;
    store->read().search(selection_of("o=Shop", u"(sn=rare)", 30), [&](EntryData&& entry) {
        ++handed_over;
        for (const Attribute& attribute : entry.attributes)
            if (attribute.name == "sn") rare.push_back(entry.name.substr(3, 5));
        return true;
    });
    EXPECT_LT(handed_over, 300);
    ASSERT_THAT(rare, SizeIs(61));
    EXPECT_EQ(rare.front(), "a fir");
    EXPECT_TRUE(std::ranges::is_sorted(rare)) << "each once, and in order";
}

TEST_F(AStoreSearch, TellsTheWalkByTheIndexWhatItNeedNotRead) {
    add_users(2000);
    std::size_t handed_over = 0;
    std::size_t with_role = 0;
    std::string last;
    store->read().search(selection_of("ou=Users,o=Shop", u"(OrvoRole=10)", 50),
                         [&](EntryData&& entry) {
                             ++handed_over;
                             with_role += entry.attributes.back().name == "OrvoRole" ? 1 : 0;
                             EXPECT_LT(last, entry.name);
                             last = entry.name;
                             return entry.name != "cn=user1990,ou=Users,o=Shop";
                         });
    EXPECT_EQ(with_role, 200);
    EXPECT_LT(handed_over, 400);
}

TEST_F(AStoreSearch, FindsTheEndOfALongValue) {
    const std::string letters(2 * longest_index_key, 'l');
    add({"cn=a,o=Shop", {{"sn", {letters + "a"}}}});
    add({"cn=b,o=Shop", {{"sn", {"short"}}}});
    EXPECT_THAT(found(selection_of("o=Shop", u"(sn=*la)")), ElementsAre("cn=a"));
    EXPECT_THAT(found(selection_of("o=Shop", u"(sn=*la*)")), ElementsAre("cn=a"));
    EXPECT_THAT(found(selection_of("o=Shop", u"(sn=l*la)")), ElementsAre("cn=a"));
}

TEST_F(AStoreSearch, LooksForPiecesInTheIndexWhereTheWalkFindsTooFew) {
    add_users(3000);
    std::size_t handed_over = 0;
    store->read().search(selection_of("o=Shop", u"(cn=*2999)", 10), [&](EntryData&&) {
        ++handed_over;
        return true;
    });
    EXPECT_LT(handed_over, 200);
    EXPECT_GT(handed_over, 50);
}

TEST_F(AStoreSearch, ScansNoTable) {
    add_users(200);
    for (const char16_t* filter :
         {u"(OrvoGUID=A0001)", u"(&(objectClass=orvoPerson)(cn>=user0100!))", u"(cn=user*)",
          u"(&(objectClass=orvoPerson)(OrvoRole=10))", u"(OrvoRole>=5)", u"(cn=*9)",
          u"(|(OrvoRole=1)(ProfileCN=first))", u"(!(cn=a))", u"(objectClass=*)"}) {
        const Selection selection = selection_of("ou=Users,o=Shop", filter, 50);
        const std::vector<std::string> plan = store->read().plan(selection);
        EXPECT_THAT(plan, Contains(HasSubstr("SEARCH"))) << to_utf8(filter);
        EXPECT_THAT(plan, Each(Not(HasSubstr("SCAN")))) << to_utf8(filter);
        EXPECT_THAT(plan, Each(Not(HasSubstr("TEMP B-TREE")))) << to_utf8(filter);
    }
}

TEST_F(AStoreSearch, TellsItsPlan) {
    add_users(200);
    EXPECT_THAT(store->read().plan(selection_of("o=Shop", u"(OrvoGUID=A0001)", 50)),
                ElementsAre("index rows of OrvoGUID",
                            "  SEARCH value USING PRIMARY KEY (attribute=? AND key=?)",
                            "from the index: 1 entries"));
    EXPECT_THAT(
        store->read().plan(
            selection_of("ou=Users,o=Shop", u"(&(objectClass=orvoPerson)(cn>=user0100!))", 50)),
        ElementsAre("index rows of objectClass",
                    "  SEARCH value USING PRIMARY KEY (attribute=? AND key=?)", "entry 2",
                    "walk below entry 2: cn, from the bound",
                    "  SEARCH below USING PRIMARY KEY (ancestor=? AND kind=? AND listing>? AND "
                    "listing<?)",
                    "with the index, where it has at most 568 rows"));
}

TEST_F(AStoreSearch, IsReadFromWhileItRuns) {
    add_users(20);
    const Reading reading = store->read();
    int found = 0;
    reading.search(selection_of("o=Shop", u"(!(cn=z))"), [&](EntryData&& entry) {
        EXPECT_TRUE(reading.find(dn(entry.name)));
        reading.search(selection_of("o=Shop", u"(!(cn=z))", 1), [&](EntryData&&) {
            ++found;
            return false;
        });
        return true;
    });
    EXPECT_EQ(found, 22);
}

}  // namespace
}  // namespace orvo::directory::embedded
