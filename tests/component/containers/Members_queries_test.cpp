#include "component/containers/record_fields.h"
#include "tests/component/containers/containers_test.h"

namespace orvo {
namespace {

constexpr const char* get_users = "OrvoMembership.Members.GetOrvoUsers";
constexpr const char* query_members = "OrvoMembership.Members.QueryMembers";
constexpr const char* having_role = "OrvoMembership.Members.GetOrvoMembersHavingRole";
constexpr const char* having_role_ex = "OrvoMembership.Members.GetOrvoMembersHavingRoleEx";
constexpr const char* add_user = "OrvoMembership.Members.AddUserToResultSet";

constexpr const char* connect_users =
    "Connect(dir01:389, ou=Users,o=Shop, cn=web,o=Shop, web-code)";
constexpr const char* connect_profiles =
    "Connect(dir01:389, ou=Profiles,o=Shop, cn=web,o=Shop, web-code)";

std::string execute(const std::string& filter, const std::string& columns = usual_columns,
                    int maximum = 1000) {
    return "Execute(" + filter + ", " + columns + ", " + std::to_string(maximum) + ")";
}

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

// Users by role.

class MembersHavingRole : public ContainersTest {
protected:
    static constexpr const char* role_columns =
        "[cn, BusinessPartnerID, mail, givenName, sn, orvorole]";

    static Object profiles(std::initializer_list<const char16_t*> names) {
        std::vector<std::vector<Variant>> rows;
        for (const char16_t* name : names) rows.push_back({Text(name)});
        return records({u"cn"}, rows);
    }
    // Users as the search through profiles finds them: (cn, roles of their own).
    static Object users_with_roles(std::initializer_list<std::pair<const char16_t*, Variant>> all) {
        std::vector<std::vector<Variant>> rows;
        for (const auto& [name, roles] : all)
            rows.push_back({Text(name), std::int32_t{7}, Variant(), Variant(), Variant(), roles});
        return records({u"cn", u"BusinessPartnerID", u"mail", u"givenName", u"sn", u"orvorole"},
                       rows);
    }
    static Ref<RecordSet> having(Behind<Members>& members, std::int16_t role, Text sort = {}) {
        return Ref<RecordSet>::from(members.call<&Members::GetOrvoMembersHavingRole>(role, sort));
    }
    static std::vector<std::string> names_in(const Ref<RecordSet>& found) {
        std::vector<std::string> names;
        for (; !call<&RecordSet::IsEof>(found); call<&RecordSet::MoveNext>(found))
            names.push_back(shown(field_value(found, u"cn")));
        return names;
    }
};

TEST_FRESH(MembersHavingRole, WithoutAProfileOnlyTheRolesOwnHoldersAreAskedFor) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.finds = {profiles({}), users({u"anna", u"bert"})};
        EXPECT_THAT(names_in(having(members, 7)), ElementsAre("anna", "bert"));
        EXPECT_THAT(journal_.take(),
                    ElementsAre("CreateSearch()", connect_profiles,
                                execute("(&(objectClass=shopProfile)(OrvoRole=7))", "[cn]"),
                                "CreateSearch()", connect_users,
                                execute("(& (objectClass=top)(OrvoRole=7)(!OrvoUserType = 0))")));
    });
}

TEST_FRESH(MembersHavingRole, OneProfileStandsInTheFilterByItself) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.finds = {profiles({u"sales"}), users_with_roles({}), users({})};
        having(members, -3);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("CreateSearch()", connect_profiles,
                                execute("(&(objectClass=shopProfile)(OrvoRole=-3))", "[cn]"),
                                "CreateSearch()", connect_users,
                                execute("(&(objectClass=top)(!OrvoUserType = 0)(ProfileCN=sales))",
                                        role_columns),
                                "CreateSearch()", connect_users,
                                execute("(& (objectClass=top)(OrvoRole=-3)(!OrvoUserType = 0))")));
    });
}

