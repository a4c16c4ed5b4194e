#include "suite/directory/embedded/store/reading.h"

#include <utility>

#include "suite/directory/embedded/store/check.h"
#include "suite/directory/embedded/store/entry_form.h"
#include "suite/directory/embedded/store/entry_search.h"
#include "suite/directory/embedded/store/index_rows.h"
#include "suite/directory/embedded/store/store_file.h"

namespace orvo::directory::embedded {

Reading::Reading(std::shared_ptr<StoreFile> file) : Reading(std::move(file), Unbegun{}) {
    acquire_connection();
    try {
        connection_->database.run("BEGIN");
        connection_->names.refresh();
    } catch (...) {
        release_connection();
        throw;
    }
}

Reading::Reading(std::shared_ptr<StoreFile> file, Unbegun) noexcept : file_(std::move(file)) {}

Reading::~Reading() { release_connection(); }

void Reading::acquire_connection() { connection_ = file_->acquire(); }

void Reading::release_connection() noexcept {
    if (!connection_) return;
    try {
        if (connection_->database.is_in_transaction()) connection_->database.run("ROLLBACK");
        file_->release(std::move(connection_));
    } catch (...) {
        // A connection that cannot even end its transaction is closed, which ends it.
        connection_.reset();
    }
}

std::optional<EntryData> Reading::find(const DistinguishedName& name) const {
    Query query =
        connection_->database.query("SELECT name, data FROM entry WHERE key = ?", name.key());
    if (!query.step()) return std::nullopt;
    return EntryData{query.text(0), decode(query.octets(1), connection_->names)};
}

std::string Reading::nearest_above(const DistinguishedName& name) const {
    for (std::string_view above = key_above(name.key()); !above.empty(); above = key_above(above)) {
        Query query = connection_->database.query("SELECT name FROM entry WHERE key = ?", above);
        if (query.step()) return query.text(0);
    }
    return {};
}

bool Reading::has_children(const DistinguishedName& name) const {
    return connection_->database.number(
               "SELECT EXISTS (SELECT 1 FROM below WHERE ancestor = "
               "(SELECT id FROM entry WHERE key = ?))",
               0, name.key()) != 0;
}

void Reading::every_entry(const std::function<bool(EntryData&&)>& take) const {
    Query query = connection_->database.query("SELECT name, data FROM entry ORDER BY id");
    while (query.step())
        if (!take({query.text(0), decode(query.octets(1), connection_->names)})) return;
}

void Reading::search(const Selection& selection,
                     const std::function<bool(EntryData&&)>& take) const {
    EntrySearch(*connection_, selection).run(take);
}

std::vector<std::string> Reading::plan(const Selection& selection) const {
    return EntrySearch(*connection_, selection).plan();
}

std::vector<std::string> Reading::problems() const { return problems_of(*connection_); }

std::string Reading::setting(const std::string& name) const {
    Query query =
        connection_->database.query("SELECT value FROM setting WHERE name = ?", AsText{name});
    return query.step() ? query.text(0) : "";
}

}  // namespace orvo::directory::embedded
