#include "suite/directory/embedded/store/tables.h"

#include <utility>
#include <vector>

namespace orvo::directory::embedded {
namespace {

//   attribute    the numbers of attributes (attribute_names.h)
//   description  the schema: kind 0 attribute types, 1 object classes
//   entry        parent: 0 for one at the top; key: DistinguishedName::key; data: entry_form.h
//   below        each entry below each of its ancestors, in the order of lists (index_rows.h);
//                below the ancestor 0 only those at the top
//   value        attributes' values by their keys (index_rows.h)
constexpr const char* tables = R"(
    CREATE TABLE setting (name TEXT PRIMARY KEY, value TEXT NOT NULL) STRICT, WITHOUT ROWID;
    CREATE TABLE description (kind INTEGER, place INTEGER, description TEXT NOT NULL,
                              PRIMARY KEY (kind, place)) STRICT, WITHOUT ROWID;
    CREATE TABLE attribute (id INTEGER PRIMARY KEY, name TEXT NOT NULL) STRICT;
    CREATE TABLE entry (id INTEGER PRIMARY KEY, parent INTEGER NOT NULL, key BLOB NOT NULL UNIQUE,
                        name TEXT NOT NULL, data BLOB NOT NULL) STRICT;
    CREATE TABLE below (ancestor INTEGER, kind INTEGER, listing BLOB, entry INTEGER,
                        PRIMARY KEY (ancestor, kind, listing, entry)) STRICT, WITHOUT ROWID;
    CREATE TABLE value (attribute INTEGER, key BLOB, entry INTEGER,
                        PRIMARY KEY (attribute, key, entry)) STRICT, WITHOUT ROWID;
)";

enum DescriptionKind { attribute_type = 0, object_class = 1 };

void write_descriptions(Database& database, DescriptionKind kind,
                        const std::vector<std::string>& descriptions) {
    int place = 0;
    for (const std::string& description : descriptions)
        database.run("INSERT INTO description (kind, place, description) VALUES (?, ?, ?)",
                     static_cast<int>(kind), place++, AsText{description});
}

std::vector<std::string> read_descriptions(Database& database, DescriptionKind kind) {
    std::vector<std::string> descriptions;
    Query query =
        database.query("SELECT description FROM description WHERE kind = ? ORDER BY place",
                       static_cast<int>(kind));
    while (query.step()) descriptions.push_back(query.text(0));
    return descriptions;
}

}  // namespace

std::span<const MigrationStep> migration_steps() { return {}; }

void create_tables(Database& database, const Schema& schema) {
    database.execute(tables);
    write_descriptions(database, attribute_type, schema.attribute_types);
    write_descriptions(database, object_class, schema.object_classes);
    database.execute("PRAGMA application_id = " + std::to_string(application_id));
    database.execute("PRAGMA user_version = " + std::to_string(migration_steps().size() + 1));
}

std::shared_ptr<const Schema> read_schema(Database& database) {
    return std::make_shared<const Schema>(Schema::from_descriptions(
        read_descriptions(database, attribute_type), read_descriptions(database, object_class)));
}

}  // namespace orvo::directory::embedded