TEST_FRESH(MembersHavingRole, SeveralProfilesStandInAnOrWithBlanksBetween) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.finds = {profiles({u"sales", u"O'Hara's", u"a (b)"}), users_with_roles({}),
                            users({})};
        having(members, 7);
        EXPECT_EQ(journal_.take()[5],
                  execute("(&(objectClass=top)(!OrvoUserType = 0)(|(ProfileCN=sales) "
                          "(ProfileCN=O'Hara's) (ProfileCN=a (b))))",
                          role_columns));
    });
}

TEST_FRESH(MembersHavingRole, AProfilesRoleCountsForUsersWithoutRolesOfTheirOwnAlone) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.finds = {
            profiles({u"sales"}),
            users_with_roles({{u"empty", Variant()},
                              {u"null", Variant::null()},
                              {u"blank", u""},
                              {u"nolist", Values()},
                              {u"emptylist", Values{Variant()}},
                              {u"zero", std::int32_t{0}},
                              {u"own", std::int32_t{3}},
                              {u"several", Values{std::int32_t{3}, std::int32_t{7}}}}),
            users({u"several"})};
        EXPECT_THAT(names_in(having(members, 7)),
                    ElementsAre("empty", "null", "blank", "nolist", "emptylist", "several"));
    });
}

TEST_FRESH(MembersHavingRole, AUserFoundBothWaysIsListedTwice) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.finds = {profiles({u"sales"}), users_with_roles({{u"anna", Variant()}}),
                            users({u"anna"})};
        EXPECT_THAT(names_in(having(members, 7)), ElementsAre("anna", "anna"));
    });
}

TEST_FRESH(MembersHavingRole, TheResultHasFiveColumnsOfItsOwn) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.finds = {profiles({}), users({u"anna"})};
        const auto found = having(members, 7);
        const auto fields = call<&RecordSet::Fields>(found);
        std::vector<std::string> columns;
        for (std::int32_t i = 0; i < call<&Fields::Count>(fields); ++i) {
            const auto field = call<&Fields::Item>(fields, Variant(i));
            columns.push_back(to_utf8(call<&Field::Name>(field)) + " " +
                              std::to_string(call<&Field::Type>(field)) + " " +
                              std::to_string(call<&Field::DefinedSize>(field)));
        }
        EXPECT_THAT(columns, ElementsAre("BusinessPartnerID 3 4", "mail 202 255", "cn 202 255",
                                         "givenName 202 255", "sn 202 255"));
        constexpr std::int32_t may_be_null = 0x20;
        EXPECT_EQ(call<&Field::Attributes>(call<&Fields::Item>(fields, Variant(0))), may_be_null);
        EXPECT_EQ(field_value(found, u"BusinessPartnerID"), Variant(std::int32_t{7}));
        EXPECT_EQ(field_value(found, u"mail"), Variant(u"anna@x"));
        EXPECT_EQ(field_value(found, u"givenName"), Variant(u"Given"));
        EXPECT_EQ(field_value(found, u"sn"), Variant(u"Sur"));
        EXPECT_EQ(call<&RecordSet::RecordCount>(found), 1);
    });
}

