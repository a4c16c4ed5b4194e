#include "tests/component/entries/user_catalogue_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

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

}  // namespace
}  // namespace orvo
