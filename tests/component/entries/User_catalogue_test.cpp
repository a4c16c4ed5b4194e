#include <set>

#include "component/entries/UserPrivileges.h"
#include "tests/component/entries/user_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

// The catalogue once more, written down on its own, so that no row changes unnoticed.

enum class Type { text, boolean, int16, int32, currency, date, whole };
enum class Special { none, no_value_is_text, empty_is_zero, list };

struct Expected {
    const char* property;
    Type type;
    const char* attribute;
    Special special = Special::none;
};
// clang-format off
constexpr Expected catalogue[] = {
    {"PhoneNumber", Type::text, "PhoneNumber"},
    {"Fax", Type::text, "facsimiletelephonenumber"},
    {"Modem", Type::text, "Modem"},
    {"Country", Type::text, "c"},
    {"Position", Type::text, "Position"},
    {"ShowExplain", Type::boolean, "ShowExplain"},
    {"OutOfOfficeOn", Type::boolean, "OutOfOfficeOn"},
    {"OutOfOfficeApprover", Type::text, "OutOfOfficeApprover"},
    {"CreditCardType", Type::int16, "CreditCardType"},
    {"ManagerCN", Type::text, "ManagerCN"},
    {"CreditCardExpiryDate", Type::date, "CreditCardExpiryDate"},
    {"CreditCardNr", Type::text, "CreditCardNr"},
    {"ReqPrefix", Type::text, "ReqPrefix"},
    {"SpendLimit", Type::currency, "SpendLimit"},
    {"AdminOffice", Type::text, "AdminOffice"},
    {"PurOffice", Type::text, "PurOffice"},
    {"DeliveryAddressID", Type::int32, "DeliveryAddressID"},
    {"BillToBusinessPartnerID", Type::int32, "BillToBusinessPartnerID"},
    {"Roles", Type::whole, "OrvoRole"},
    {"CompanyName", Type::text, "CompanyName"},
    {"LocalAdminProfileCN", Type::text, "LocalAdminProfileCN"},
    {"LanguageID", Type::text, "LanguageID"},
    {"Locale", Type::int16, "Locale"},
    {"BusinessPartnerID", Type::int32, "BusinessPartnerID"},
    {"OrvoUserType", Type::int16, "OrvoUserType"},
    {"BPType", Type::int16, "BPType", Special::empty_is_zero},
    {"EMailAddress", Type::text, "mail", Special::no_value_is_text},
    {"LastName", Type::text, "sn"},
    {"FirstName", Type::text, "givenName"},
    {"OrvoCatalogIDs", Type::whole, "OrvoCatalogIDS", Special::list},
    {"OrvoAddressIDs", Type::whole, "OrvoAddressIDs", Special::list},
    {"AskbookVisibility", Type::whole, "AskbookVisibility", Special::list},
    {"OrvoRoles", Type::whole, "OrvoRole", Special::list},
    {"EmployeeNumber", Type::text, "EmployeeNumber"},
    {"ILSServer", Type::text, "ILSServer"},
    {"ManagerEMail", Type::text, "Manager"},
    {"OrvoDashboardIDs", Type::whole, "OrvoDashboardIDs", Special::list},
    {"ExcludedVexIDs", Type::whole, "ExcludedVexIDs"},
    {"ProfileCN", Type::text, "ProfileCN"},
    {"OrvoBillAddress", Type::int32, "OrvoBillAddress"},
    {"OrvoShipAddress", Type::int32, "OrvoShipAddress"},
    {"PropertyGroupID", Type::int32, "PropertyGroupID"},
    {"WhReqPrefix", Type::text, "WhReqPrefix"},
    {"ChargeLines", Type::boolean, "ChargeLines"},
    {"SubstituteBuyer", Type::text, "SubstituteBuyer"},
    {"LimitforRFQ", Type::currency, "LimitforRFQ"},
    {"LimitforContract", Type::currency, "LimitforContract"},
    {"BuyerManager", Type::text, "BuyerManager"},
    {"ProjectRole", Type::whole, "ProjectRole"},
    {"ProjectUserType", Type::int16, "ProjectUserType"},
    {"ApproverLimit", Type::currency, "ApproverLimit"},
    {"ApproverManager", Type::text, "ApproverManager"},
    {"CompanyNumber", Type::text, "CompanyNumber"},
    {"FinancialCompanyAdmin", Type::text, "FinancialCompanyAdmin"},
    {"FinancialCompanyCardUser", Type::text, "FinancialCompanyCardUser"},
    {"CardUserManager", Type::text, "CardUserManager"},
    {"OneTimeUser", Type::boolean, "OneTimeUser"},
    {"CostCenter", Type::text, "CostCenter"},
    {"OnBehalfOf", Type::boolean, "OnBehalfOf"},
    {"OnBehalfOfAdminOffice", Type::whole, "OnBehalfOfAdminOffice", Special::list},
    {"OnBehalfOfRequisitioner", Type::whole, "OnBehalfOfRequisitioner", Special::list},
};
// clang-format on

