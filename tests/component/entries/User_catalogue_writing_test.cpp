#include <set>

#include "tests/component/entries/given_privileges.h"
#include "tests/component/entries/user_catalogue_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

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

}  // namespace
}  // namespace orvo
