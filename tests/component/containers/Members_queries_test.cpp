#include "component/containers/record_fields.h"
#include "tests/component/containers/containers_test.h"

namespace orvo {
namespace {

constexpr const char* get_users = "OrvoMembership.Members.GetOrvoUsers";
constexpr const char* query_members = "OrvoMembership.Members.QueryMembers";

class MembersSearch : public ContainersTest {
protected:
    // Record sets belong to the thread that asks.
    template <class Body>
    void bound_members_through_every_door(Body body) {
        directory_.found = users({u"jsmith"});
        ContainersTest::bound_members_through_every_door(body);
    }

    static Object search(Behind<Members>& members, const Variant& criteria,
                         const Variant& page_size = Variant::missing()) {
        return members.call<&Members::GetOrvoUsers>(criteria, Text(), page_size);
    }
    // The filter of a search with these criteria.
    std::string filter_of(Behind<Members>& members, const Variant& criteria) {
        forget();
        search(members, criteria);
        const auto calls = journal_.take();
        return calls.back().substr(0, calls.back().find(", [CN"));
    }
};

TEST_FRESH(MembersSearch, AsksTheUsersContainerWithTheStoredAccount) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        EXPECT_EQ(search(members, Values{u"OrvoGUID=x"}), directory_.found);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("CreateSearch()", connect_users,
                                execute("(& (objectClass=top)(OrvoUserType=*)(OrvoGUID=x))")));
    });
}

TEST_FRESH(MembersSearch, SortFieldsAreTakenAndNotUsed) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.found = users({u"bert", u"anna"});
        const Object found =
            members.call<&Members::GetOrvoUsers>(no_criteria(), Text(u"cn"), Variant::missing());
        EXPECT_EQ(call<&RecordSet::Sort>(Ref<RecordSet>::from(found)), u"");
        EXPECT_EQ(field_value(Ref<RecordSet>::from(found), u"cn"), Variant(u"bert"));
    });
}

TEST_FRESH(MembersSearch, AnAnswerThatIsNoRecordSetIsAFailureOfTheQuery) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.found = make<DictionaryObject>().object();
        const auto expected =
            block("D", get_users,
                  block("D", query_members,
                        "The following query failed: (& (objectClass=top)(OrvoUserType=*))"));
        expect_failure(raised_by([&] { search(members, no_criteria()); }), 13,
                       from_utf8(query_members), expected);
        expect_failure(raised_by([&] {
                           members.call<&Members::GetOrvoUsersEx>(no_criteria(), Variant::missing(),
                                                                  Text(), Variant::missing());
                       }),
                       13, from_utf8(query_members), expected);
    });
}

TEST_FRESH(MembersSearch, AnObjectReferenceMeansNoCriteria) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        search(members, Object());
        EXPECT_EQ(journal_.take().back(), execute("(& (objectClass=top)(OrvoUserType=*))"));
        search(members, make<DictionaryObject>().object());
        EXPECT_EQ(journal_.take().back(), execute("(& (objectClass=top)(OrvoUserType=*))"));
    });
}

TEST_FRESH(MembersSearch, CriteriaThatAreNoArrayAreRefused) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        for (const Variant& criteria : {Variant::missing(), Variant(), Variant::null(),
                                        Variant(u"mail=a*"), Variant(std::int32_t{1})}) {
            expect_failure(raised_by([&] { search(members, criteria); }), 13, u"OrvoMembership",
                           block("D", get_users, type_mismatch));
        }
        EXPECT_THAT(journal_.take(), IsEmpty());
    });
}

TEST_FRESH(MembersSearch, NotInCapitalsBecomesTheSignWhereverItStands) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        Variant criteria = Values{u"NOT mail=*", u"not sn=a", u"cn=NOTARY", u"NOTNOT x=1"};
        EXPECT_EQ(filter_of(members, criteria),
                  "Execute((& (objectClass=top)(OrvoUserType=*)(! mail=*)(not sn=a)(cn=!ARY)"
                  "(!! x=1))");
        EXPECT_EQ(criteria,
                  Variant(Values{u"NOT mail=*", u"not sn=a", u"cn=NOTARY", u"NOTNOT x=1"}))
            << "the caller's array stays as it is";
    });
}