static_assert(std::size(catalogue) == std::size(user_catalogue));
static_assert(slot_of<&User::get_property<0>> == 13, "PhoneNumber");
static_assert(slot_of<&User::put_property<0>> == 14);
static_assert(slot_of<&User::get_property<property_row("OnBehalfOfRequisitioner")>> == 133);
static_assert(slot_of<&User::put_property<property_row("OnBehalfOfRequisitioner")>> == 134);
static_assert(slot_of<&User::CN> == 135);
static_assert(slot_of<&User::GUID> == 136);
static_assert(slot_of<&User::get_Profile> == 137);
static_assert(slot_of<&User::NTUser> == 138);
static_assert(slot_of<&User::NTPassword> == 139);
static_assert(slot_of<&User::get_user_type<0>> == 140, "RegisteredUser");
static_assert(slot_of<&User::put_user_type<4>> == 149, "NewMember");
static_assert(slot_of<&User::InvoiceUser> == 150);
static_assert(slot_of<&User::put_InvoiceUser> == 151);
static_assert(slot_of<&User::get_role<0>> == 152);

template <std::size_t... row>
void for_each_row(auto&& body, std::index_sequence<row...>) {
    (body.template operator()<row>(), ...);
}
void for_each_property(auto&& body) {
    for_each_row(body, std::make_index_sequence<std::size(user_catalogue)>());
}

// What a getter makes of a stored value: a value, or the number of a failure.
struct Outcome {
    Variant value;
    int error = 0;
    Outcome(const Variant& value) : value(value) {}
    static Outcome raises(int number) {
        Outcome outcome{Variant()};
        outcome.error = number;
        return outcome;
    }
};

struct Stored {
    Variant values;
    Outcome text, boolean, int16, int32, currency, date;
};

Variant i2(int number) { return static_cast<std::int16_t>(number); }
Variant i4(int number) { return std::int32_t{number}; }
Variant money(std::int64_t whole) { return Currency{whole * 10000}; }
Variant day(double days) { return Date{days}; }

// What each type reads from what a directory may hold.
std::vector<Stored> stored_values() {
    const Outcome overflow = Outcome::raises(6), subscript = Outcome::raises(9),
                  mismatch = Outcome::raises(13), null = Outcome::raises(94);
    const Variant yes = true, no = false;
    return {
        // clang-format off
        // values                         text            boolean   int16     int32      currency           date
        {Values{Variant()},               {u""},          no,       i2(0),    i4(0),     money(0),          day(0)},
        {Values{u""},                     {u""},          mismatch, mismatch, mismatch,  mismatch,          mismatch},
        {Values{u"0"},                    {u"0"},         no,       i2(0),    i4(0),     money(0),          mismatch},
        {Values{u"-1"},                   {u"-1"},        yes,      i2(-1),   i4(-1),    money(-1),         mismatch},
        {Values{u"1"},                    {u"1"},         yes,      i2(1),    i4(1),     money(1),          mismatch},
        {Values{u"2.5"},                  {u"2.5"},       yes,      i2(2),    i4(2),     {Currency{25000}}, mismatch},
        {Values{u"32768"},                {u"32768"},     yes,      overflow, i4(32768), money(32768),      mismatch},
        {Values{u"99999999999"},          {u"99999999999"}, yes,    overflow, overflow,  money(99999999999), mismatch},
        {Values{u"99999999999999999999"}, {u"99999999999999999999"}, yes, overflow, overflow, overflow,     mismatch},
        {Values{u"abc"},                  {u"abc"},       mismatch, mismatch, mismatch,  mismatch,          mismatch},
        {Values{u"true"},                 {u"true"},      yes,      mismatch, mismatch,  mismatch,          mismatch},
        {Values{u"2003-01-02"},           {u"2003-01-02"}, mismatch, mismatch, mismatch, mismatch,          day(37623)},
        {Values{u"7", u"8"},              {u"7"},         yes,      i2(7),    i4(7),     money(7),          mismatch},
        {Values{i4(0)},                   {u"0"},         no,       i2(0),    i4(0),     money(0),          day(0)},
        {Values{i4(-1)},                  {u"-1"},        yes,      i2(-1),   i4(-1),    money(-1),         day(-1)},
        {Values{i4(70000)},               {u"70000"},     yes,      overflow, i4(70000), money(70000),      day(70000)},
        {Values{yes},                     {u"True"},      yes,      i2(-1),   i4(-1),    money(-1),         day(-1)},
        {Values{day(37623.75)},           {u"1/2/2003 6:00:00 PM"}, yes, overflow, i4(37624), {Currency{376237500}}, day(37623.75)},
        {Values{Variant::null()},         null,           null,     null,     null,      null,              null},
        {Values(),                        subscript,      subscript, subscript, subscript, subscript,       subscript},
        {u"no array",                     mismatch,       mismatch, mismatch, mismatch,  mismatch,          mismatch},
        {Variant(),                       mismatch,       mismatch, mismatch, mismatch,  mismatch,          mismatch},
        // clang-format on
    };
}

