#pragma once

// The schema files that the product brings along, as they are in its source (schema/).

#include <string_view>

namespace orvo::directory {

struct ProductSchemaFile {
    std::string_view name;  // "orvo.schema"
    std::string_view text;
};

// In the order in which they are read. product_schema.cpp is made of the files when the product is
// built.
extern const ProductSchemaFile product_schema_files[3];

}  // namespace orvo::directory
