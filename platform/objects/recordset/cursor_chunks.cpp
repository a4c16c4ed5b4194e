#include "platform/objects/recordset/cursor.h"
#include "platform/objects/recordset/errors.h"

namespace orvo::recordset {

void Cursor::require_long(std::size_t column) const {
    if (!(columns()[column].attributes & adFldLong)) raise_runtime_error(not_allowed_here);
}

void Cursor::append_chunk(std::size_t column, const Variant& data) {
    require_current();
    require_long(column);
    const bool goes_on = chunks_ && chunks_->column == column && chunks_->is_written;
    set_value(column, goes_on ? joined(columns()[column], value(column), data) : data);
    chunks_ = Chunks{column, true, 0};
}

Variant Cursor::get_chunk(std::size_t column, std::int32_t length) {
    begin();
    require_long(column);
    const Variant whole = value(column);
    if (length < 0) raise_runtime_error(wrong_arguments);
    const bool goes_on = chunks_ && chunks_->column == column && !chunks_->is_written;
    const std::size_t from = goes_on ? chunks_->read : 0;
    const auto wanted = static_cast<std::size_t>(length);
    chunks_ = Chunks{column, false, from + wanted};
    return part_of(whole, from, wanted);
}

}  // namespace orvo::recordset