// The whole value's rules.
Outcome whole_of(const Variant& values, Special special) {
    if (special != Special::list) return values;
    if (!values.is_array()) return Outcome::raises(13);
    const Values list = values.to<Values>();
    if (list.count() == 0) return Outcome::raises(9);
    for (const Variant& minus_one : {Variant(u"-1"), i4(-1), Variant(true)})
        if (list[0] == minus_one) return Variant(Values{i2(0)});
    return values;
}

Outcome outcome_of(const Expected& row, const Stored& stored) {
    const bool is_empty_array = stored.values == Variant(Values());
    const bool is_empty_text = stored.values == Variant(Values{u""});
    if (row.special == Special::no_value_is_text && is_empty_array) return {u""};
    if (row.special == Special::empty_is_zero && is_empty_text) return i2(0);
    switch (row.type) {
        case Type::text:
            return stored.text;
        case Type::boolean:
            return stored.boolean;
        case Type::int16:
            return stored.int16;
        case Type::int32:
            return stored.int32;
        case Type::currency:
            return stored.currency;
        case Type::date:
            return stored.date;
        case Type::whole:
            break;
    }
    return whole_of(stored.values, row.special);
}

std::string text_of_error(int number) {
    switch (number) {
        case 6:
            return "Overflow";
        case 9:
            return "Subscript out of range";
        case 13:
            return "Type mismatch";
        default:
            return "Invalid use of Null";
    }
}

class UserCatalogue : public UserTest {
protected:
    // jsmith through all doors; bound when made.
    struct Users {
        User direct;
        Ref<User> made = make<User>();
        Users() {
            bind(direct);
            Text name = u"jsmith", account, password;
            call<&User::BindAs>(made, name, account, password);
        }
        template <std::size_t row>
        Variant get(Door door) {
            switch (door) {
                case Door::direct:
                    return Variant(direct.get_property<row>());
                case Door::slots:
                    return Variant(call<&User::get_property<row>>(made));
                default:
                    return late::get(made.object(), from_utf8(catalogue[row].property));
            }
        }
        template <std::size_t row>
        void put(Door door, const Variant& given) {
            if (door == Door::names)
                return late::put(made.object(), from_utf8(catalogue[row].property), given);
            auto value = natural<row>(given);
            if (door == Door::direct)
                direct.put_property<row>(value);
            else
                call<&User::put_property<row>>(made, value);
            EXPECT_EQ(Variant(value), given) << "the caller's variable stays as it is";
        }

    private:
        template <std::size_t row>
        static auto natural(const Variant& value) {
            if constexpr (std::is_same_v<detail::property_t<row>, Variant>)
                return value;
            else
                return value.to<detail::property_t<row>>();
        }
    };

    void store(const char* attribute, const Variant& values) {
        directory_.answer_of(jsmith, from_utf8(attribute), values);
    }
    template <std::size_t row>
    static std::string source() {
        return std::string("OrvoMembership.User.") + catalogue[row].property;
    }
};

TEST_FRESH(UserCatalogue, EachPropertyHasItsNameAndAttribute) {
    for (std::size_t row = 0; row < std::size(catalogue); ++row) {
        EXPECT_STREQ(user_catalogue[row].name, catalogue[row].property);
        EXPECT_EQ(to_utf8(user_catalogue[row].attribute), catalogue[row].attribute);
    }
}