TEST_FRESH(MembersHavingRole, APartnerThatIsNoNumberBecomesZeroAndIsLoggedAsTheErrorItIs) {
    const std::vector<Text> columns = {u"CN", u"BusinessPartnerID", u"mail", u"givenName", u"sn"};
    const auto entry = [](const std::string& number, const std::string& text,
                          const std::string& name) {
        return LogEntry{
            "LogMessage", "ADODB.Field",
            block(number, add_user, text,
                  "Invalid BusinessPartnerID for user " + name + " -- value set to 0 in resultset"),
            0};
    };
    const auto wrong_type = [&](const std::string& name) {
        return entry("D5D", "Application uses a value of the wrong type for the current operation.",
                     name);
    };
    const auto too_large = [&](const std::string& name) {
        return entry("80040E21",
                     "Multiple-step operation generated errors. Check each status value.", name);
    };
    bound_members_through_every_door([&](Behind<Members>& members) {
        directory_.finds = {profiles({}), records(columns, {{u"anna", u"none", u"", u"", u""},
                                                            {u"bert", u"4711", u"", u"", u""},
                                                            {u"carl", 5e9, u"", u"", u""}})};
        const auto found = having(members, 7);
        EXPECT_THAT(log_.take(), ElementsAre(wrong_type("anna"), too_large("carl")));
        EXPECT_EQ(field_value(found, u"BusinessPartnerID"), Variant(std::int32_t{0}));

        directory_.finds = {profiles({}),
                            records(columns, {{Values{u"carl", u"karl"}, u"none", u"", u"", u""}})};
        EXPECT_EQ(raised_by([&] { having(members, 7); }).number, 3421)
            << "of the name itself, which is no text";
        EXPECT_EQ(log_.take().front(), wrong_type("carl"));
        directory_.finds = {profiles({}), records(columns, {{Values(), u"none", u"", u"", u""}})};
        EXPECT_EQ(raised_by([&] { having(members, 7); }).number, 3421);
        EXPECT_EQ(log_.take().front(), wrong_type(""));
    });
}

TEST_FRESH(MembersHavingRole, APartnerThatIsNoNumberNeedsNoLog) {
    bound_members_through_every_door([&](Behind<Members>& members) {
        log_.throws = true;
        directory_.finds = {profiles({}),
                            records({u"CN", u"BusinessPartnerID", u"mail", u"givenName", u"sn"},
                                    {{u"anna", u"none", u"", u"", u""}})};
        EXPECT_EQ(field_value(having(members, 7), u"BusinessPartnerID"), Variant(std::int32_t{0}));
        EXPECT_EQ(log_.take().size(), 1u) << "the log was asked";
        log_.throws = false;
    });
}

TEST_FRESH(MembersHavingRole, EachRowHasTheValuesOfItsOwnUser) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.finds = {
            profiles({u"sales"}),
            records({u"sn", u"orvorole", u"givenName", u"mail", u"cn", u"BusinessPartnerID"},
                    {{u"A", Variant(), u"Anna", u"a@x", u"anna", std::int32_t{1}},
                     {u"B", Variant(), u"Bert", u"b@x", u"bert", std::int32_t{2}}}),
            records({u"CN", u"BusinessPartnerID", u"mail", u"givenName", u"sn"},
                    {{u"carl", std::int32_t{3}, u"c@x", u"Carl", u"C"},
                     {u"dora", std::int32_t{4}, u"d@x", u"Dora", u"D"}})};
        const auto found = having(members, 7);
        std::vector<std::string> rows;
        for (; !call<&RecordSet::IsEof>(found); call<&RecordSet::MoveNext>(found)) {
            std::string& row = rows.emplace_back();
            for (const char16_t* name : {u"BusinessPartnerID", u"mail", u"cn", u"givenName", u"sn"})
                row += shown(field_value(found, name)) + " ";
        }
        EXPECT_THAT(rows, ElementsAre("1 a@x anna Anna A ", "2 b@x bert Bert B ",
                                      "3 c@x carl Carl C ", "4 d@x dora Dora D "));
    });
}

TEST_FRESH(MembersHavingRole, AColumnThatIsMissingFailsAtTheFirstRowUnlessItIsThePartner) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        const auto without_partner = [] {
            return records({u"CN", u"mail", u"givenName", u"sn"},
                           {{u"anna", u"", u"", u""}, {u"bert", u"", u"", u""}});
        };
        log_.take();
        directory_.finds = {profiles({}), without_partner()};
        const auto found = having(members, 7);
        EXPECT_THAT(log_.take(),
                    testing::Each(testing::Field(
                        &LogEntry::message, testing::StartsWith("\r\nERROR 0xCC1\r\n METHOD: " +
                                                                std::string(add_user)))));
        EXPECT_EQ(field_value(found, u"BusinessPartnerID"), Variant(std::int32_t{0}));

        const std::vector<Text> without_name = {u"CN", u"BusinessPartnerID", u"mail", u"sn"};
        directory_.finds = {profiles({}), records(without_name, {})};
        EXPECT_THAT(names_in(having(members, 7)), IsEmpty());
        directory_.finds = {profiles({}),
                            records(without_name, {{u"anna", std::int32_t{1}, u"", u""}})};
        EXPECT_EQ(raised_by([&] { having(members, 7); }).number, 3265);
    });
}

