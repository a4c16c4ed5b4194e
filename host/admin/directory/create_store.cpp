#include <iostream>
#include <memory>
#include <stdexcept>

#include "host/admin/common/texts.h"
#include "host/admin/directory/directory_admin.h"
#include "suite/directory/embedded/access/access_rules.h"
#include "suite/directory/embedded/directory/directory.h"
#include "suite/directory/embedded/transfer/loader.h"
#include "suite/directory/names/name_parts.h"
#include "suite/directory/schema/product_schema.h"
#include "suite/directory/schema/schema_files.h"

namespace orvo::admin {
namespace {

using namespace directory;
using namespace directory::embedded;

void read_product_file(SchemaFiles& files, std::string_view name) {
    for (const ProductSchemaFile& file : product_schema_files)
        if (file.name == name) files.read(file.name, file.text);
}

// The product's classes use Manager and employeeNumber, whoever defines them.
Schema schema_for(const CreateRequest& request) {
    SchemaFiles files;
    read_product_file(files, "standard.schema");
    if (!request.without_standalone) {
        read_product_file(files, "orvo-standalone.schema");
        read_product_file(files, "orvo.schema");
    }
    for (const std::filesystem::path& file : request.schemas)
        files.read(file.string(), text_of_file(file));
    if (request.without_standalone) read_product_file(files, "orvo.schema");
    return std::move(files).schema();
}

EntryData base_entry(const Schema& schema, const std::string& base) {
    const auto parts = try_name_parts(base);
    if (!parts || parts->empty() || parts->front().size() != 1)
        throw std::runtime_error("'" + base + "' is no name for the entry at the top");
    const AttributeType* type = schema.types.find(parts->front().front().attribute);
    const std::string attribute = type ? type->name() : "";
    const std::string& value = parts->front().front().value;
    if (attribute == "o") return {base, {{"objectClass", {"organization"}}, {"o", {value}}}};
    if (attribute == "ou")
        return {base, {{"objectClass", {"organizationalUnit"}}, {"ou", {value}}}};
    if (attribute == "c") return {base, {{"objectClass", {"country"}}, {"c", {value}}}};
    if (attribute == "dc")
        return {base,
                {{"objectClass", {"organization", "dcObject"}}, {"o", {value}}, {"dc", {value}}}};
    throw std::runtime_error("'" + base + "' is named by neither o, ou, c nor dc");
}

}  // namespace

void make_store(const CreateRequest& request) {
    const auto schema = std::make_shared<const Schema>(schema_for(request));
    LdifRecord base{.entry = base_entry(*schema, request.base)};
    const std::string access = request.access.empty() ? AccessRules::text_of_product(request.base)
                                                      : text_of_file(request.access);
    AccessRules::parse(access, schema);
    Store::create(request.store, *schema);
    try {
        const std::shared_ptr<Store> store = Store::open(request.store);
        Loader loader(*store, time_of_day(), HashCost::usual);
        loader.set_setting(store_setting::base, request.base);
        loader.set_setting(store_setting::access, access);
        loader.take(std::move(base));
        loader.commit();
    } catch (...) {
        std::filesystem::remove(request.store);
        throw;
    }
}

void create_store(const CreateRequest& request) {
    make_store(request);
    std::cout << request.store.string() << ": made, with the entry " << request.base << ".\n";
}

}  // namespace orvo::admin