TEST_FRESH(UserCatalogue, NamesThatDifferFromTheirAttributes) {
    load_settings();
    Users users;
    journal_.clear();
    late::get(users.made.object(), u"ManagerEMail");
    late::get(users.made.object(), u"Fax");
    late::get(users.made.object(), u"Country");
    late::get(users.made.object(), u"OrvoCatalogIDs");
    late::get(users.made.object(), u"Roles");
    late::get(users.made.object(), u"OrvoRoles");
    late::get(users.made.object(), u"EMailAddress");
    late::get(users.made.object(), u"LastName");
    late::get(users.made.object(), u"FirstName");
    EXPECT_THAT(
        journal_.take(),
        ElementsAre("GetValues(Manager)", "GetValues(facsimiletelephonenumber)", "GetValues(c)",
                    "GetValues(OrvoCatalogIDS)", "GetValues(OrvoRole)", "GetValues(OrvoRole)",
                    "GetValues(mail)", "GetValues(sn)", "GetValues(givenName)"));
}

TEST_FRESH(UserCatalogue, EachGetterMakesItsTypeOfWhatIsStored) {
    load_settings();
    Users users;
    const auto all = stored_values();
    for_each_property([&]<std::size_t row>() {
        const Expected& property = catalogue[row];
        for (const Stored& stored : all) {
            SCOPED_TRACE(std::string(property.property) + " of " + shown(stored.values));
            store(property.attribute, stored.values);
            const Outcome outcome = outcome_of(property, stored);
            for (const Door door : every_door) {
                SCOPED_TRACE(testing::PrintToString(door));
                forget();
                if (outcome.error == 0) {
                    EXPECT_EQ(users.get<row>(door), outcome.value)
                        << shown(users.get<row>(door)) << " instead of " << shown(outcome.value);
                    EXPECT_EQ(journal_.take().front(),
                              std::string("GetValues(") + property.attribute + ")");
                } else {
                    expect_failure(raised_by([&] { users.get<row>(door); }), outcome.error,
                                   u"OrvoMembership",
                                   block(to_utf8(hexadecimal(outcome.error)), source<row>(),
                                         text_of_error(outcome.error)));
                    EXPECT_THAT(log_.take_sources(), ElementsAre("OrvoMembership"));
                }
            }
        }
        store(property.attribute, Values{Variant()});
    });
}

// What each setter hands to the provider: given, stored; nothing stored where it clears.
std::vector<std::pair<Variant, std::optional<Variant>>> assignments_of(Type type) {
    const auto one = [](const Variant& value) { return Variant(Values{value}); };
    switch (type) {
        case Type::text:
            return {{u"x", one(u"x")}, {u"", {}}, {u" ", one(u" ")}, {u"0", one(u"0")}};
        case Type::boolean:
            return {{true, one(i2(1))}, {false, one(i2(0))}};
        case Type::int16:
            return {{i2(0), one(i2(0))}, {i2(-1), one(i2(-1))}, {i2(32767), one(i2(32767))}};
        case Type::int32:
            return {{i4(0), one(i4(0))}, {i4(-1), one(i4(-1))}, {i4(70000), one(i4(70000))}};
        case Type::currency:
            return {{money(0), one(money(0))}, {Currency{-12345}, one(Currency{-12345})}};
        case Type::date:
            return {{day(0), one(day(0))}, {day(37623.5), one(day(37623.5))}};
        case Type::whole:
            break;
    }
    const Variant list = Values{i4(2), u"x"};
    return {{list, list}, {Values(), Values()}, {Values{i2(-1)}, Values{i2(-1)}},
            {u"x", u"x"}, {i4(0), i4(0)},       {Variant(), Variant()}};
}

