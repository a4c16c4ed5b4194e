#include "platform/objects/files/text_stream.h"

#include <algorithm>

namespace orvo {
namespace {

constexpr std::size_t most_characters = 64'000'000;
constexpr std::size_t bytes_at_once = 64 * 1024;
constexpr std::size_t any_number = static_cast<std::size_t>(-1);

std::size_t count_of(std::int32_t count) {
    if (count < 0) raise_runtime_error(runtime_error::invalid_call);
    return static_cast<std::size_t>(count);
}

}  // namespace

void TextStream::require_reading() const {
    if (!read_ && !write_) raise_runtime_error(runtime_error::object_not_set);
    if (!read_) raise_runtime_error(runtime_error::bad_file_mode);
}

void TextStream::require_writing() const {
    if (!read_ && !write_) raise_runtime_error(runtime_error::object_not_set);
    if (!write_) raise_runtime_error(runtime_error::bad_file_mode);
}

bool TextStream::has_ahead(std::size_t count) {
    while (ahead().size() < count && !has_ended_) {
        if (ahead().size() > most_characters) raise_runtime_error(runtime_error::out_of_memory);
        if (taken_ > 0) ahead_.erase(0, std::exchange(taken_, 0));
        const std::size_t before = bytes_.size();
        held_.set((ahead_.size() + bytes_at_once) * sizeof(char16_t) + before + bytes_at_once);
        bytes_.resize(before + bytes_at_once);
        std::size_t fetched = 0;
        try {
            fetched = read_(std::span(bytes_).subspan(before));
        } catch (...) {
            bytes_.resize(before);
            throw;
        }
        bytes_.resize(before + fetched);
        has_ended_ = fetched == 0;
        const std::string_view mark = mark_of(encoding_);
        if (is_at_beginning_) {
            if (!has_ended_ && bytes_.size() < mark.size()) continue;
            if (!mark.empty() && bytes_.starts_with(mark)) bytes_.erase(0, mark.size());
            is_at_beginning_ = false;
        }
        const std::size_t whole = has_ended_ ? bytes_.size() : whole_characters(encoding_, bytes_);
        ahead_ += decoded(encoding_, std::string_view(bytes_).substr(0, whole));
        bytes_.erase(0, whole);
    }
    held_.set(ahead_.size() * sizeof(char16_t) + bytes_.size());
    return ahead().size() >= count;
}

void TextStream::require_more() {
    if (!has_ahead(1)) raise_runtime_error(runtime_error::input_past_end);
}

void TextStream::note_place(TextView passed) {
    for (const char16_t unit : passed) {
        ++column_;
        if (unit != u'\n') continue;
        ++line_;
        column_ = 1;
    }
}

Text TextStream::take(std::size_t count) {
    Text text(ahead().substr(0, count));
    note_place(text);
    taken_ += text.size();
    return text;
}

std::pair<std::size_t, std::size_t> TextStream::line_ahead() {
    std::size_t searched = 0;
    for (;;) {
        const std::size_t end = ahead().find(u'\n', searched);
        if (end != TextView::npos) {
            const bool has_return = end > 0 && ahead()[end - 1] == u'\r';
            return has_return ? std::pair(end - 1, std::size_t{2}) : std::pair(end, std::size_t{1});
        }
        searched = ahead().size();
        if (!has_ahead(searched + 1)) return {searched, 0};
    }
}

std::int32_t TextStream::Line() {
    if (!read_ && !write_) raise_runtime_error(runtime_error::object_not_set);
    return line_;
}

std::int32_t TextStream::Column() {
    if (!read_ && !write_) raise_runtime_error(runtime_error::object_not_set);
    return column_;
}

bool TextStream::AtEndOfStream() {
    require_reading();
    return !has_ahead(1);
}

bool TextStream::AtEndOfLine() {
    require_reading();
    if (!has_ahead(1)) return true;
    if (ahead().front() == u'\n') return true;
    return ahead().front() == u'\r' && has_ahead(2) && ahead()[1] == u'\n';
}

Text TextStream::Read(std::int32_t count) {
    require_reading();
    const std::size_t wanted = count_of(count);
    if (wanted == 0) return {};
    require_more();
    has_ahead(wanted);
    return take(wanted);
}

Text TextStream::ReadLine() {
    require_reading();
    require_more();
    const auto [length, end] = line_ahead();
    Text line = take(length);
    take(end);
    return line;
}

Text TextStream::ReadAll() {
    require_reading();
    require_more();
    has_ahead(any_number);
    return take(any_number);
}

void TextStream::Skip(std::int32_t count) {
    require_reading();
    for (std::size_t left = count_of(count); left > 0;) {
        require_more();
        left -= take(left).size();
    }
}

void TextStream::SkipLine() { ReadLine(); }

void TextStream::put(Text text) {
    require_writing();
    write_(encoded(encoding_, text));
    note_place(text);
}

void TextStream::Write(const Text& text) { put(text); }
void TextStream::WriteLine(const Text& text) { put(text + u"\n"); }
void TextStream::WriteBlankLines(std::int32_t count) {
    const std::size_t lines = count_of(count);
    if (lines > most_characters) raise_runtime_error(runtime_error::out_of_memory);
    put(Text(lines, u'\n'));
}

void TextStream::Close() {
    read_ = nullptr;
    write_ = nullptr;
}

template struct detail::callee<TextStream>;

}  // namespace orvo
