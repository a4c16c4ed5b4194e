#include "suite/directory/embedded/store/writing.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "suite/directory/embedded/store/entry_form.h"
#include "suite/directory/embedded/store/store_file.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

DistinguishedName name_of(const EntryData& entry) {
    const auto name = DistinguishedName::try_parse(from_utf8(entry.name));
    if (!name || name->depth() == 0)
        raise_code(result_code::invalid_name, quoted_name(entry.name) + " is not a name.");
    return *name;
}

}  // namespace

struct Writing::Stored {
    std::int64_t number;
    std::int64_t parent;
    ListedName name;
    std::vector<IndexedValue> values;
};

Writing::Writing(std::shared_ptr<StoreFile> of, std::chrono::milliseconds wait,
                 Durability durability)
    : Reading(std::move(of), Unbegun{}) {
    using namespace std::chrono;
    const auto deadline = steady_clock::now() + wait;
    has_turn_ = file().writers().acquire(deadline);
    if (!has_turn_)
        raise_code(result_code::busy,
                   "Other writers did not finish within " + std::to_string(wait.count()) + " ms.");
    try {
        acquire_connection();
        Connection& own = connection();
        if (own.is_synced != (durability == Durability::full)) {
            own.is_synced = durability == Durability::full;
            own.database.execute(own.is_synced ? "PRAGMA synchronous = FULL"
                                               : "PRAGMA synchronous = NORMAL");
        }
        own.database.set_wait(
            std::max(duration_cast<milliseconds>(deadline - steady_clock::now()), milliseconds(1)));
        own.database.run("BEGIN IMMEDIATE");
        own.database.set_wait(Database::usual_wait);
        own.names.refresh();
        last_attribute_ = own.names.last();
    } catch (...) {
        release_connection();
        release_turn();
        throw;
    }
}

Writing::~Writing() {
    if (!has_turn_) return;
    connection().names.forget_after(last_attribute_);
    release_connection();
    release_turn();
}

void Writing::release_turn() noexcept {
    file().writers().release();
    has_turn_ = false;
}

void Writing::commit() {
    write_collected();
    connection().database.run("COMMIT");
    release_connection();
    release_turn();
}

void Writing::expect_many() {
    if (is_collecting_) return;
    is_collecting_ = true;
    connection().is_for_many = true;
    connection().database.execute(
        "PRAGMA cache_size = -65536;"
        "CREATE TEMP TABLE collected_below (ancestor, kind, listing, entry);"
        "CREATE TEMP TABLE collected_value (attribute, key, entry)");
}

void Writing::write_collected() {
    if (!is_collecting_) return;
    is_collecting_ = false;
    connection().database.execute(
        "INSERT INTO below SELECT * FROM collected_below ORDER BY ancestor, kind, listing, entry;"
        "DROP TABLE collected_below;"
        "INSERT INTO value SELECT * FROM collected_value ORDER BY attribute, key, entry;"
        "DROP TABLE collected_value");
}

void Writing::add(const EntryData& entry) {
    Connection& own = connection();
    const DistinguishedName name = name_of(entry);
    const std::int64_t parent =
        own.database.number("SELECT id FROM entry WHERE key = ?", 0, key_above(name.key()));
    Query insert = own.database.query(
        "INSERT INTO entry (parent, key, name, data) VALUES (?, ?, ?, ?) "
        "ON CONFLICT (key) DO NOTHING RETURNING id",
        parent, name.key(), AsText{entry.name}, encode(entry.attributes, own.names));
    if (!insert.step()) raise_code(result_code::entry_already_exists, quoted_name(entry.name));
    const std::int64_t number = insert.integer(0);
    list(number, parent, listed_name(entry.name, own.names), true);
    write_values(number, {}, indexed_values(entry.attributes, own.names));
}

Writing::Stored Writing::stored(const std::string& key) {
    Connection& own = connection();
    Query query = own.database.query("SELECT id, parent, name, data FROM entry WHERE key = ?", key);
    if (!query.step()) raise_code(result_code::no_such_object);
    return {query.integer(0), query.integer(1), listed_name(query.octets(2), own.names),
            indexed_values(decode(query.octets(3), own.names), own.names)};
}

void Writing::replace(const EntryData& entry) {
    write_collected();
    Connection& own = connection();
    const Stored old = stored(name_of(entry).key());
    own.database.run("UPDATE entry SET name = ?, data = ? WHERE id = ?", AsText{entry.name},
                     encode(entry.attributes, own.names), old.number);
    if (const ListedName name = listed_name(entry.name, own.names); name != old.name) {
        list(old.number, old.parent, old.name, false);
        list(old.number, old.parent, name, true);
    }
    write_values(old.number, old.values, indexed_values(entry.attributes, own.names));
}

void Writing::remove(const DistinguishedName& name) {
    write_collected();
    const Stored old = stored(name.key());
    connection().database.run("DELETE FROM entry WHERE id = ?", old.number);
    list(old.number, old.parent, old.name, false);
    write_values(old.number, old.values, {});
}

void Writing::list(std::int64_t entry, std::int64_t parent, const ListedName& name, bool is_there) {
    Database& database = connection().database;
    Query change = database.query(
        is_collecting_ ? "INSERT INTO collected_below VALUES (?, ?, ?, ?)"
        : is_there     ? "INSERT INTO below (ancestor, kind, listing, entry) VALUES (?, ?, ?, ?)"
                       : "DELETE FROM below WHERE ancestor = ? AND kind = ? AND listing = ? "
                         "AND entry = ?");
    std::int64_t ancestor = parent;
    do {
        change.bind(ancestor, listing_kind(name.attribute, ancestor == parent), name.listing,
                    entry);
        change.step();
        change.reset();
        if (ancestor != 0)
            ancestor = database.number("SELECT parent FROM entry WHERE id = ?", 0, ancestor);
    } while (ancestor != 0);
}

void Writing::write_values(std::int64_t entry, const std::vector<IndexedValue>& gone,
                           const std::vector<IndexedValue>& come) {
    const auto write = [&](std::string_view sql, const std::vector<IndexedValue>& rows,
                           const std::vector<IndexedValue>& others) {
        std::vector<IndexedValue> changed;
        std::ranges::set_difference(rows, others, std::back_inserter(changed));
        if (changed.empty()) return;
        Query query = connection().database.query(sql);
        for (const IndexedValue& row : changed) {
            query.bind(row.attribute, row.key, entry);
            query.step();
            query.reset();
        }
    };
    write("DELETE FROM value WHERE attribute = ? AND key = ? AND entry = ?", gone, come);
    write(is_collecting_ ? "INSERT INTO collected_value VALUES (?, ?, ?)"
                         : "INSERT INTO value (attribute, key, entry) VALUES (?, ?, ?)",
          come, gone);
}

void Writing::set_setting(const std::string& name, const std::string& value) {
    connection().database.run(
        "INSERT INTO setting (name, value) VALUES (?, ?) "
        "ON CONFLICT (name) DO UPDATE SET value = excluded.value",
        AsText{name}, AsText{value});
}

}  // namespace orvo::directory::embedded