TEST_FRESH(UserCatalogue, EachSetterWritesAOneElementArrayOfItsTypeAndTextsClearWhenEmpty) {
    // Listed attributes show, when read back, what the provider was given with its types.
    std::set<Text> names;
    for (const Expected& property : catalogue) names.insert(lower(from_utf8(property.attribute)));
    set_user_privilege_source([&](const Text&) {
        Values list(0, 0);
        for (const Text& name : names) list.push_back(name);
        return UserPrivileges{.readable = list, .writable = list};
    });
    load_settings();
    Users users;
    for_each_property([&]<std::size_t row>() {
        const Expected& property = catalogue[row];
        for (const auto& [given, written] : assignments_of(property.type)) {
            SCOPED_TRACE(std::string(property.property) + " = " + shown(given));
            for (const Door door : every_door) {
                SCOPED_TRACE(testing::PrintToString(door));
                journal_.clear();
                users.put<row>(door, given);
                if (!written) {
                    EXPECT_THAT(journal_.take(), ElementsAre(std::string("ClearValues(") +
                                                             property.attribute + ")"));
                    continue;
                }
                EXPECT_THAT(journal_.take(),
                            ElementsAre(std::string("SetValues(") + property.attribute + ", " +
                                        shown(*written) + ")"));
                Text name = from_utf8(property.attribute);
                const Variant kept = door == Door::direct
                                         ? users.direct.GetAttribValue(name)
                                         : call<&User::GetAttribValue>(users.made, name);
                EXPECT_EQ(kept, *written) << shown(kept);
            }
        }
    });
}

TEST_FRESH(UserCatalogue, ABooleanWrittenAsTrueReadsBackAsTrue) {
    set_user_privilege_source([](const Text&) {
        const Values list{u"profilecn", u"orvousertype", u"showexplain"};
        return UserPrivileges{.readable = list, .writable = list};
    });
    load_settings();
    Users users;
    constexpr std::size_t row = property_row("ShowExplain");
    for (const Door door : every_door) {
        for (const bool value : {true, false}) {
            users.put<row>(door, value);
            EXPECT_EQ(users.get<row>(door), Variant(value));
        }
    }
}

TEST_FRESH(UserCatalogue, ARefusedReadOrWriteShowsTheChainOfMethodsForEachProperty) {
    load_settings();
    Users users;
    for (const char* operation : {"GetValues", "SetValues"})
        journal_.refuse(operation, no_rights());
    for_each_property([&]<std::size_t row>() {
        SCOPED_TRACE(catalogue[row].property);
        const std::string info = std::string("Attribute is: ") + catalogue[row].attribute;
        const auto [given, written] = assignments_of(catalogue[row].type).front();
        for (const Door door : every_door) {
            expect_failure(raised_by([&] { users.get<row>(door); }), error_number(0x80072098),
                           u"Its.Own",
                           block("80072098", source<row>(),
                                 block("80072098", "OrvoMembership.User.GetAttribValue",
                                       "(50) no rights", info)));
            expect_failure(raised_by([&] { users.put<row>(door, given); }),
                           error_number(0x80072098), u"Its.Own",
                           block("80072098", source<row>(),
                                 block("80072098", "OrvoMembership.User.SetAttribValue",
                                       "(50) no rights", info)));
        }
    });
}

TEST_FRESH(UserCatalogue, AnUnboundUserHasNoProperties) {
    const Ref<User> user = make<User>();
    for_each_property([&]<std::size_t row>() {
        SCOPED_TRACE(catalogue[row].property);
        const Failure failure =
            raised_by([&] { late::get(user.object(), from_utf8(catalogue[row].property)); });
        EXPECT_EQ(failure.number, 91);
    });
}

TEST_FRESH(UserCatalogue, NamesAreFoundWithoutRegardToCaseAndValuesConverted) {
    load_settings();
    Users users;
    store("SpendLimit", Values{u"12.5"});
    EXPECT_EQ(late::get(users.made.object(), u"spendlimit"), Variant(Currency{125000}));
    journal_.clear();
    late::put(users.made.object(), u"CREDITCARDTYPE", u"7");
    late::put(users.made.object(), u"showexplain", i4(5));
    late::put(users.made.object(), u"PhoneNumber", i4(0));
    EXPECT_THAT(journal_.take(),
                ElementsAre("SetValues(CreditCardType, [7])", "SetValues(ShowExplain, [1])",
                            "SetValues(PhoneNumber, [0])"));
    EXPECT_EQ(raised_by([&] { late::put(users.made.object(), u"CN", u"x"); }).number, 438);
}

TEST_FRESH(UserCatalogue, ARefusedAttributeIsNoArrayAndFailsItsGetterButNotAPlainList) {
    set_user_privilege_source([](const Text&) {
        return UserPrivileges{.readable = {u"profilecn", u"orvousertype"}, .writable = {}};
    });
    load_settings();
    Users users;
    expect_failure(raised_by([&] { late::get(users.made.object(), u"EMailAddress"); }), 13,
                   u"OrvoMembership",
                   block("D", "OrvoMembership.User.EMailAddress", type_mismatch));
    EXPECT_EQ(late::get(users.made.object(), u"ExcludedVexIDs"), Variant(u""));
}

