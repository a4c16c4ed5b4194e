#pragma once

// A cursor belongs to the thread of its record set. The record set and its fields share one; each
// clone has a cursor of its own over the same store.

#include "platform/objects/recordset/view.h"

namespace orvo::recordset {

// What a record set is: the columns and records of a store, a view of them while it is open, the
// place in that view, and the edit in progress. All raise as RecordSet and Field say.
//
// The place is a record, before the first, behind the last, on a row being added, or in the gap
// left by a record that was deleted, or that the filter lets through no longer. Every move ends an
// edit by updating first.
class Cursor {
public:
    Cursor() : store_(std::make_shared<RecordStore>()) {}
    // Open on a store that has columns, at its first record.
    Cursor(std::shared_ptr<RecordStore> store, bool is_updatable, Keeping keeping);

    // State and columns.
    bool is_open() const { return view_.has_value(); }
    void require_open() const;
    void require_closed() const;
    void open(bool is_updatable, Keeping keeping);
    void close();
    bool is_updatable() const { return is_updatable_; }
    Keeping keeping() const { return keeping_; }
    const std::vector<Column>& columns() const { return store_->columns; }
    std::vector<Column>& closed_columns();
    void erase_column(std::size_t column);
    // Changes whenever the columns that were there so far are no longer.
    unsigned generation() const { return generation_; }
    // The same records with a place, order and filter of their own.
    std::shared_ptr<Cursor> clone(bool is_updatable);

    // Order and filter; kept for the opening while closed.
    const Text& sort() const { return sort_; }
    void set_sort(const Text& order);
    const Variant& filter() const { return filter_; }
    void set_filter(const Variant& filter);

    // The place.
    bool is_bof();
    bool is_eof();
    std::size_t count();
    std::int64_t position();  // from 1, or adPosUnknown, adPosBOF, adPosEOF
    void set_position(std::int64_t position);
    void move_first();
    void move_last();
    void move_next();
    void move_previous();
    void move(std::int64_t rows, const Variant& start);
    void find(TextView criteria, std::int64_t skipped, std::int32_t direction,
              const Variant& start);
    Variant bookmark();
    void set_bookmark(const Variant& bookmark);
    int compare_bookmarks(const Variant& a, const Variant& b);

    // Reads up to `count` records (adGetRowsRest: all) from `start` on and stands behind them.
    // Raises 3021 where there is none.
    std::vector<RecordId> take(std::int32_t count, const Variant& start);
    const Record& record(RecordId id) const { return (*store_)[id]; }

    // Values and edits.
    Variant value(std::size_t column);
    Variant original(std::size_t column);
    void set_value(std::size_t column, const Variant& value);
    void add_new();
    void update();
    void cancel_update();
    void erase(std::int32_t affected);
    void update_batch(std::int32_t affected);
    void cancel_batch(std::int32_t affected);
    // Raises 3021 where there is no row that could be changed.
    void require_current();
    // A long value piece by piece.
    void append_chunk(std::size_t column, const Variant& data);
    Variant get_chunk(std::size_t column, std::int32_t length);
    std::int32_t edit_mode();
    std::int32_t status();

private:
    enum class At : unsigned char { bof, record, gap, eof, new_record };

    View& view() { return *view_; }
    SortOrder read_sort(const Text& order) const;
    View::Condition read_filter(const Variant& filter) const;
    View::Condition marked(const Variant& bookmarks) const;

    void begin();       // every use: requires an open cursor and brings the view up to date
    void begin_move();  // every move: the edit is ended
    void synchronise();
    void go_to(std::int64_t place);
    void go_first();
    void require_records();

    RecordId record_of(const Variant& bookmark) const;
    std::size_t place_of(const Variant& bookmark);
    std::optional<std::size_t> start_place(const Variant& start);

    // The records that Affect means; those of a batch that have no changes are among them. Asked
    // for after require_affected, which raises 3001 and 3021, and not on a row being added.
    void require_affected(std::int32_t affected) const;
    std::vector<RecordId> affected_by(std::int32_t affected) const;
    void note_affected(const std::vector<RecordId>& ids);
    void after_batch();
    bool has_record() const;  // on it, or in the gap that it left
    bool is_on_record() const;

    void require_updatable() const;
    void require_long(std::size_t column) const;
    void begin_edit();
    void end_edit();
    Variant unset_value(const Column& column) const;
    std::vector<Variant> new_values();
    void add();
    void change();

    std::shared_ptr<RecordStore> store_;
    std::optional<View> view_;
    Text sort_;
    Variant filter_ = std::int32_t{adFilterNone};
    bool is_updatable_ = true;
    Keeping keeping_ = Keeping::at_once;
    unsigned generation_ = 0;

    At at_ = At::eof;
    std::size_t place_ = 0;  // of the record or gap
    RecordId record_ = 0;    // the record at the place

    bool is_editing_ = false;
    Edits edits_;
    At at_before_adding_ = At::eof;

    std::vector<RecordId> affected_;  // by the last deletion, or end of a batch

    // The value that is read or written in pieces at the moment.
    struct Chunks {
        std::size_t column;
        bool is_written;
        std::size_t read;  // units of it that were handed out
    };
    std::optional<Chunks> chunks_;
};

}  // namespace orvo::recordset
