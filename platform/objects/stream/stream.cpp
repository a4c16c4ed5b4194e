#include "platform/objects/stream/stream.h"

#include <algorithm>
#include <array>

#include "platform/interfaces/call.h"
#include "platform/objects/files/opened_file.h"
#include "platform/objects/recordset/errors.h"

namespace orvo {
namespace {

constexpr std::size_t most_bytes = std::size_t{256} << 20;

}  // namespace

void Stream::require_open() const {
    if (!is_open_) raise_runtime_error(recordset::is_closed);
}

void Stream::require_type(std::int32_t type) const {
    require_open();
    if (type_ != type) raise_runtime_error(recordset::not_allowed_here);
}

void Stream::require_reading() const {
    if (mode_ == adModeWrite) raise_runtime_error(recordset::not_allowed_here);
}

void Stream::require_writing() const {
    if (mode_ == adModeRead) raise_runtime_error(recordset::not_allowed_here);
}

LongPtr Stream::Size() {
    require_open();
    return static_cast<std::int64_t>(bytes_.size());
}

bool Stream::EOS() {
    require_open();
    return position_ >= bytes_.size();
}

LongPtr Stream::Position() {
    require_open();
    return static_cast<std::int64_t>(position_);
}

void Stream::SetPosition(LongPtr position) {
    require_open();
    if (position < 0) raise_runtime_error(recordset::wrong_arguments);
    const auto place = static_cast<std::uint64_t>(position.value);
    if (place > bytes_.size()) {
        require_writing();
        if (place > most_bytes) raise_runtime_error(runtime_error::out_of_memory);
        resize(place);
    }
    position_ = place;
}

void Stream::SetType(std::int32_t type) {
    if (type != adTypeBinary && type != adTypeText) raise_runtime_error(recordset::wrong_arguments);
    if (position_ != 0) raise_runtime_error(recordset::not_allowed_here);
    type_ = type;
}

void Stream::SetLineSeparator(std::int32_t separator) {
    if (separator != adLF && separator != adCR && separator != adCRLF)
        raise_runtime_error(recordset::wrong_arguments);
    separator_ = separator;
}

void Stream::SetMode(std::int32_t mode) {
    if (is_open_) raise_runtime_error(recordset::is_open);
    // What is shared with others has no meaning here.
    constexpr std::int32_t all = 0x1F;
    if (mode & ~all) raise_runtime_error(recordset::wrong_arguments);
    mode_ = mode & (adModeRead | adModeWrite);
}

void Stream::SetCharset(const Text& charset) {
    const std::optional<Encoding> encoding = encoding_named(charset);
    if (!encoding) raise_runtime_error(recordset::wrong_arguments);
    if (position_ != 0) raise_runtime_error(recordset::not_allowed_here);
    charset_ = charset;
    encoding_ = *encoding;
}

std::string_view Stream::line_end() const {
    return separator_ == adLF ? "\n" : separator_ == adCR ? "\r" : "\r\n";
}

void Stream::skip_mark() {
    const std::string_view mark = mark_of(encoding_);
    if (position_ == 0 && bytes_.starts_with(mark)) position_ = mark.size();
}

std::string Stream::take(std::size_t count) {
    std::string taken(rest().substr(0, count));
    position_ += taken.size();
    return taken;
}

std::string Stream::take_characters(std::int32_t count) {
    skip_mark();
    std::size_t length = 0;
    for (std::int32_t i = 0; i < count && length < rest().size(); ++i)
        length += first_character(encoding_, rest().substr(length));
    return take(length);
}

std::string Stream::take_line() {
    skip_mark();
    const std::string end = encoded(encoding_, from_utf8(line_end()));
    // Of characters of several bytes, an end stands where one begins.
    const std::size_t step = encoded(encoding_, u"\n").size();
    std::size_t found = 0;
    do {
        found = rest().find(end, found);
    } while (found != std::string_view::npos && found % step != 0 && ++found != 0);
    std::string line = take(found);
    take(found == std::string_view::npos ? 0 : end.size());
    return line;
}

// With zeros where it grows.
void Stream::resize(std::size_t size) {
    if (size > bytes_.size()) held_.set(size);
    bytes_.resize(size);
    held_.set(size);
}

void Stream::put(std::string_view bytes) {
    if (bytes.size() > most_bytes - position_) raise_runtime_error(runtime_error::out_of_memory);
    held_.set(std::max(bytes_.size(), position_ + bytes.size()));
    bytes_.replace(position_, std::min(bytes.size(), bytes_.size() - position_), bytes);
    position_ += bytes.size();
}

void Stream::put_text(TextView text) {
    if (position_ == 0) put(mark_of(encoding_));
    put(encoded(encoding_, text));
}

Variant Stream::Read(std::int32_t count) {
    require_type(adTypeBinary);
    require_reading();
    if (count < adReadAll) raise_runtime_error(recordset::wrong_arguments);
    if (EOS()) return Variant::null();
    return Variant::bytes(
        take(count == adReadAll ? bytes_.size() : static_cast<std::size_t>(count)));
}

void Stream::Open(const Variant& source, std::int32_t mode, std::int32_t, const Text&,
                  const Text&) {
    if (is_open_) raise_runtime_error(recordset::is_open);
    const bool has_source = !source.is_missing() && !source.is_empty() &&
                            !(source.is_text() && source.text_view().empty());
    if (has_source) raise_runtime_error(recordset::not_capable);
    if (mode != adModeUnknown) SetMode(mode);
    resize(0);
    position_ = 0;
    is_open_ = true;
}

void Stream::Close() {
    require_open();
    bytes_ = {};
    held_.set(0);
    position_ = 0;
    is_open_ = false;
}

void Stream::SkipLine() {
    require_type(adTypeText);
    require_reading();
    take_line();
}

void Stream::Write(const Variant& buffer) {
    require_type(adTypeBinary);
    require_writing();
    const std::optional<std::string> bytes = buffer.try_bytes();
    if (!bytes) raise_runtime_error(recordset::wrong_arguments);
    put(*bytes);
}

void Stream::SetEOS() {
    require_open();
    require_writing();
    resize(position_);
}

void Stream::CopyTo(const Ref<Stream>& target, LongPtr count) {
    require_open();
    require_reading();
    if (count < -1) raise_runtime_error(recordset::wrong_arguments);
    const std::int32_t target_type = call<&Stream::Type>(target);
    if (type_ == adTypeBinary && target_type == adTypeText)
        raise_runtime_error(recordset::wrong_arguments);
    const auto characters =
        static_cast<std::int32_t>(std::min<std::int64_t>(count, std::int64_t{most_bytes}));
    std::string bytes;
    if (count < 0)
        bytes = take(bytes_.size());
    else
        bytes = type_ == adTypeText ? take_characters(characters)
                                    : take(static_cast<std::size_t>(characters));
    if (target_type == adTypeBinary) return call<&Stream::Write>(target, Variant::bytes(bytes));
    std::string_view text = bytes;
    if (text.starts_with(mark_of(encoding_))) text.remove_prefix(mark_of(encoding_).size());
    call<&Stream::WriteText>(target, decoded(encoding_, text), adWriteChar);
}

void Stream::Flush() { require_open(); }
void Stream::Cancel() { require_open(); }

void Stream::SaveToFile(const Text& file, std::int32_t options) {
    require_open();
    if (options != adSaveCreateNotExist && options != adSaveCreateOverWrite)
        raise_runtime_error(recordset::wrong_arguments);
    const UsablePath path = usable_path(file);
    try {
        OpenedFile target(path, options == adSaveCreateOverWrite ? OpenedFile::Use::replace
                                                                 : OpenedFile::Use::create);
        target.write(bytes_);
    } catch (const Failure& failure) {
        throw Failure(
            recordset::write_failed, failure.source,
            Text(runtime_error_text(recordset::write_failed)) + u" (" + failure.description + u")");
    }
    position_ = 0;
}

void Stream::LoadFromFile(const Text& file) {
    require_open();
    const UsablePath path = usable_path(file);
    std::string content;
    try {
        OpenedFile source(path, OpenedFile::Use::read);
        if (source.size() > most_bytes) raise_runtime_error(runtime_error::out_of_memory);
        std::array<char, 64 * 1024> part;
        while (const std::size_t count = source.read(part)) {
            if (content.size() + count > most_bytes)
                raise_runtime_error(runtime_error::out_of_memory);
            held_.set(bytes_.size() + content.size() + count);
            content.append(part.data(), count);
        }
    } catch (const Failure& failure) {
        held_.set(bytes_.size());
        if (failure.number == runtime_error::out_of_memory) throw;
        throw Failure(recordset::opening_failed, failure.source,
                      Text(runtime_error_text(recordset::opening_failed)) + u" (" +
                          failure.description + u")");
    }
    bytes_ = std::move(content);
    held_.set(bytes_.size());
    position_ = 0;
}

Text Stream::ReadText(std::int32_t count) {
    require_type(adTypeText);
    require_reading();
    if (count == adReadLine) return decoded(encoding_, take_line());
    if (count < adReadLine) raise_runtime_error(recordset::wrong_arguments);
    if (count != adReadAll) return decoded(encoding_, take_characters(count));
    skip_mark();
    return decoded(encoding_, take(bytes_.size()));
}

void Stream::WriteText(const Text& text, std::int32_t options) {
    require_type(adTypeText);
    require_writing();
    if (options != adWriteChar && options != adWriteLine)
        raise_runtime_error(recordset::wrong_arguments);
    put_text(options == adWriteLine ? text + from_utf8(line_end()) : text);
}

}  // namespace orvo