// The profile's values in place of the user's own.

class UserFallback : public UserCatalogue {
protected:
    UserFallback() {
        give_profile();
        answer_profile(u"LanguageID", Values{u"DE"});
        answer_profile(u"Locale", Values{u"1031"});
        answer_profile(u"OrvoCatalogIDs", Values{i4(-1), i4(5)});
        answer_profile(u"OrvoDashboardIDs", Values{i4(-1), i4(6)});
        answer_profile(u"AskbookVisibility", Values{i4(-1), i4(7)});
        answer_profile(u"OrvoRole", Values{i4(-1), i4(8)});
    }
    struct Row {
        const char* property;
        const char* attribute;
        Variant profiles;
        const char* profiles_attribute;
    };
    // Those that fall back when their first element equals 0.
    static std::vector<Row> zero_rows() {
        return {{"LanguageID", "LanguageID", u"DE", "LanguageID"},
                {"Locale", "Locale", i2(1031), "Locale"},
                {"OrvoCatalogIDs", "OrvoCatalogIDS", Values{i4(-1), i4(5)}, "OrvoCatalogIDs"},
                {"OrvoDashboardIDs", "OrvoDashboardIDs", Values{i4(-1), i4(6)}, "OrvoDashboardIDs"},
                {"OrvoRoles", "OrvoRole", Values{i4(-1), i4(8)}, "OrvoRole"}};
    }
    static std::vector<Variant> zeros() {
        return {Values{Variant()}, Values{u""},   Values{u"0"},        Values{i4(0)},
                Values{u"0.0"},    Values{false}, Values{i4(0), i4(3)}};
    }
};

TEST_FRESH(UserFallback, AnUnsetValueReadsAsTheProfilesUnchanged) {
    load_settings();
    Users users;
    for (const Row& row : zero_rows()) {
        for (const Variant& unset : zeros()) {
            SCOPED_TRACE(std::string(row.property) + " of " + shown(unset));
            store(row.attribute, unset);
            journal_.clear();
            EXPECT_EQ(late::get(users.made.object(), from_utf8(row.property)), row.profiles);
            EXPECT_THAT(journal_.take(),
                        ElementsAre(std::string("GetValues(") + row.attribute + ")",
                                    std::string("GetValues(") + row.profiles_attribute + ")"));
        }
    }
    EXPECT_EQ(users.direct.get_property<property_row("LanguageID")>(), u"DE");
    EXPECT_EQ((call<&User::get_property<property_row("Locale")>>(users.made)), 1031);
}

TEST_FRESH(UserFallback, ASetValueIsTheUsersOwn) {
    load_settings();
    Users users;
    for (const Row& row : zero_rows()) {
        SCOPED_TRACE(row.property);
        store(row.attribute, Values{u"7"});
        journal_.clear();
        const Variant value = late::get(users.made.object(), from_utf8(row.property));
        EXPECT_EQ(shown(value.is_array() ? element(value, 0) : value), "7");
        EXPECT_THAT(journal_.take(), ElementsAre(std::string("GetValues(") + row.attribute + ")"));
    }
    store("LanguageID", Values{u"EN"});
    EXPECT_EQ(late::get(users.made.object(), u"LanguageID"), Variant(u"EN"));
    store("Locale", Values{u"-1"});
    EXPECT_EQ(late::get(users.made.object(), u"Locale"), i2(-1));
    store("OrvoRole", Values{u"-1", u"2"});
    EXPECT_EQ(late::get(users.made.object(), u"OrvoRoles"), Variant(Values{i2(0), u"2"}));
}

TEST_FRESH(UserFallback, WithoutAProfileAnUnsetValueReadsAsItIs) {
    directory_.answer_of(jsmith, u"ProfileCN", Values{Variant()});
    load_settings();
    Users users;
    for (const Row& row : zero_rows()) {
        SCOPED_TRACE(row.property);
        store(row.attribute, Values{i4(0), i4(3)});
        const Variant value = late::get(users.made.object(), from_utf8(row.property));
        if (value.is_array())
            EXPECT_EQ(value, Variant(Values{i4(0), i4(3)}));
        else
            EXPECT_EQ(value.to<Text>(), u"0");
    }
}

