#include "platform/objects/recordset/cursor.h"

#include <algorithm>
#include <unordered_set>

#include "platform/objects/recordset/conversion.h"
#include "platform/objects/recordset/criteria.h"
#include "platform/objects/recordset/errors.h"
#include "platform/values/values.h"

namespace orvo::recordset {
namespace {

// The number of the group that a filter names; -1 where it names none.
std::int32_t group_of(const Variant& filter) {
    if (filter.is_text() || filter.is_array()) return -1;
    const auto number = try_converted(filter, abi::VT_I4);
    return number ? number->get()->lVal : -1;
}

bool shows_deleted(const Variant& filter) {
    const std::int32_t group = group_of(filter);
    return group == adFilterPendingRecords || group == adFilterAffectedRecords;
}

}  // namespace

Cursor::Cursor(std::shared_ptr<RecordStore> store, bool is_updatable, Keeping keeping)
    : store_(std::move(store)) {
    open(is_updatable, keeping);
}

void Cursor::require_open() const {
    if (!is_open()) raise_runtime_error(Error::is_closed);
}

void Cursor::require_closed() const {
    if (is_open()) raise_runtime_error(Error::is_open);
}

void Cursor::open(bool is_updatable, Keeping keeping) {
    require_closed();
    if (columns().empty()) raise_runtime_error(no_connection);
    SortOrder order = read_sort(sort_);
    View::Condition condition = read_filter(filter_);
    view_.emplace(store_);
    if (!order.empty() || condition)
        view().set(std::move(order), std::move(condition), shows_deleted(filter_));
    is_updatable_ = is_updatable;
    keeping_ = keeping;
    go_first();
}

void Cursor::close() {
    require_open();
    if (is_editing_ && keeping_ == Keeping::at_once) raise_runtime_error(not_allowed_here);
    end_edit();
    affected_.clear();
    view_.reset();
    store_ = std::make_shared<RecordStore>();
    sort_.clear();
    filter_ = std::int32_t{adFilterNone};
    ++generation_;
}

std::vector<Column>& Cursor::closed_columns() {
    require_closed();
    return store_->columns;
}

void Cursor::erase_column(std::size_t column) {
    std::vector<Column>& all = closed_columns();
    all.erase(all.begin() + static_cast<std::ptrdiff_t>(column));
    ++generation_;
}

std::shared_ptr<Cursor> Cursor::clone(bool is_updatable) {
    begin();
    return std::make_shared<Cursor>(store_, is_updatable && is_updatable_, keeping_);
}

SortOrder Cursor::read_sort(const Text& order) const { return {order, columns()}; }

void Cursor::set_sort(const Text& order) {
    if (is_open()) {
        SortOrder read = read_sort(order);
        begin_move();
        view().set(std::move(read), view().condition(), view().shows_deleted());
        go_first();
    }
    sort_ = order;
}

View::Condition Cursor::marked(const Variant& bookmarks) const {
    std::unordered_set<RecordId> wanted;
    for (const Variant& bookmark : bookmarks.to<Values>()) wanted.insert(record_of(bookmark));
    return [wanted = std::move(wanted)](const RecordStore&, RecordId id) {
        return wanted.contains(id);
    };
}

View::Condition Cursor::read_filter(const Variant& filter) const {
    if (filter.is_array()) return marked(filter);
    if (filter.is_text()) {
        if (trimmed(filter.text_view()).empty()) return {};
        return
            [criteria = recordset::read_filter(filter.text_view(), columns())](
                const RecordStore& store, RecordId id) { return criteria.match(store[id].values); };
    }
    switch (group_of(filter)) {
        case adFilterNone:
            return {};
        case adFilterPendingRecords:
            return [](const RecordStore& store, RecordId id) {
                return store[id].status != adRecUnmodified;
            };
        case adFilterAffectedRecords:
            return [ids = std::unordered_set<RecordId>(affected_.begin(), affected_.end())](
                       const RecordStore&, RecordId id) { return ids.contains(id); };
        case adFilterFetchedRecords:
            return [](const RecordStore&, RecordId) { return true; };
        case adFilterConflictingRecords:
            return [](const RecordStore&, RecordId) { return false; };
        default:
            raise_runtime_error(wrong_arguments);
    }
}

void Cursor::set_filter(const Variant& filter) {
    if (is_open()) {
        View::Condition read = read_filter(filter);
        begin_move();
        view().set(view().order(), std::move(read), shows_deleted(filter));
        go_first();
    }
    filter_ = filter;
}

void Cursor::begin() {
    require_open();
    if (!view().is_current()) synchronise();
}

void Cursor::begin_move() {
    begin();
    chunks_.reset();
    if (is_editing_) update();
}

void Cursor::synchronise() {
    view().rebuild();
    if (at_ == At::record) {
        const auto place = view().find(record_);
        if (place)
            place_ = *place;
        else
            at_ = At::gap;
    }
    place_ = std::min(place_, view().size());
}

void Cursor::go_to(std::int64_t place) {
    if (place < 0) {
        at_ = At::bof;
    } else if (static_cast<std::size_t>(place) >= view().size()) {
        at_ = At::eof;
    } else {
        at_ = At::record;
        place_ = static_cast<std::size_t>(place);
        record_ = view()[place_];
    }
}

void Cursor::go_first() { go_to(0); }

}  // namespace orvo::recordset
