#include "component/containers/record_fields.h"
#include "tests/component/containers/containers_test.h"

namespace orvo {
namespace {

constexpr const char* having_role = "OrvoMembership.Members.GetOrvoMembersHavingRole";
constexpr const char* having_role_ex = "OrvoMembership.Members.GetOrvoMembersHavingRoleEx";
constexpr const char* add_user = "OrvoMembership.Members.AddUserToResultSet";
constexpr const char* connect_profiles =
    "Connect(dir01:389, ou=Profiles,o=Shop, cn=web,o=Shop, web-code)";

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