TEST_FRESH(UserFallback, AskbookVisibilityFallsBackOnlyWhereThereIsNoValue) {
    load_settings();
    Users users;
    const auto visibility = [&](const Variant& own) {
        store("AskbookVisibility", own);
        return late::get(users.made.object(), u"AskbookVisibility");
    };
    EXPECT_EQ(visibility(Values{Variant()}), Variant(Values{i4(-1), i4(7)}));
    EXPECT_EQ(visibility(Values{u""}), Variant(Values{i4(-1), i4(7)}));
    EXPECT_EQ(visibility(Values{i4(0)}), Variant(Values{i4(0)}));
    EXPECT_EQ(visibility(Values{u"0"}), Variant(Values{u"0"}));
    EXPECT_EQ(visibility(Values{i4(-1), i4(2)}), Variant(Values{i2(0), i4(2)}));
}

TEST_FRESH(UserFallback, RolesNeitherFallBackNorReplaceMinusOne) {
    load_settings();
    Users users;
    EXPECT_EQ(late::get(users.made.object(), u"Roles"), Variant(Values{Variant()}));
    store("OrvoRole", Values{i4(-1)});
    EXPECT_EQ(late::get(users.made.object(), u"Roles"), Variant(Values{i4(-1)}));
}

TEST_FRESH(UserFallback, ListsWithoutAFallbackKeepTheirZero) {
    load_settings();
    Users users;
    for (const char16_t* name :
         {u"OrvoAddressIDs", u"OnBehalfOfAdminOffice", u"OnBehalfOfRequisitioner"}) {
        directory_.answer_of(jsmith, name, Values{i4(0), i4(2)});
        EXPECT_EQ(late::get(users.made.object(), name), Variant(Values{i4(0), i4(2)}));
        directory_.answer_of(jsmith, name, Values{i4(-1), i4(-1)});
        EXPECT_EQ(late::get(users.made.object(), name), Variant(Values{i2(0), i4(-1)}));
        directory_.answer_of(jsmith, name, Values{i4(2), i4(-1)});
        EXPECT_EQ(late::get(users.made.object(), name), Variant(Values{i4(2), i4(-1)}));
    }
}

TEST_FRESH(UserFallback, AProfileThatFailsShowsTheChainOfMethods) {
    load_settings();
    Users users;
    answer_profile(u"Locale", Values{u"German"});
    expect_failure(raised_by([&] { late::get(users.made.object(), u"Locale"); }), 13,
                   u"OrvoMembership",
                   block("D", "OrvoMembership.User.Locale",
                         block("D", "OrvoMembership.Profile.Locale", type_mismatch)));
}

// Computed properties.

class UserComputed : public UserCatalogue {};

TEST_FRESH(UserComputed, CommonNameAndIdentifierAreReadFromTheEntry) {
    directory_.answer_of(jsmith, u"cn", Values{u"jsmith", u"john"});
    directory_.answer_of(jsmith, u"OrvoGUID", Values{u"{1-2}"});
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(user.call<&User::CN>(), u"jsmith");
        EXPECT_EQ(user.call<&User::GUID>(), u"{1-2}");
        EXPECT_THAT(journal_.take(), ElementsAre("GetValues(cn)", "GetValues(OrvoGUID)"));
        journal_.refuse_nth("GetValues", 1, no_rights());
        expect_failure(raised_by([&] { user.call<&User::GUID>(); }), error_number(0x80072098),
                       u"Its.Own",
                       block("80072098", "OrvoMembership.User.GUID",
                             block("80072098", "OrvoMembership.User.GetAttribValue",
                                   "(50) no rights", "Attribute is: OrvoGUID")));
    });
}

TEST_FRESH(UserComputed, TheAccountsNameAndPasswordAreReadFromTheAccountsEntryAsText) {
    directory_.answer_of(u"an=0,ou=Accounts,o=Shop", u"OrvoNTUser", Values{i4(42)});
    directory_.answer_of(u"an=0,ou=Accounts,o=Shop", u"OrvoNTPassword", Values{u"nt-code"});
    bound_through_every_door([this](Behind<User>& user) {
        EXPECT_EQ(user.call<&User::NTUser>(), u"42");
        EXPECT_EQ(user.call<&User::NTPassword>(), u"nt-code");
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(OrvoNTUser)", "GetValues(OrvoNTPassword)"));
        journal_.refuse_nth("GetValues", 1, no_rights());
        expect_failure(
            raised_by([&] { user.call<&User::NTPassword>(); }), error_number(0x80072098),
            u"Its.Own",
            block("80072098", "OrvoMembership.User.NTPassword",
                  block("80072098", "OrvoMembership.Account.get_NTPassword", "(50) no rights")));
    });
}

