#pragma once

// Reads LDIF (RFC 2849), one record after another: files of entries, and files of changes. A file
// of any length takes the memory of its longest record.
//
// More is read than the standard allows: text beyond ASCII as it is, and a last change without
// "-". Values in other files, renamings and controls are refused.

#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <vector>

#include "suite/directory/entries/entry_data.h"
#include "suite/directory/ldif/ldif_lines.h"

namespace orvo::directory {

struct LdifRecord {
    enum class Kind {
        entry,   // without a changetype
        add,     // an entry, too
        remove,  // `entry` is a name alone
        modify,  // and so here, beside `changes`
    };
    Kind kind = Kind::entry;
    EntryData entry = {};  // the values of one attribute together, where the first one stood
    std::vector<Replacement> changes = {};
    std::int64_t line = 0;  // of its "dn:"
};

class LdifReader {
public:
    static constexpr std::size_t usual_longest = std::size_t{64} << 20;

    // `in` lives longer. `longest`: a value of more octets is refused.
    explicit LdifReader(std::istream& in, std::size_t longest = usual_longest)
        : lines_(in, longest) {}

    // Nothing at the end. Raises LdifError; nothing can be read after that.
    std::optional<LdifRecord> next();

private:
    struct Field {
        std::string name;
        std::string value;
        std::int64_t line = 0;
    };

    static Field field_of(const LdifLine& line);
    std::optional<Field> next_field();  // nothing at the end of the record
    std::optional<Field> first_field();
    void read_change(const Field& type, LdifRecord& record);
    void read_attributes(std::optional<Field> field, EntryData& entry);
    void read_modifications(LdifRecord& record);
    Replacement modification(const Field& kind);

    LdifLines lines_;
    bool is_begun_ = false;
    bool is_at_end_ = false;  // of a record
};

}  // namespace orvo::directory
