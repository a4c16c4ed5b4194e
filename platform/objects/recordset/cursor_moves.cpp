#include <algorithm>

#include "platform/objects/recordset/conversion.h"
#include "platform/objects/recordset/criteria.h"
#include "platform/objects/recordset/cursor.h"
#include "platform/objects/recordset/errors.h"

namespace orvo::recordset {
namespace {

// Bookmarks count from here, so that no bookmark can be taken for a BookmarkPlace, whatever number
// type a caller's language makes of it.
constexpr double first_bookmark = 16;

bool is_left_out(const Variant& start) { return start.is_missing() || start.is_empty(); }

}  // namespace

bool Cursor::is_bof() {
    begin();
    return at_ == At::bof || (at_ == At::eof && view().size() == 0);
}

bool Cursor::is_eof() {
    begin();
    return at_ == At::eof || (at_ == At::bof && view().size() == 0);
}

std::size_t Cursor::count() {
    begin();
    return view().size() + (at_ == At::new_record ? 1 : 0);
}

std::int64_t Cursor::position() {
    begin();
    switch (at_) {
        case At::record:
            return static_cast<std::int64_t>(place_) + 1;
        case At::new_record:
            return static_cast<std::int64_t>(count());
        case At::gap:
            return adPosUnknown;
        default:
            break;
    }
    if (view().size() == 0) return adPosUnknown;
    return at_ == At::bof ? adPosBOF : adPosEOF;
}

void Cursor::set_position(std::int64_t position) {
    begin_move();
    if (position < 1 || position > static_cast<std::int64_t>(view().size()))
        raise_runtime_error(wrong_arguments);
    go_to(position - 1);
}

void Cursor::require_records() {
    if (view().size() != 0) return;
    if (at_ == At::gap) at_ = At::eof;
    raise_runtime_error(no_current_record);
}

void Cursor::move_first() {
    begin_move();
    require_records();
    go_first();
}

void Cursor::move_last() {
    begin_move();
    require_records();
    go_to(static_cast<std::int64_t>(view().size()) - 1);
}

void Cursor::move_next() { move(1, Variant::missing()); }

void Cursor::move_previous() { move(-1, Variant::missing()); }

void Cursor::move(std::int64_t rows, const Variant& start) {
    begin_move();
    if (const auto from = start_place(start)) {
        go_to(static_cast<std::int64_t>(*from) + rows);
        return;
    }
    const auto size = static_cast<std::int64_t>(view().size());
    const auto place = static_cast<std::int64_t>(place_);
    const bool stands_still = at_ != At::record && rows == 0;
    const bool leads_out = (at_ == At::bof && rows < 0) || (at_ == At::eof && rows > 0);
    if (stands_still || leads_out) raise_runtime_error(no_current_record);
    switch (at_) {
        case At::bof:
            require_records();
            go_to(rows - 1);
            break;
        case At::eof:
            require_records();
            go_to(size + rows);
            break;
        case At::gap:
            go_to(rows > 0 ? place + rows - 1 : place + rows);
            break;
        default:
            go_to(place + rows);
            break;
    }
}

void Cursor::find(TextView criteria, std::int64_t skipped, std::int32_t direction,
                  const Variant& start) {
    require_open();
    const Clause wanted = read_find(criteria, columns());
    if (direction != adSearchForward && direction != adSearchBackward)
        raise_runtime_error(wrong_arguments);
    begin_move();
    require_records();
    const auto size = static_cast<std::int64_t>(view().size());
    std::int64_t place = static_cast<std::int64_t>(place_);
    if (const auto from = start_place(start))
        place = static_cast<std::int64_t>(*from);
    else if (at_ == At::bof)
        raise_runtime_error(no_current_record);
    else if (at_ == At::eof)
        place = direction == adSearchForward ? size : size - 1;
    else if (at_ == At::gap && direction == adSearchBackward)
        --place;
    place += skipped * direction;
    while (place >= 0 && place < size &&
           !wanted.matches((*store_)[view()[static_cast<std::size_t>(place)]].values))
        place += direction;
    if (place >= 0 && place < size)
        go_to(place);
    else
        at_ = direction == adSearchForward ? At::eof : At::bof;
}

Variant Cursor::bookmark() {
    begin();
    if (at_ != At::record) raise_runtime_error(no_current_record);
    return first_bookmark + record_;
}

RecordId Cursor::record_of(const Variant& bookmark) const {
    const auto number = bookmark.is_empty() ? std::nullopt : try_converted(bookmark, abi::VT_R8);
    const double id = number ? number->get()->dblVal - first_bookmark : -1;
    if (!(id >= 0) || id >= store_->size() || id != static_cast<RecordId>(id))
        raise_runtime_error(wrong_arguments);
    return static_cast<RecordId>(id);
}

std::size_t Cursor::place_of(const Variant& bookmark) {
    const auto place = view().find(record_of(bookmark));
    if (!place) raise_runtime_error(no_current_record);
    return *place;
}

void Cursor::set_bookmark(const Variant& bookmark) {
    begin_move();
    go_to(static_cast<std::int64_t>(place_of(bookmark)));
}

int Cursor::compare_bookmarks(const Variant& a, const Variant& b) {
    begin();
    const std::size_t left = place_of(a);
    const std::size_t right = place_of(b);
    return left < right ? adCompareLessThan : left == right ? adCompareEqual : adCompareGreaterThan;
}

std::optional<std::size_t> Cursor::start_place(const Variant& start) {
    if (is_left_out(start)) return {};
    const auto number = try_converted(start, abi::VT_I4);
    const std::int32_t named = number ? number->get()->lVal : -1;
    if (named == adBookmarkCurrent) return {};
    require_records();
    if (named == adBookmarkFirst) return 0;
    if (named == adBookmarkLast) return view().size() - 1;
    return place_of(start);
}

std::vector<RecordId> Cursor::take(std::int32_t count, const Variant& start) {
    begin_move();
    if (count < adGetRowsRest) raise_runtime_error(wrong_arguments);
    if (const auto from = start_place(start)) go_to(static_cast<std::int64_t>(*from));
    if (at_ != At::record) raise_runtime_error(no_current_record);
    const std::size_t left = view().size() - place_;
    const std::size_t taken =
        count == adGetRowsRest ? left : std::min(left, static_cast<std::size_t>(count));
    std::vector<RecordId> records(taken);
    for (std::size_t i = 0; i < taken; ++i) {
        records[i] = view()[place_ + i];
        if (record(records[i]).is_deleted()) raise_runtime_error(no_current_record);
    }
    go_to(static_cast<std::int64_t>(place_ + taken));
    return records;
}

}  // namespace orvo::recordset