TEST_FRESH(UserComputed, OfAnUnboundUserTheAccountIsNotSetAndTheProfileIsNothing) {
    through_every_door([](Behind<User>& user) {
        expect_failure(raised_by([&] { user.call<&User::NTUser>(); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.User.NTUser", not_set));
        expect_failure(raised_by([&] { user.call<&User::NTPassword>(); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.User.NTPassword", not_set));
        EXPECT_FALSE(user.call<&User::get_Profile>());
    });
}

struct NamedType {
    const char* property;
    int type;
};
constexpr NamedType named_types[] = {
    {"RegisteredUser", 1}, {"GuestUser", 2}, {"IsLocalAdmin", 3}, {"IsAdmin", 4}, {"NewMember", 0},
};

TEST_FRESH(UserComputed, EachUserTypePropertyAsksForItsType) {
    load_settings();
    Users users;
    for (int stored = 0; stored <= 5; ++stored) {
        store("OrvoUserType", Values{i4(stored)});
        for (const auto& [property, type] : named_types) {
            SCOPED_TRACE(std::string(property) + " of " + std::to_string(stored));
            EXPECT_EQ(late::get(users.made.object(), from_utf8(property)), Variant(stored == type));
        }
        EXPECT_EQ(users.direct.get_user_type<0>(), stored == 1);
        EXPECT_EQ((call<&User::get_user_type<4>>(users.made)), stored == 0);
    }
}

TEST_FRESH(UserComputed, SettingAUserTypePropertySetsItsTypeWhateverIsAssigned) {
    load_settings();
    Users users;
    for_each_row(
        [&]<std::size_t row>() {
            SCOPED_TRACE(named_types[row].property);
            EXPECT_STREQ(user_types[row].name, named_types[row].property);
            const std::string written =
                "SetValues(OrvoUserType, [" + std::to_string(named_types[row].type) + "])";
            for (const bool value : {true, false}) {
                journal_.clear();
                users.direct.put_user_type<row>(value);
                call<&User::put_user_type<row>>(users.made, value);
                late::put(users.made.object(), from_utf8(named_types[row].property), value);
                EXPECT_THAT(journal_.take(), ElementsAre(written, written, written));
            }
        },
        std::make_index_sequence<std::size(user_types)>());
}

TEST_FRESH(UserComputed, AFailingUserTypePropertyShowsTheChainOfMethods) {
    load_settings();
    Users users;
    store("OrvoUserType", Values{u"admin"});
    expect_failure(raised_by([&] { late::get(users.made.object(), u"IsAdmin"); }), 13,
                   u"OrvoMembership",
                   block("D", "OrvoMembership.User.IsAdmin",
                         block("D", "OrvoMembership.User.OrvoUserType", type_mismatch)));
}

TEST_FRESH(UserComputed, InvoiceUserIsTheNegationOfCreditCardUser) {
    load_settings();
    Users users;
    const Object user = users.made.object();
    store("OrvoRole", Values{i4(1), i4(2)});
    EXPECT_FALSE(users.direct.InvoiceUser());
    EXPECT_FALSE(call<&User::InvoiceUser>(users.made));
    EXPECT_EQ(late::get(user, u"InvoiceUser"), Variant(false));
    journal_.clear();
    late::put(user, u"InvoiceUser", true);
    EXPECT_EQ(journal_.take().back(), "SetValues(OrvoRole, [2])");
    late::put(user, u"InvoiceUser", false);
    EXPECT_THAT(journal_.take(), ElementsAre("GetValues(OrvoRole)")) << "it is held already";
    store("OrvoRole", Values{i4(2)});
    EXPECT_TRUE(users.direct.InvoiceUser());
    EXPECT_TRUE(call<&User::InvoiceUser>(users.made));
    EXPECT_EQ(late::get(user, u"InvoiceUser"), Variant(true));
    journal_.clear();
    users.direct.put_InvoiceUser(false);
    EXPECT_EQ(journal_.take().back(), "SetValues(OrvoRole, [2, 1])");
    call<&User::put_InvoiceUser>(users.made, false);
    EXPECT_EQ(journal_.take().back(), "SetValues(OrvoRole, [2, 1])");
}

}  // namespace
}  // namespace orvo
