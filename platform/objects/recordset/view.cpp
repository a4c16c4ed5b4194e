#include "platform/objects/recordset/view.h"

#include <algorithm>

namespace orvo::recordset {

std::optional<std::size_t> View::find(RecordId id) const {
    if (id < records_.size() && records_[id] == id) return id;
    const auto found =
        order_.empty() ? std::ranges::lower_bound(records_, id) : std::ranges::find(records_, id);
    if (found == records_.end() || *found != id) return {};
    return static_cast<std::size_t>(found - records_.begin());
}

void View::set(SortOrder order, Condition condition, bool shows_deleted) {
    order_ = std::move(order);
    condition_ = std::move(condition);
    shows_deleted_ = shows_deleted;
    rebuild();
}

void View::rebuild() {
    records_.clear();
    records_.reserve(store_->size());
    for (RecordId id = 0; id < store_->size(); ++id)
        if (lets_through(id)) records_.push_back(id);
    if (!order_.empty())
        std::ranges::sort(records_,
                          [&](RecordId a, RecordId b) { return order_.is_before(*store_, a, b); });
    seen_ = store_->version();
}

std::optional<std::size_t> View::insert(RecordId id) {
    seen_ = store_->version();
    if (!lets_through(id)) return {};
    auto place = records_.end();
    if (!order_.empty())
        place = std::ranges::upper_bound(
            records_, id, [&](RecordId a, RecordId b) { return order_.is_before(*store_, a, b); });
    else if (!records_.empty() && records_.back() > id)
        place = std::ranges::upper_bound(records_, id);
    const auto inserted = records_.insert(place, id);
    return static_cast<std::size_t>(inserted - records_.begin());
}

void View::erase(std::size_t place) {
    seen_ = store_->version();
    records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(place));
}

std::optional<std::size_t> View::move(std::size_t place) {
    const RecordId id = records_[place];
    if (order_.empty() && lets_through(id)) {
        seen_ = store_->version();
        return place;
    }
    erase(place);
    return insert(id);
}

bool View::lets_through(RecordId id) const {
    const Record& record = (*store_)[id];
    if (record.is_gone() || (record.is_deleted() && !shows_deleted_)) return false;
    return !condition_ || condition_(*store_, id);
}

}  // namespace orvo::recordset