TEST_FRESH(MembersHavingRole, CriteriaStandBehindTheUserPartUnchanged) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.finds = {profiles({u"sales"}), users_with_roles({}), users({})};
        Variant criteria = Values{u"NOT sn=a", u"mail=*"};
        Text sort;
        std::int16_t role = 7;
        members.call<&Members::GetOrvoMembersHavingRoleEx>(role, criteria, sort);
        const auto calls = journal_.take();
        EXPECT_EQ(calls[5], execute("(&(objectClass=top)(!OrvoUserType = 0)(NOT sn=a)(mail=*)"
                                    "(ProfileCN=sales))",
                                    role_columns));
        EXPECT_EQ(calls[8], execute("(& (objectClass=top)(OrvoRole=7)(!OrvoUserType = 0)"
                                    "(NOT sn=a)(mail=*))"));
    });
}

TEST_FRESH(MembersHavingRole, MissingCriteriaAreRefusedHereToo) {
    bound_members_through_every_door([](Behind<Members>& members) {
        Variant criteria = Variant::missing();
        Text sort;
        std::int16_t role = 7;
        expect_failure(raised_by([&] {
                           members.call<&Members::GetOrvoMembersHavingRoleEx>(role, criteria, sort);
                       }),
                       13, u"OrvoMembership", block("D", having_role_ex, type_mismatch));
    });
}

TEST_FRESH(MembersHavingRole, TheBookmarkStaysAsItWas) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.found = users({u"anna", u"bert"});
        members.call<&Members::GetOrvoUsers>(Variant(Object()), Text(), Variant(std::int16_t{2}));
        directory_.finds = {profiles({}), users({u"carl"})};
        having(members, 7);
        EXPECT_EQ(members.call<&Members::GetLastPageValue>(), u"bert!");
        directory_.finds = {profiles({}), users({})};
        having(members, 7);
        EXPECT_EQ(members.call<&Members::GetLastPageValue>(), u"bert!");
    });
}

TEST_FRESH(MembersHavingRole, SortFieldsSortTheMergedRows) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.finds = {profiles({}), users({u"bert", u"anna", u"carl"})};
        EXPECT_THAT(names_in(having(members, 7, u"cn DESC")), ElementsAre("carl", "bert", "anna"));
        directory_.finds = {profiles({}), users({})};
        EXPECT_THAT(names_in(having(members, 7, u"nonsense")), IsEmpty())
            << "nothing is sorted where there is nothing";
    });
}

TEST_FRESH(MembersHavingRole, RowsCannotBeSortedByAColumnThatIsNotThere) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        directory_.finds = {profiles({}), users({u"bert", u"anna"})};
        expect_failure(raised_by([&] { having(members, 7, u"nonsense"); }), 3265,
                       u"ADODB.Recordset",
                       block("CC1", having_role,
                             block("CC1", having_role_ex,
                                   "Item cannot be found in the collection corresponding to the "
                                   "requested name or ordinal.")));
    });
}

