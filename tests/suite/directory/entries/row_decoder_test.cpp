#include "suite/directory/entries/row_decoder.h"

#include <gmock/gmock.h>

#include "platform/values/failure.h"
#include "platform/values/values.h"
#include "tests/suite/directory/expect_failure.h"

namespace orvo::directory {
namespace {

using testing::ElementsAre;

AttributeTypes types() {
    const std::vector<std::string> descriptions = {
        "( 2.5.4.3 NAME ( 'cn' 'commonName' ) SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )",
        "( 1.2.3.1 NAME 'role' SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 )",
        "( 1.2.3.2 NAME 'active' SYNTAX 1.3.6.1.4.1.1466.115.121.1.7 )",
        "( 1.2.3.3 NAME 'photo' SYNTAX 1.3.6.1.4.1.1466.115.121.1.40 )"};
    return AttributeTypes::from_descriptions(descriptions);
}

std::vector<Variant> row(const std::vector<std::string>& columns, const EntryData& entry) {
    const AttributeTypes known = types();
    return RowDecoder(columns, known).row(entry);
}

TEST(RowDecoder, GivesNoValueOneValueOrTheArrayOfSeveral) {
    EXPECT_THAT(row({"role", "cn", "active"},
                    {"sn=a", {{"cn", {"a", "b"}}, {"role", {"3"}}, {"photo", {"x"}}}}),
                ElementsAre(Variant(std::int32_t(3)), Variant(Values{u"a", u"b"}), Variant()));
}

TEST(RowDecoder, GivesTheAttributeThatNamesTheEntryAsItIsInTheName) {
    const EntryData entry{"commonName=B\\2C c,o=Shop", {{"CN", {"a", "b, c"}}, {"sn", {"d"}}}};
    EXPECT_THAT(row({"sn", "cn", "2.5.4.3", "cn;lang-de"}, entry),
                ElementsAre(Variant(u"d"), Variant(u"B, c"), Variant(u"B, c"), Variant()));
    EXPECT_THAT(row({"cn"}, {"cn=a", {}}), ElementsAre(Variant(u"a"))) << "it came with the name";
    EXPECT_THAT(row({"role"}, {"role=7", {{"role", {"07", "8"}}}}),
                ElementsAre(Variant(std::int32_t(7))));
    EXPECT_THAT(row({"cn"}, {"", {{"cn", {"a", "b"}}}}), ElementsAre(Variant(Values{u"a", u"b"})));
}

TEST(RowDecoder, TypesValuesByTheSchema) {
    EXPECT_THAT(
        row({"role", "active", "photo", "nickname", "key"}, {"cn=a",
                                                             {{"role", {"1", "5000000000"}},
                                                              {"active", {"TRUE"}},
                                                              {"photo", {"\xFF"}},
                                                              {"nickname", {"J\xC3\xB6"}},
                                                              {"key", {"\xFF\xFE"}}}}),
        ElementsAre(Variant(Values{std::int32_t(1), Currency{50000000000000}}), Variant(true),
                    Variant::bytes("\xFF"), Variant(u"J\u00F6"), Variant::bytes("\xFF\xFE")));
}

TEST(RowDecoder, FindsAttributesByAnyOfTheirNames) {
    const EntryData entry{"cn=a", {{"cn", {"a"}}, {"cn;lang-de", {"b"}}, {"photo;binary", {"x"}}}};
    EXPECT_THAT(row({"commonName", "2.5.4.3", "CN", "PHOTO", "cn;LANG-DE", "cn;lang-fr"}, entry),
                ElementsAre(Variant(u"a"), Variant(u"a"), Variant(u"a"), Variant::bytes("x"),
                            Variant(u"b"), Variant()));
}

TEST(RowDecoder, ServesEntriesWithOtherAttributes) {
    const AttributeTypes known = types();
    RowDecoder decoder({"cn", "role"}, known);
    EXPECT_THAT(decoder.row({"cn=a", {{"cn", {"a"}}}}), ElementsAre(Variant(u"a"), Variant()));
    EXPECT_THAT(decoder.row({"cn=b", {{"role", {"2"}}, {"cn", {"b"}}}}),
                ElementsAre(Variant(u"b"), Variant(std::int32_t(2))));
    EXPECT_THAT(decoder.row({"sn=c", {}}), ElementsAre(Variant(), Variant()));
}

TEST(RowDecoder, AColumnThatIsAskedForTwiceIsFilledTwice) {
    const AttributeTypes known = types();
    RowDecoder decoder({"role", "cn", "ROLE"}, known);
    EXPECT_THAT(decoder.row({"cn=a", {{"cn", {"a"}}, {"role", {"2"}}}}),
                ElementsAre(Variant(std::int32_t(2)), Variant(u"a"), Variant(std::int32_t(2))));
}

TEST(ColumnNames, AreAnArrayOrOneText) {
    EXPECT_THAT(column_names(Values{u"cn", u"Mail"}), ElementsAre(u"cn", u"Mail"));
    EXPECT_THAT(column_names(u"cn"), ElementsAre(u"cn"));
    EXPECT_THAT(column_names(u"cn, Mail,sn"), ElementsAre(u"cn", u"Mail", u"sn"));
    EXPECT_THAT(column_names(Values{u"cn", u"CN", u"cn"}), ElementsAre(u"cn", u"CN", u"cn"));
}

TEST(ColumnNames, AreRefusedWhereTheyCannotBeColumns) {
    const auto refused = [](const Variant& attributes) {
        const Failure failure = failure_of([&] { column_names(attributes); });
        EXPECT_EQ(failure.number, error_number(0x8007203F));
        return failure.description;
    };
    EXPECT_EQ(refused(Values{u"cn", u""}),
              u"(89) A setting or argument is not valid. The name of an attribute is empty.");
    for (const Variant& nothing : {Variant(), Variant(Values{})})
        EXPECT_EQ(refused(nothing),
                  u"(89) A setting or argument is not valid. No attributes are asked for.");
    EXPECT_EQ(failure_of([] { column_names(std::int32_t(1)); }).number, 13);
    EXPECT_EQ(failure_of([] { column_names(Values{Variant::null()}); }).number, 94);
}

}  // namespace
}  // namespace orvo::directory
