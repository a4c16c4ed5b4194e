#include "suite/directory/embedded/store/check.h"

#include <cstdint>

#include "platform/values/failure.h"
#include "suite/directory/embedded/store/entry_form.h"
#include "suite/directory/embedded/store/index_rows.h"
#include "suite/directory/embedded/store/store_file.h"
#include "suite/directory/names/distinguished_name.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

// The rest is told by their number.
constexpr std::size_t most_told = 100;

class Check {
public:
    explicit Check(Connection& connection)
        : database_(connection.database), names_(connection.names) {}

    std::vector<std::string> run() {
        Query integrity = database_.query("PRAGMA integrity_check");
        while (integrity.step())
            if (integrity.octets(0) != "ok") tell(integrity.text(0));
        Query entries = database_.query("SELECT id, parent, key, name, data FROM entry");
        while (entries.step()) check(entries);
        compare_rows("value", database_.number("SELECT count(*) FROM value", 0), values_);
        compare_rows("below", database_.number("SELECT count(*) FROM below", 0), listed_);
        if (untold_ != 0) problems_.push_back(std::to_string(untold_) + " more problems.");
        return std::move(problems_);
    }

private:
    void tell(std::string problem) {
        if (problems_.size() < most_told)
            problems_.push_back(std::move(problem));
        else
            ++untold_;
    }

    void check(Query& entry) {
        const std::int64_t number = entry.integer(0);
        const std::string name = entry.text(3);
        const auto read = DistinguishedName::try_parse(from_utf8(name));
        if (!read || read->key() != entry.octets(2))
            tell(quoted_name(name) + " is kept under another name's key.");
        const std::int64_t parent =
            database_.number("SELECT id FROM entry WHERE key = ?", 0, key_above(entry.octets(2)));
        if (parent != entry.integer(1))
            tell(quoted_name(name) + " does not belong to the entry above it.");
        check_values(number, name, entry.octets(4));
        check_listings(number, name, entry.integer(1));
    }

    void check_values(std::int64_t number, const std::string& name, std::string_view data) {
        try {
            for (const IndexedValue& row : indexed_values(decode(data, names_), names_)) {
                ++values_;
                if (database_.number("SELECT EXISTS (SELECT 1 FROM value WHERE attribute = ? AND "
                                     "key = ? AND entry = ?)",
                                     0, row.attribute, row.key, number) == 0)
                    tell(quoted_name(name) + " lacks an index row of " +
                         names_[row.attribute].name + ".");
            }
        } catch (const Failure&) {  // damage is what is looked for
            tell("The attributes of " + quoted_name(name) + " cannot be read.");
        }
    }

    void check_listings(std::int64_t number, const std::string& name, std::int64_t parent) {
        const ListedName listed = listed_name(name, names_);
        std::int64_t ancestor = parent;
        do {
            ++listed_;
            const auto kind = listing_kind(listed.attribute, ancestor == parent);
            if (database_.number("SELECT EXISTS (SELECT 1 FROM below WHERE ancestor = ? AND "
                                 "kind = ? AND listing = ? AND entry = ?)",
                                 0, ancestor, kind, listed.listing, number) == 0)
                tell(quoted_name(name) + " is not listed below each entry above it.");
            ancestor = database_.number("SELECT parent FROM entry WHERE id = ?", 0, ancestor);
        } while (ancestor != 0);
    }

    void compare_rows(const std::string& table, std::int64_t there, std::int64_t known) {
        if (there > known)
            tell("The index '" + table + "' has " + std::to_string(there - known) +
                 " rows that belong to no entry.");
    }

    Database& database_;
    AttributeNames& names_;
    std::vector<std::string> problems_;
    std::size_t untold_ = 0;
    std::int64_t values_ = 0;  // index rows that belong to entries
    std::int64_t listed_ = 0;
};

}  // namespace

std::vector<std::string> problems_of(Connection& connection) { return Check(connection).run(); }

}  // namespace orvo::directory::embedded