TEST_FRESH(MembersSearch, NothingElseInACriterionIsTouched) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        EXPECT_EQ(filter_of(members, Values{u"cn=O'Brien (*)\\", u"", std::int32_t{5}}),
                  "Execute((& (objectClass=top)(OrvoUserType=*)(cn=O'Brien (*)\\)()(5))");
    });
}

TEST_FRESH(MembersSearch, CriteriaMayBeginAtAnyIndex) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        Values criteria(-1, 2);
        criteria[-1] = u"a=1";
        criteria[0] = u"b=2";
        EXPECT_EQ(filter_of(members, std::move(criteria)),
                  "Execute((& (objectClass=top)(OrvoUserType=*)(a=1)(b=2))");
    });
}

TEST_FRESH(MembersSearch, AnArrayBeyond16BitsOverflows) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        Values criteria(0, 40000);
        for (Variant& item : criteria) item = u"a=1";
        expect_failure(raised_by([&] { search(members, criteria); }), 6, u"OrvoMembership",
                       block("6", get_users, "Overflow"));
        EXPECT_EQ(raised_by([&] { search(members, Values(40000, 1)); }).number, 6);
        EXPECT_THAT(journal_.take(), IsEmpty());
    });
}

TEST_FRESH(MembersSearch, AnArrayAsACriterionIsRefused) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        EXPECT_EQ(raised_by([&] { search(members, Values{Values{u"a=1"}}); }).number, 13);
    });
}

TEST_FRESH(MembersSearch, AFullPageLeavesABookmarkAndAShorterOneLeavesTheFormer) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        EXPECT_EQ(members.call<&Members::GetLastPageValue>(), u"");
        directory_.found = users({u"anna", u"bert"});
        const auto page = Ref<RecordSet>::from(search(members, no_criteria(), std::int16_t{2}));
        EXPECT_EQ(members.call<&Members::GetLastPageValue>(), u"bert!");
        EXPECT_EQ(field_value(page, u"cn"), Variant(u"anna")) << "at the first record again";

        directory_.found = users({u"zoe"});
        search(members, no_criteria(), std::int16_t{2});
        EXPECT_EQ(members.call<&Members::GetLastPageValue>(), u"bert!");
        directory_.found = users({});
        search(members, no_criteria(), std::int16_t{2});
        EXPECT_EQ(members.call<&Members::GetLastPageValue>(), u"bert!");
    });
}

TEST_FRESH(MembersSearch, ThePageSizeIsConvertedTo16Bits) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        search(members, no_criteria(), u"25");
        EXPECT_EQ(journal_.take().back(),
                  execute("(& (objectClass=top)(OrvoUserType=*))", usual_columns, 25));
        search(members, no_criteria(), 2.5);
        EXPECT_EQ(journal_.take().back(),
                  execute("(& (objectClass=top)(OrvoUserType=*))", usual_columns, 2));
        expect_failure(
            raised_by([&] { search(members, no_criteria(), std::int32_t{40000}); }), 6,
            from_utf8(query_members),
            block("6", get_users,
                  block("6", query_members,
                        "The following query failed: (& (objectClass=top)(OrvoUserType=*))")));
        EXPECT_EQ(raised_by([&] { search(members, no_criteria(), u"many"); }).number, 13);
    });
}

TEST_FRESH(MembersSearch, PageSizesAtTheEndsOfTheirRange) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        const auto asks_for = [&](const Variant& page_size, int maximum) {
            forget();
            search(members, no_criteria(), page_size);
            EXPECT_EQ(journal_.take().back(),
                      execute("(& (objectClass=top)(OrvoUserType=*))", usual_columns, maximum));
            EXPECT_EQ(members.call<&Members::GetLastPageValue>(), u"") << "no full page";
        };
        asks_for(std::int16_t{0}, 0);
        asks_for(std::int32_t{-1}, -1);
        asks_for(std::int32_t{32767}, 32767);
        forget();
        expect_failure(
            raised_by([&] { search(members, no_criteria(), std::int32_t{32768}); }), 6,
            from_utf8(query_members),
            block("6", get_users,
                  block("6", query_members,
                        "The following query failed: (& (objectClass=top)(OrvoUserType=*))")));
    });
}

