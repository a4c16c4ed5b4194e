#include "suite/directory/schema/schema_files.h"

#include <gmock/gmock.h>

namespace orvo::directory {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

constexpr std::string_view shop = R"(# A shop's own attributes.
objectidentifier Shop 1.2.3
objectidentifier ShopAttribute Shop:1

AttributeType ( ShopAttribute:7 NAME ( 'shelf' 'rack' )
	DESC 'Where it lies; not (always) known'
    EQUALITY caseIgnoreMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15{32}
  SINGLE-VALUE X-ORIGIN 'shop' )
# attributetype ( a comment
  that goes on )
objectclass ( Shop:2.1 NAME 'article' AUXILIARY MUST (shelf$2.5.4.3) MAY sn )
)";

constexpr std::string_view base = R"(
attributetype ( 2.5.4.3 NAME ( 'cn' 'commonName' ) SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )
attributetype ( 2.5.4.4 NAME 'sn' SUP cn )
)";

Schema schema_of(const std::vector<std::string_view>& texts) {
    SchemaFiles files;
    for (const std::string_view text : texts) files.read("x.schema", text);
    return std::move(files).schema();
}

std::string refusal_of(std::string_view text) {
    SchemaFiles files;
    files.read("base.schema", base);
    try {
        files.read("shop.schema", text);
    } catch (const SchemaFileError& error) {
        return error.what();
    }
    return "taken";
}

TEST(SchemaFiles, AreReadWithTheirNumbersWrittenOut) {
    const Schema schema = schema_of({base, shop});
    EXPECT_THAT(schema.attribute_types, SizeIs(3));
    EXPECT_EQ(schema.attribute_types[2],
              "( 1.2.3.1.7 NAME ( 'shelf' 'rack' ) DESC 'Where it lies; not (always) known' "
              "EQUALITY caseIgnoreMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15{32} SINGLE-VALUE "
              "X-ORIGIN 'shop' )");
    EXPECT_EQ(schema.types.find("RACK")->oid, "1.2.3.1.7");
    EXPECT_TRUE(schema.types.find("shelf")->single_value);
    const ObjectClass* article = schema.classes.find("1.2.3.2.1");
    ASSERT_NE(article, nullptr);
    EXPECT_EQ(article->kind, ClassKind::auxiliary);
    EXPECT_THAT(article->required, ElementsAre("shelf", "2.5.4.3"));
    EXPECT_TRUE(schema.rules_of(*article).allows(*schema.types.find("sn")));
    EXPECT_FALSE(schema.rules_of(*article).required.empty());
}

TEST(SchemaFiles, MayHaveNumbersInQuotes) {
    EXPECT_THAT(schema_of({"attributetype ( '1.1' NAME 'a' SYNTAX "
                           "'1.3.6.1.4.1.1466.115.121.1.15{32}' )"})
                    .attribute_types,
                ElementsAre("( 1.1 NAME 'a' SYNTAX 1.3.6.1.4.1.1466.115.121.1.15{32} )"));
}

TEST(SchemaFiles, MayEndTheirLinesInTwoCharacters) {
    std::string text(base);
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
        text.insert(at, "\r");
    EXPECT_THAT(schema_of({text}).attribute_types, SizeIs(2));
}

TEST(SchemaFiles, MayDefineAgainWhatIsThereWithTheSameMeaning) {
    EXPECT_THAT(schema_of({base, shop, shop}).attribute_types, SizeIs(3));
    EXPECT_EQ(refusal_of("attributetype ( 2.5.4.3 NAME ( 'CommonName' 'cn' ) DESC 'other words'\n"
                         "  SYNTAX 1.3.6.1.4.1.1466.115.121.1.15{64} )"),
              "taken");
    EXPECT_EQ(refusal_of("attributetype ( 2.5.4.3 NAME ( 'cn' 'commonName' ) SINGLE-VALUE\n"
                         "  SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )"),
              "shop.schema, line 1: '2.5.4.3' is defined already, otherwise");
    EXPECT_EQ(refusal_of("attributetype ( 1.2.3 NAME 'CN' SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )"),
              "shop.schema, line 1: 'cn' is defined already, otherwise");
}

TEST(SchemaFiles, AreContinuedFromASchema) {
    SchemaFiles files(schema_of({base}));
    files.read("shop.schema", shop);
    EXPECT_THAT(std::move(files).schema().attribute_types, SizeIs(3));
}

TEST(SchemaFiles, AreRefusedWithTheLineAndTheReason) {
    const std::vector<std::pair<std::string_view, std::string_view>> cases = {
        {"\n\naccess to * by * read", "3: 'access' is not understood"},
        {"  attributetype ( 1.1 NAME 'a' SUP cn",
         "1: the definition of an attribute type cannot "
         "be read"},
        {"attributetype ( 1.1 NAME 'a SUP cn )",
         "1: the definition of an attribute type cannot be read"},
        {"objectclass 1.1 NAME 'a'", "1: the definition of an object class cannot be read"},
        {"# x\nattributetype ( Nowhere:1 NAME 'a' SUP cn )",
         "2: 'Nowhere:1' is no object identifier"},
        {"attributetype ( 1..1 NAME 'a' SUP cn )", "1: '1..1' is no object identifier"},
        {"attributetype ( 1.1 NAME 'a b' SUP cn )", "1: 'a b' is no name"},
        {"attributetype ( 1.1 NAME 'a' SUP nobody )", "1: attribute type 'nobody' is not defined"},
        {"attributetype ( 1.1 NAME 'a' )", "1: the attribute type has neither syntax nor superior"},
        {"attributetype ( 1.1 NAME 'a' SYNTAX 1.2.3 )", "1: syntax '1.2.3' is not known"},
        {"attributetype ( 1.1 NAME 'a' SYNTAX '1.3.6.1.4.1.1466.115.121.1.15 SINGLE-VALUE' )",
         "1: syntax '1.3.6.1.4.1.1466.115.121.1.15 SINGLE-VALUE' is not known"},
        {"attributetype ( '1.1 OBSOLETE' NAME 'a' SUP cn )",
         "1: '1.1 OBSOLETE' is no object identifier"},
        {"attributetype ( 1.1 NAME 'a' SUP cn SINGLEVALUE x )",
         "1: 'SINGLEVALUE' is not understood"},
        {"objectclass ( 1.1 NAME 'a' SUP nobody )", "1: object class 'nobody' is not defined"},
        {"objectclass ( 1.1 NAME 'a' MUST nobody )", "1: attribute type 'nobody' is not defined"},
        {"objectclass ( 1.1 NAME 'a' MAY ( cn $ nobody ) )",
         "1: attribute type 'nobody' is not defined"},
        {"objectidentifier 1x 1.2", "1: '1x' is no name"},
        {"objectidentifier x y:1", "1: 'y:1' is no object identifier"},
        {"objectidentifier x 1.2\nobjectidentifier X 1.3", "2: 'X' is defined already, otherwise"},
    };
    for (const auto& [text, reason] : cases)
        EXPECT_EQ(refusal_of(text), "shop.schema, line " + std::string(reason)) << text;
}

TEST(SchemaFiles, CountNothingOfAFileThatIsRefused) {
    SchemaFiles files;
    files.read("base.schema", base);
    EXPECT_THROW(files.read("x", std::string(shop) + "\nnonsense"), SchemaFileError);
    EXPECT_THAT(std::move(files).schema().attribute_types, SizeIs(2));
}

}  // namespace
}  // namespace orvo::directory
