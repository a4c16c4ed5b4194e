#pragma once

// Used by the thread of the record set; raises what its condition raises.

#include <functional>
#include <memory>

#include "platform/objects/recordset/sort_order.h"

namespace orvo::recordset {

// Which records of a store are seen, and in which order. Places count from 0.
//
// A view remembers which version of the store it shows. Its owner brings its own changes in one by
// one (insert, erase, move); when a clone has changed the store, the view is no longer current and
// the owner rebuilds it.
class View {
public:
    using Condition = std::function<bool(const RecordStore&, RecordId)>;

    explicit View(std::shared_ptr<RecordStore> store) : store_(std::move(store)) { rebuild(); }

    std::size_t size() const { return records_.size(); }
    RecordId operator[](std::size_t place) const { return records_[place]; }
    std::optional<std::size_t> find(RecordId id) const;

    // An empty condition lets all records through. Deleted records that can still be brought back
    // are seen where `shows_deleted`.
    void set(SortOrder order, Condition condition, bool shows_deleted = false);
    bool is_current() const { return seen_ == store_->version(); }
    void rebuild();

    // Brings in the record that the owner just added: its place, if it is seen at all.
    std::optional<std::size_t> insert(RecordId id);
    // Takes out the record at a place, which the owner just deleted.
    void erase(std::size_t place);
    // Brings in the new values of the record at a place: its place now, if it is still seen.
    std::optional<std::size_t> move(std::size_t place);

    const SortOrder& order() const { return order_; }
    const Condition& condition() const { return condition_; }
    bool shows_deleted() const { return shows_deleted_; }

private:
    bool lets_through(RecordId id) const;

    std::shared_ptr<RecordStore> store_;
    SortOrder order_;
    Condition condition_;
    bool shows_deleted_ = false;
    std::vector<RecordId> records_;
    std::uint64_t seen_ = 0;
};

}  // namespace orvo::recordset
