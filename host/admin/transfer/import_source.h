#pragma once

// Files that users are imported from: CSV and LDIF as one kind of rows.

#include <cstdint>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/entries/entry_data.h"

namespace orvo::admin {

// A user as a file has it.
struct ImportRow {
    std::int64_t line = 0;  // of its beginning; from 1
    std::string name = {};
    // Those that have values, but for the name and the object classes.
    std::vector<directory::Attribute> attributes = {};
    std::string password = {};  // empty: none is given
    std::string written = {};   // in the file's form, without the password
    std::string fault = {};     // why it can be nobody; empty: it can
};

class ImportSource {
public:
    virtual ~ImportSource() = default;
    // Nothing at the end. Raises a std::runtime_error that begins with the line for a file that
    // cannot be read on.
    virtual std::optional<ImportRow> next() = 0;
    // A file of refused rows, in the form of this one: it can be corrected and imported again.
    // Passwords are not in it.
    virtual std::string head_of_refused() const = 0;
    virtual std::string refused(const ImportRow& row, const std::string& reason) const = 0;
};

// Where users are in the directory.
struct UserPlace {
    std::string naming_attribute;
    std::string container;
};

// A file of which a line begins with "dn:" or "version:", but for comments and empty lines, is
// LDIF, any other one CSV. `in` lives longer. Raises std::runtime_error for a CSV file whose first
// line does not name the naming attribute, names an attribute twice or gives one no name.
std::unique_ptr<ImportSource> open_import(std::istream& in, const UserPlace& place);

}  // namespace orvo::admin