// Of two columns that fail in different ways, the one that is copied first tells which it is.
TEST_FRESH(MembersHavingRole, MailNameSurnameAndGivenNameAreCopiedInThisOrder) {
    struct Pair {
        const char16_t* list;     // its value is a list, which is no text: 3421
        const char16_t* missing;  // 3265
        std::int32_t number;
    };
    const Pair pairs[] = {
        {u"mail", u"cn", 3421}, {u"cn", u"mail", 3265},      {u"cn", u"sn", 3421},
        {u"sn", u"cn", 3265},   {u"sn", u"givenName", 3421}, {u"givenName", u"sn", 3265},
    };
    for (const auto& [list, missing, number] : pairs) {
        SCOPED_TRACE(to_utf8(Text(list) + u" before or behind " + missing));
        bound_members_through_every_door([&](Behind<Members>& members) {
            std::vector<Text> columns;
            std::vector<Variant> row;
            for (const char16_t* name :
                 {u"BusinessPartnerID", u"mail", u"cn", u"sn", u"givenName"}) {
                if (name == Text(missing)) continue;
                columns.push_back(name);
                row.push_back(name == Text(list) ? Variant(Values{u"a", u"b"}) : Variant(u"1"));
            }
            directory_.finds = {profiles({}), records(columns, {row})};
            EXPECT_EQ(raised_by([&] { having(members, 7); }).number, number);
        });
    }
}

TEST_FRESH(MembersHavingRole, FailuresPassThroughBothFrames) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        journal_.refuse_nth("Execute", 1, no_rights());
        expect_failure(
            raised_by([&] { having(members, 7); }), error_number(0x80072098), u"Its.Own",
            block("80072098", having_role, block("80072098", having_role_ex, "(50) no rights")));
        directory_.finds = {profiles({u"sales"})};
        journal_.refuse_nth("Execute", 2, no_rights());
        expect_failure(raised_by([&] { having(members, 7); }), error_number(0x80072098), u"Its.Own",
                       block("80072098", having_role,
                             block("80072098", having_role_ex,
                                   block("80072098", "OrvoMembership.Members.QueryMembersEx",
                                         "(50) no rights"))));
    });
}

// A record set that cannot be closed.
class StuckRecords final : public RecordSetObject {
public:
    void Close() override { throw Failure(3219, u"Its.Own", u"stuck"); }
};

}  // namespace

template <>
inline constexpr auto class_of<StuckRecords> = describe_class<RecordSet>("Test.StuckRecords");

namespace {

TEST_FRESH(MembersHavingRole, ARecordSetThatCannotBeClosedIsReportedUnderTheClosing) {
    const auto stuck = [] {
        const auto records = make<StuckRecords>();
        call<&Fields::Append>(call<&RecordSet::Fields>(records), u"cn", adVarWChar, 255,
                              adFldUnspecified, Variant::missing());
        call<&RecordSet::Open>(records, Variant::missing(), Variant::missing(), adOpenUnspecified,
                               adLockUnspecified, -1);
        return records.object();
    };
    const auto told = block("C93", having_role,
                            block("C93", having_role_ex,
                                  block("C93", "OrvoMembership.Members.CloseRecordSEt", "stuck")));
    bound_members_through_every_door([&](Behind<Members>& members) {
        directory_.finds = {stuck()};
        expect_failure(raised_by([&] { having(members, 7); }), 3219, u"Its.Own", told);
        directory_.finds = {profiles({u"sales"}), stuck()};
        expect_failure(raised_by([&] { having(members, 7); }), 3219, u"Its.Own", told);
        directory_.finds = {profiles({}), stuck()};
        expect_failure(raised_by([&] { having(members, 7); }), 3219, u"Its.Own", told);
    });
}

TEST_FRESH(MembersHavingRole, AProvidersRecordSetsAreClosed) {
    bound_members_through_every_door([this](Behind<Members>& members) {
        const Object found[] = {profiles({u"sales"}), users_with_roles({}), users({})};
        directory_.finds = {found[0], found[1], found[2]};
        having(members, 7);
        for (const Object& records : found)
            EXPECT_EQ(call<&RecordSet::State>(Ref<RecordSet>::from(records)), adStateClosed);
    });
}

}  // namespace
}  // namespace orvo
