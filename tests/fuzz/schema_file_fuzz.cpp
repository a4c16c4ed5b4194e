// Schema files. The input is one, for a schema that has a few definitions already.

#include <algorithm>
#include <vector>

#include "suite/directory/schema/schema_files.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::directory;

constexpr std::string_view base = R"(
attributetype ( 2.5.4.3 NAME ( 'cn' 'commonName' ) EQUALITY caseIgnoreMatch
  SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )
attributetype ( 2.5.4.4 NAME 'sn' SUP cn )
objectclass ( 2.5.6.0 NAME 'top' ABSTRACT MUST cn )
)";

std::string file_of(const Schema& schema) {
    std::string text;
    for (const std::string& one : schema.attribute_types) text += "attributetype " + one + "\n";
    for (const std::string& one : schema.object_classes) text += "objectclass " + one + "\n";
    return text;
}

void require_same(const Schema& one, const Schema& other, const char* property) {
    require(
        one.attribute_types == other.attribute_types && one.object_classes == other.object_classes,
        property);
}

void check_members(const Schema& schema) {
    require(schema.types.all().size() == schema.attribute_types.size() &&
                schema.classes.all().size() == schema.object_classes.size(),
            "every definition of a file counts");
    for (const AttributeType& type : schema.types.all()) {
        require(schema.types.find(type.oid) == &type, "a type is found by its number");
        for (const std::string& name : type.names)
            require(schema.types.find(name) == &type, "a type is found by its names");
        require(!type.syntax_oid.empty(), "a type has a syntax");
    }
    for (const ObjectClass& described : schema.classes.all()) {
        require(schema.classes.find(described.name()) == &described, "a class is found");
        const ClassRules& rules = schema.rules_of(described);
        require(rules.is_or_inherits(described), "a class is one of its classes");
        for (const AttributeType* type : rules.required)
            require(rules.allows(*type), "what a class requires it allows");
        require(rules.allowed.size() >= described.required.size() + described.allowed.size(),
                "a class knows its attributes");
    }
}

}  // namespace

void schema_file_properties(std::string_view input) {
    SchemaFiles files;
    files.read("base.schema", base);
    SchemaFiles twice = files;
    bool is_read = true;
    try {
        files.read("x.schema", input);
    } catch (const SchemaFileError& error) {
        require_place(error.what(), "x.schema, line ", line_count(input));
        is_read = false;
    }
    const Schema schema = std::move(files).schema();
    check_members(schema);
    SchemaFiles written;
    written.read("written.schema", file_of(schema));
    require_same(std::move(written).schema(), schema, "definitions are read back");
    require_same(SchemaFiles(schema).schema(), schema, "a schema goes on from itself");
    if (!is_read) {
        require_same(std::move(twice).schema(), schema, "nothing of a refused file counts");
        return;
    }
    twice.read("x.schema", input);
    twice.read("x.schema", input);
    require_same(std::move(twice).schema(), schema, "a file that is read twice adds nothing");
}

}  // namespace orvo::fuzz
