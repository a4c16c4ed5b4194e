#pragma once

// Text that is read or written in order: a file's, or one of the program's own streams. Belongs to
// the thread that made it.

#include <functional>
#include <span>

#include "platform/interfaces/hosted.h"
#include "platform/objects/context/memory_account.h"
#include "platform/objects/files/encoding.h"
#include "platform/values/text.h"

namespace orvo {

// Reads up to that many bytes; 0 at the end. May wait. Raises Failure.
using ReadBytes = std::function<std::size_t(std::span<char> to)>;
// Writes all of them. Raises Failure.
using WriteBytes = std::function<void(std::string_view bytes)>;

// A line ends with LF, or with CR and LF; what is written ends with LF. All members raise 54 on a
// stream of the other direction and 91 once it was closed.
class TextStream {
public:
    // held: where the text is counted that was read and is not taken yet.
    TextStream(ReadBytes read, Encoding encoding, HeldMemory held = {})
        : held_(std::move(held)), read_(std::move(read)), encoding_(encoding) {}
    TextStream(WriteBytes write, Encoding encoding)
        : write_(std::move(write)), encoding_(encoding) {}

    // Of the next character; both count from 1.
    std::int32_t Line();
    std::int32_t Column();
    bool AtEndOfStream();
    bool AtEndOfLine();
    // Up to that many characters. All reading raises 62 at the end of the stream and 7 for a text
    // of more than 64 million characters.
    Text Read(std::int32_t count);
    Text ReadLine();
    Text ReadAll();
    void Write(const Text& text);
    void WriteLine(const Text& text);
    void WriteBlankLines(std::int32_t count);
    void Skip(std::int32_t count);
    void SkipLine();
    void Close();

private:
    void require_reading() const;
    void require_writing() const;
    // Whether there are `count` characters ahead; reads until there are.
    bool has_ahead(std::size_t count);
    void require_more();
    TextView ahead() const { return TextView(ahead_).substr(taken_); }
    Text take(std::size_t count);
    // The length of the line ahead, without its end, and that of its end.
    std::pair<std::size_t, std::size_t> line_ahead();
    void note_place(TextView passed);
    void put(Text text);

    HeldMemory held_;
    ReadBytes read_;
    WriteBytes write_;
    Encoding encoding_;
    bool is_at_beginning_ = true;
    bool has_ended_ = false;
    std::string bytes_;  // the beginning of a character that is not there yet
    Text ahead_;         // what was read; the first `taken_` characters of it are taken
    std::size_t taken_ = 0;
    std::int32_t line_ = 1;
    std::int32_t column_ = 1;
};

// clang-format off
template <>
inline constexpr auto table_of<TextStream> = describe<TextStream>(
    "ITextStream", "53bad8c1-e718-11cf-893d-00a0c9054228",
    get<&TextStream::Line>("Line").id(10000),
    get<&TextStream::Column>("Column").id(-529),
    get<&TextStream::AtEndOfStream>("AtEndOfStream").id(10002),
    get<&TextStream::AtEndOfLine>("AtEndOfLine").id(10003),
    method<&TextStream::Read>("Read", "Characters").id(10004),
    method<&TextStream::ReadLine>("ReadLine").id(10005),
    method<&TextStream::ReadAll>("ReadAll").id(10006),
    method<&TextStream::Write>("Write", "Text").id(10007),
    method<&TextStream::WriteLine>("WriteLine", optional("Text")).id(10008),
    method<&TextStream::WriteBlankLines>("WriteBlankLines", "Lines").id(10009),
    method<&TextStream::Skip>("Skip", "Characters").id(10010),
    method<&TextStream::SkipLine>("SkipLine").id(10011),
    method<&TextStream::Close>("Close").id(10012));
// clang-format on

extern template struct detail::callee<TextStream>;

template <>
inline constexpr auto class_of<TextStream> = describe_class<TextStream>("Scripting.TextStream");

}  // namespace orvo
