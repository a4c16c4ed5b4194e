// The product's own schema, compared with what a real server says of the same types and classes.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

#include "suite/directory/names/ascii.h"
#include "suite/directory/schema/schema_files.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory {
namespace {

std::vector<std::string> sorted(std::vector<std::string> names) {
    for (std::string& name : names) name = ascii::lower(name);
    std::ranges::sort(names);
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

TEST(TheProductsSchema, IsThatOfAServerWithTheSameFiles) {
    PrivateSlapd slapd({.password_policy = true});
    LdapProbe probe(slapd.url(), slapd.root_dn(), slapd.root_password());
    const Schema server = Schema::from_descriptions(probe.values("cn=Subschema", "attributeTypes"),
                                                    probe.values("cn=Subschema", "objectClasses"));
    ASSERT_FALSE(server.types.empty());
    for (const AttributeType& type : Schema::of_product().types.all()) {
        SCOPED_TRACE(type.name());
        const AttributeType* other = server.types.find(type.oid);
        ASSERT_NE(other, nullptr);
        EXPECT_EQ(type.names, other->names);
        EXPECT_EQ(type.syntax_oid, other->syntax_oid);
        EXPECT_EQ(type.equality, other->equality);
        EXPECT_EQ(type.ordering, other->ordering);
        EXPECT_EQ(type.substrings, other->substrings);
        EXPECT_EQ(type.single_value, other->single_value);
        EXPECT_EQ(type.is_operational, other->is_operational);
        EXPECT_EQ(type.no_user_modification, other->no_user_modification);
    }
    for (const ObjectClass& described : Schema::of_product().classes.all()) {
        SCOPED_TRACE(described.name());
        const ObjectClass* other = server.classes.find(described.oid);
        ASSERT_NE(other, nullptr);
        EXPECT_EQ(described.names, other->names);
        EXPECT_EQ(described.kind, other->kind);
        EXPECT_EQ(described.superiors, other->superiors);
        EXPECT_EQ(sorted(described.required), sorted(other->required));
        EXPECT_EQ(sorted(described.allowed), sorted(other->allowed));
    }
}

// What a server defines itself and its files use.
constexpr const char* built_in = R"(
attributetype ( 2.5.4.1 NAME ( 'aliasedObjectName' 'aliasedEntryName' )
  EQUALITY distinguishedNameMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.12 SINGLE-VALUE )
attributetype ( 1.3.6.1.1.1.1.0 NAME 'uidNumber' EQUALITY integerMatch
  ORDERING integerOrderingMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 SINGLE-VALUE )
attributetype ( 1.3.6.1.1.1.1.1 NAME 'gidNumber' EQUALITY integerMatch
  ORDERING integerOrderingMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 SINGLE-VALUE )
)";

TEST(TheServersSchemaFiles, AreRead) {
    const std::filesystem::path folder = "/etc/ldap/schema";
    ASSERT_TRUE(std::filesystem::exists(folder / "core.schema"));
    SchemaFiles files;
    files.read("standard.schema", content_of(ORVO_SOURCE_DIR "/schema/standard.schema"));
    files.read("built-in", built_in);
    for (const char* name : {"core", "cosine", "nis", "inetorgperson", "misc", "dyngroup",
                             "openldap", "duaconf", "java", "corba", "collective"}) {
        const std::string file = std::string(name) + ".schema";
        EXPECT_NO_THROW(files.read(file, content_of(folder / file))) << name;
    }
    files.read("orvo.schema", content_of(ORVO_SOURCE_DIR "/schema/orvo.schema"));
    const Schema schema = std::move(files).schema();
    ASSERT_NE(schema.classes.find("inetOrgPerson"), nullptr);
    EXPECT_TRUE(schema.rules_of(*schema.classes.find("inetOrgPerson"))
                    .allows(*schema.types.find("telephoneNumber")));
    EXPECT_EQ(schema.types.find("manager")->syntax_oid, "1.3.6.1.4.1.1466.115.121.1.12");
}

}  // namespace
}  // namespace orvo::directory
