#include "suite/directory/schema/attribute_values.h"

#include <gtest/gtest.h>

#include "platform/values/failure.h"
#include "tests/support/raised.h"

namespace orvo::directory {
namespace {

AttributeType type_with(Syntax syntax) {
    AttributeType type;
    type.syntax = syntax;
    return type;
}

const AttributeType text = type_with(Syntax::text);
const AttributeType integer = type_with(Syntax::integer);
const AttributeType boolean = type_with(Syntax::boolean);
const AttributeType time = type_with(Syntax::time);
const AttributeType bytes = type_with(Syntax::bytes);

Variant decoded(const AttributeType& type, const std::string& value) {
    return decode_value(type.syntax, value);
}

using Encoded = std::vector<std::string>;

std::int32_t number_of_refusal(const AttributeType& type, const Variant& value) {
    try {
        encode_values(&type, value);
    } catch (const Failure& failure) {
        return failure.number;
    }
    return 0;
}

TEST(DecodedValues, AreTextByDefault) {
    EXPECT_EQ(decoded(text, "Dani\xC3\xABl"), Variant(u"Dani\u00EBl"));
    EXPECT_EQ(decoded(text, "12"), Variant(u"12"));
}

TEST(DecodedValues, OfIntegersAreAsNarrowAsTheyFit) {
    EXPECT_EQ(decoded(integer, "0"), Variant(std::int32_t(0)));
    EXPECT_EQ(decoded(integer, "-2147483648"), Variant(std::int32_t(-2147483647 - 1)));
    EXPECT_EQ(decoded(integer, "2147483647"), Variant(std::int32_t(2147483647)));
    EXPECT_EQ(decoded(integer, "2147483648"), Variant(Currency{21474836480000}));
    EXPECT_EQ(decoded(integer, "922337203685477"), Variant(Currency{9223372036854770000}));
    EXPECT_EQ(decoded(integer, "-922337203685477"), Variant(Currency{-9223372036854770000}));
    EXPECT_EQ(decoded(integer, "922337203685478"), Variant(u"922337203685478"));
    EXPECT_EQ(decoded(integer, "99999999999999999999"), Variant(u"99999999999999999999"));
}

TEST(DecodedValues, OfBooleansTimesAndBytesHaveTheirTypes) {
    EXPECT_EQ(decoded(boolean, "TRUE"), Variant(true));
    EXPECT_EQ(decoded(boolean, "FALSE"), Variant(false));
    EXPECT_EQ(decoded(time, "20240229120000Z"), Variant(date_from_parts({2024, 2, 29, 12, 0, 0})));
    EXPECT_EQ(decoded(bytes, std::string("\0\xFF", 2)),
              Variant::bytes(std::string_view("\0\xFF", 2)));
}

TEST(DecodedValues, ThatAreNotOfTheirSyntaxStayText) {
    EXPECT_EQ(decoded(integer, "twelve"), Variant(u"twelve"));
    EXPECT_EQ(decoded(integer, ""), Variant(u""));
    EXPECT_EQ(decoded(boolean, "yes"), Variant(u"yes"));
    EXPECT_EQ(decoded(time, "yesterday"), Variant(u"yesterday"));
}

TEST(DecodedValues, AreAnArrayFromZero) {
    const Encoded stored = {"1", "3"};
    const Values values = decode_values(&integer, stored);
    EXPECT_EQ(values.lower_bound(), 0);
    EXPECT_EQ(values, (Values{std::int32_t(1), std::int32_t(3)}));
}

TEST(DecodedValues, OfAMissingAttributeAreOneEmptyElement) {
    EXPECT_EQ(decode_values(&integer, {}), (Values{Variant()}));
    EXPECT_EQ(decode_values(nullptr, {}), (Values{Variant()}));
}

TEST(DecodedValues, OfAnUnknownAttributeAreTextOrBytes) {
    const Encoded stored = {"plain", "\xFF\xFE"};
    EXPECT_EQ(decode_values(nullptr, stored), (Values{u"plain", Variant::bytes("\xFF\xFE")}));
}

TEST(EncodedValues, OfTextAreUtf8) {
    EXPECT_EQ(encode_values(&text, u"Dani\u00EBl"), (Encoded{"Dani\xC3\xABl"}));
    EXPECT_EQ(encode_values(nullptr, u"x"), (Encoded{"x"}));
    EXPECT_EQ(encode_values(&text, std::int32_t(12)), (Encoded{"12"}));
    EXPECT_EQ(encode_values(&text, Currency{125000}), (Encoded{"12.5"}));
}

TEST(EncodedValues, OfIntegersAreWholeNumbers) {
    EXPECT_EQ(encode_values(&integer, std::int16_t(-7)), (Encoded{"-7"}));
    EXPECT_EQ(encode_values(&integer, std::int64_t(9007199254740993)),
              (Encoded{"9007199254740993"}));
    EXPECT_EQ(encode_values(&integer, Currency{9223372036854770000}), (Encoded{"922337203685477"}));
    EXPECT_EQ(encode_values(&integer, 12.0), (Encoded{"12"}));
    EXPECT_EQ(encode_values(&integer, true), (Encoded{"1"}));
    EXPECT_EQ(encode_values(&integer, false), (Encoded{"0"}));
    EXPECT_EQ(encode_values(&integer, u" +0012 "), (Encoded{"12"}));
    EXPECT_EQ(encode_values(&integer, u"-0"), (Encoded{"0"}));
    EXPECT_EQ(encode_values(&integer, u"99999999999999999999"), (Encoded{"99999999999999999999"}));
    EXPECT_EQ(encode_values(&integer, u"1e3"), (Encoded{"1000"}));
}

TEST(EncodedValues, ThatNoIntegerCanHoldAreRefused) {
    EXPECT_EQ(number_of_refusal(integer, u"twelve"), 13);
    EXPECT_EQ(number_of_refusal(integer, 12.5), 13);
    EXPECT_EQ(number_of_refusal(integer, u"12.5"), 13);
    EXPECT_EQ(number_of_refusal(integer, Currency{125000}), 13);
    EXPECT_EQ(number_of_refusal(integer, 1e300), 6);
}

TEST(EncodedValues, OfBooleansAreTrueAndFalse) {
    EXPECT_EQ(encode_values(&boolean, true), (Encoded{"TRUE"}));
    EXPECT_EQ(encode_values(&boolean, std::int32_t(0)), (Encoded{"FALSE"}));
    EXPECT_EQ(encode_values(&boolean, u"True"), (Encoded{"TRUE"}));
    EXPECT_EQ(number_of_refusal(boolean, u"perhaps"), 13);
}

TEST(EncodedValues, OfTimesHaveTheFractionThatTheServerWants) {
    AttributeType with_fraction = time;
    with_fraction.time_form = TimeForm::with_fraction;
    EXPECT_EQ(encode_values(&with_fraction, date_from_parts({2024, 2, 29, 12, 0, 0})),
              (Encoded{"20240229120000.0Z"}));
    EXPECT_EQ(encode_values(&with_fraction, u"202402291200+0100"), (Encoded{"20240229110000.0Z"}));
    EXPECT_EQ(encode_values(&with_fraction, u"2/29/2024 12:00:00"), (Encoded{"20240229120000.0Z"}));
}

TEST(EncodedValues, OfTimesAreGeneralizedTimes) {
    EXPECT_EQ(encode_values(&time, date_from_parts({2024, 2, 29, 12, 0, 0})),
              (Encoded{"20240229120000Z"}));
    EXPECT_EQ(encode_values(&time, u"202402291200+0100"), (Encoded{"202402291200+0100"}));
    EXPECT_EQ(encode_values(&time, u"2/29/2024 12:00:00"), (Encoded{"20240229120000Z"}));
    EXPECT_EQ(encode_values(&time, u"000001010000Z"), (Encoded{"000001010000Z"}))
        << "what locks an account for good";
    EXPECT_EQ(number_of_refusal(time, u"000101010000Z"), 13);
    EXPECT_EQ(number_of_refusal(time, u"yesterday"), 13);
}

TEST(EncodedValues, ThatAreRefusedNameTheirAttribute) {
    const auto refusal = [](const char* name, Syntax syntax, const Variant& value) {
        AttributeType type = type_with(syntax);
        type.names = {name};
        return raised_by([&] { encode_values(&type, value); }).description;
    };
    EXPECT_EQ(refusal("OrvoRole", Syntax::integer, u"much"),
              u"Type mismatch: OrvoRole takes whole numbers");
    EXPECT_EQ(refusal("OrvoRole", Syntax::integer, Values{u"1", 1.5}),
              u"Type mismatch: OrvoRole takes whole numbers");
    EXPECT_EQ(refusal("ShowExplain", Syntax::boolean, u"perhaps"),
              u"Type mismatch: ShowExplain takes true or false");
    EXPECT_EQ(refusal("OutOfOfficeOn", Syntax::time, u"yesterday"),
              u"Type mismatch: OutOfOfficeOn takes times");
}

TEST(EncodedValues, OfBytesAreTheBytes) {
    const std::string content("\0\xFF\x80", 3);
    EXPECT_EQ(encode_values(&bytes, Variant::bytes(content)), (Encoded{content}));
    EXPECT_EQ(encode_values(&bytes, Values{Variant::bytes("a"), Variant::bytes("b")}),
              (Encoded{"a", "b"}));
    EXPECT_EQ(encode_values(&bytes, u"text"), (Encoded{"text"}));
}

TEST(EncodedValues, OfAnArrayAreSeveral) {
    EXPECT_EQ(encode_values(&integer, Values{std::int16_t(1), u"3"}), (Encoded{"1", "3"}));
    Values from_one(1, 2);
    from_one[1] = u"a";
    from_one[2] = u"b";
    EXPECT_EQ(encode_values(&text, from_one), (Encoded{"a", "b"}));
}

TEST(EncodedValues, AreNoneWhereNothingIsGiven) {
    EXPECT_EQ(encode_values(&text, Variant()), Encoded());
    EXPECT_EQ(encode_values(&text, u""), Encoded());
    EXPECT_EQ(encode_values(&integer, u""), Encoded());
    EXPECT_EQ(encode_values(&text, Values{}), Encoded());
    EXPECT_EQ(encode_values(&text, Values{Variant()}), Encoded());
    EXPECT_EQ(encode_values(&text, Values{u""}), Encoded());
    EXPECT_EQ(encode_values(&bytes, Variant::bytes("")), Encoded());
}

TEST(EncodedValues, LeaveOutEmptyOnes) {
    EXPECT_EQ(encode_values(&text, Values{u"a", Variant(), u"", u"b"}), (Encoded{"a", "b"}));
}

TEST(EncodedValues, WithHalfOfASurrogatePairAreRefused) {
    constexpr auto no_such_value = error_number(0x8007200B);
    EXPECT_EQ(number_of_refusal(text, u"a\xD83D"), no_such_value);
    EXPECT_EQ(number_of_refusal(text, Values{u"a", u"\xDE00"}), no_such_value);
    EXPECT_EQ(number_of_refusal(bytes, u"\xD83D"), no_such_value);
    EXPECT_EQ(number_of_refusal(integer, u"1\xD83D"), 13);
    EXPECT_EQ(number_of_refusal(time, u"20240229120000Z\xD83D"), 13);
    try {
        encode_values(nullptr, u"\xD83D");
        ADD_FAILURE() << "nothing was raised";
    } catch (const Failure& failure) {
        EXPECT_EQ(
            failure.description,
            u"(21) The value does not have the attribute's syntax. A text cannot hold half of "
            u"a surrogate pair.");
    }
    EXPECT_EQ(encode_values(&text, u"\xD83D\xDE00"), (Encoded{"\xF0\x9F\x98\x80"}));
}

TEST(EncodedValues, OfNullAreRefused) {
    EXPECT_EQ(number_of_refusal(text, Variant::null()), 94);
    EXPECT_EQ(number_of_refusal(text, Values{u"a", Variant::null()}), 94);
}

}  // namespace
}  // namespace orvo::directory
