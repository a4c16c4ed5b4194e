#pragma once

// Reads schema files as OpenLDAP has them: attributetype, objectclass and objectidentifier, a
// definition going on in lines that begin with a blank, comments behind "#".

#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "suite/directory/schema/descriptions.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory {

// "shop.schema, line 12: ..."
class SchemaFileError : public std::runtime_error {
public:
    SchemaFileError(std::string_view file, int line, const std::string& reason)
        : std::runtime_error(std::string(file) + ", line " + std::to_string(line) + ": " + reason) {
    }
};

// Several files, one after another; a later one may use what an earlier one defines. A definition
// that is there already, with the same meaning, is passed over; one with another meaning is
// refused.
class SchemaFiles {
public:
    SchemaFiles() = default;
    // Further files for a schema that is there already.
    explicit SchemaFiles(const Schema& schema);

    // Raises SchemaFileError; nothing of the file counts then. `name` is for its sentences.
    void read(std::string_view name, std::string_view text);

    Schema schema() &&;

private:
    struct Definitions {
        std::unordered_map<std::string, std::string> numbers;  // of objectidentifier, by name
        std::vector<std::string> type_texts;
        std::vector<std::string> class_texts;
        // By number and by each name, in lower case.
        std::unordered_map<std::string, TypeDescription> types;
        std::unordered_map<std::string, ClassDescription> classes;
    };

    static void read_definition(Definitions& all, std::string_view definition);
    static void add_number(Definitions& all, std::string_view definition);
    static void add_type(Definitions& all, const std::string& text);
    static void add_class(Definitions& all, const std::string& text);
    static std::string number_of(const Definitions& all, std::string_view word);
    static std::string written_out(const Definitions& all, std::string_view word);
    static std::string with_number(const Definitions& all, std::string_view description);

    Definitions all_;
};

}  // namespace orvo::directory