// No rows are as many as were asked for: a full page, of which there is no last row.
TEST_FRESH(MembersSearch, APageSizeOfZeroFailsWhereNobodyIsFound) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.found = users({});
        expect_failure(raised_by([&] { search(members, no_criteria(), std::int16_t{0}); }), 3021,
                       u"ADODB.Recordset", block("BCD", get_users, no_current_record));
        EXPECT_NO_THROW(search(members, no_criteria(), std::int16_t{-1}));
        EXPECT_NO_THROW(members.call<&Members::GetOrvoUsersEx>(no_criteria(), Variant::missing(),
                                                               Text(), Variant(std::int16_t{0})));
    });
}

TEST_FRESH(MembersSearch, MoreRowsThan16BitsCountAreAFailureOfTheSearch) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        RecordSetBuilder builder({u"cn"});
        for (int i = 0; i < 32768; ++i) builder.add({u"anna"});
        directory_.found = builder.open().object();
        expect_failure(raised_by([&] { search(members, no_criteria(), std::int16_t{0}); }), 6,
                       u"OrvoMembership", block("6", get_users, "Overflow"));
    });
}

TEST_FRESH(MembersSearch, AProviderThatFindsNothingAtAllIsAnsweredWithNothing) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.found = nullptr;
        EXPECT_FALSE(search(members, no_criteria()));
    });
}

TEST_FRESH(MembersSearch, AFailureTellsTheFilterInPlaceOfTheProvidersWords) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse("Execute", no_rights());
        expect_failure(raised_by([&] { search(members, Values{u"x"}); }), error_number(0x80072098),
                       from_utf8(query_members),
                       block("80072098", get_users,
                             block("80072098", query_members,
                                   "The following query failed: "
                                   "(& (objectClass=top)(OrvoUserType=*)(x))")));
        EXPECT_THAT(log_.take_sources(), ElementsAre(query_members, query_members))
            << "one entry of each method";
    });
}

TEST_FRESH(MembersSearch, AColumnThatIsAskedForTwiceIsPassedOnTwice) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        members.call<&Members::GetOrvoUsersEx>(no_criteria(), Variant(Values{u"sn", u"cn", u"sn"}),
                                               Text(), Variant::missing());
        EXPECT_EQ(journal_.take().back(),
                  execute("(& (objectClass=top)(OrvoUserType=*))", "[sn, cn, sn]"));
    });
}

TEST_FRESH(MembersSearch, TheExtendedSearchTakesItsOwnColumnsAndSetsNoBookmark) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.found = users({u"anna"});
        const auto search_ex = [&](const Variant& criteria, const Variant& names,
                                   const Variant& size) {
            return members.call<&Members::GetOrvoUsersEx>(criteria, names, Text(u"sn"), size);
        };
        EXPECT_EQ(search_ex(Values{u"NOT sn=a"}, Values{u"sn", u"cn"}, std::int16_t{1}),
                  directory_.found);
        EXPECT_EQ(journal_.take().back(),
                  execute("(& (objectClass=top)(OrvoUserType=*)(! sn=a))", "[sn, cn]", 1));
        EXPECT_EQ(members.call<&Members::GetLastPageValue>(), u"");
        search_ex(no_criteria(), Variant::missing(), Variant::missing());
        EXPECT_EQ(journal_.take().back(), execute("(& (objectClass=top)(OrvoUserType=*))"));
        expect_failure(
            raised_by([&] { search_ex(Variant::missing(), Variant::missing(), Variant()); }), 13,
            u"OrvoMembership", block("D", get_users, type_mismatch));
    });
}

}  // namespace
}  // namespace orvo
