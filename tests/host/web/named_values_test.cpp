#include "host/web/sessions/named_values.h"

#include <gtest/gtest.h>

#include "platform/interfaces/hosted.h"
#include "platform/values/failure.h"
#include "platform/values/values.h"

namespace orvo::web {

// Objects that answer their default value: one for its own thread, one for all.
class Bound {
public:
    Text Value() {
        ++readings;
        return u"bound";
    }
    static inline int readings = 0;
};
class Shared : public Bound {};
class Speechless {
public:
    Text Name() { return u"speechless"; }
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto table_of<web::Bound> =
    describe<web::Bound>("IBound", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2cf1",
                         get<&web::Bound::Value>("Value").as_default());
template <>
inline constexpr auto table_of<web::Speechless> = describe<web::Speechless>(
    "ISpeechless", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2cf9", get<&web::Speechless::Name>("Name"));
template <>
inline constexpr auto class_of<web::Speechless> =
    describe_class<web::Speechless>("Test.Speechless");
template <>
inline constexpr auto class_of<web::Bound> = describe_class<web::Bound>("Test.Bound");
template <>
inline constexpr auto class_of<web::Shared> = describe_class<web::Bound>("Test.Shared").shared();
}  // namespace orvo

namespace orvo::web {
namespace {

TEST(NamedValues, KeepNamesWithoutRegardToCaseInTheirOrder) {
    NamedValues values;
    EXPECT_TRUE(values.get(u"none").is_empty());
    values.put(u"Second", 2);
    values.put(u"first", u"one");
    values.put(u"SECOND", 22);
    EXPECT_EQ(values.get(u"second"), Variant(22));
    EXPECT_EQ(values.names(), (std::vector<Text>{u"Second", u"first"}));
    values.remove(u"seconD");
    EXPECT_EQ(values.count(), 1u);
    EXPECT_EQ(values.name_at(0), u"first");
    EXPECT_EQ(values.get(u"FIRST"), Variant(u"one"));
    values.remove_all();
    EXPECT_EQ(values.count(), 0u);
}

TEST(NamedValues, TellRoughlyHowMuchTheyHold) {
    NamedValues values;
    values.put(u"a", Text(1000, u'x'));
    values.put(u"b", Values{Text(1000, u'y'), 1});
    EXPECT_GT(values.size(), 4000u);
    EXPECT_LT(values.size(), 4400u);
    values.put(u"A", u"x");
    EXPECT_LT(values.size(), 2400u);
    values.remove(u"b");
    EXPECT_LT(values.size(), 300u);
    values.remove_all();
    EXPECT_EQ(values.size(), 0u);
}

Text refusal_of(const Variant& value) {
    try {
        require_keepable(value, u"Session", u"cart");
        return u"kept";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, 5);
        return failure.description;
    }
}

TEST(WhatMayBeKept, IsPlainValuesAndObjectsMadeForSharing) {
    const Variant kept[] = {{},
                            Variant::null(),
                            u"text",
                            1,
                            2.5,
                            true,
                            Currency{10000},
                            Date{1},
                            Variant::bytes("abc"),
                            Values{1, u"two", Values{3}},
                            Object(),
                            make<Shared>().object()};
    for (const Variant& value : kept) EXPECT_EQ(refusal_of(value), u"kept");
}

TEST(WhatMayBeKept, IsNoObjectOfOneThread) {
    constexpr TextView refusal =
        u"Session(\"cart\") cannot keep this object: it belongs to the page that made it. Keep "
        u"texts, numbers, dates or arrays of these, and make the object anew on each page.";
    const Variant bound = make<Bound>().object();
    EXPECT_EQ(refusal_of(bound), refusal);
    EXPECT_EQ(refusal_of(Values{1, Values{bound}}), refusal);
}

TEST(WhatMayBeKept, IsToldWithoutACallOfTheObject) {
    Bound::readings = 0;
    EXPECT_EQ(refusal_of(make<Shared>().object()), u"kept");
    EXPECT_NE(refusal_of(make<Bound>().object()), u"kept");
    EXPECT_EQ(Bound::readings, 0);
}

TEST(WhatMayBeKept, IsTheDefaultValueOfAnObjectThatIsPut) {
    const Variant shared = make<Shared>().object();
    EXPECT_EQ(keepable(shared, u"Session", u"x"), shared);
    EXPECT_EQ(keepable(make<Bound>().object(), u"Session", u"x"), Variant(u"bound"));
    EXPECT_EQ(keepable(u"text", u"Session", u"x"), Variant(u"text"));
    EXPECT_THROW(keepable(make<Speechless>().object(), u"Session", u"x"), Failure);
    EXPECT_THROW(keepable(Values{make<Bound>().object()}, u"Session", u"x"), Failure);
}

}  // namespace
}  // namespace orvo::web
