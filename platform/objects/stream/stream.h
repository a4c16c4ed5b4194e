#pragma once

// A stream of bytes or of text in memory, filled from files and written to them. Numbers and names
// are the platform's own. Belongs to the thread that made it.
//
// Texts have a byte order mark in front where their character set has one: the first text that is
// written at the beginning brings it, reading at the beginning passes it over. Positions and sizes
// count bytes.
//
// Raises 3704 on a stream that is closed and 3705 on one that is open, where it must not be; 3001
// for arguments that mean nothing; 3219 for what the stream's type or mode has no use for; 7 for
// more than 256 MiB.

#include "platform/interfaces/hosted.h"
#include "platform/objects/context/app_server.h"
#include "platform/objects/files/encoding.h"
#include "platform/objects/recordset/long_ptr.h"

namespace orvo {

enum StreamType : std::int32_t { adTypeBinary = 1, adTypeText = 2 };
enum LineSeparator : std::int32_t { adLF = 10, adCR = 13, adCRLF = -1 };
enum StreamRead : std::int32_t { adReadAll = -1, adReadLine = -2 };
enum StreamWrite : std::int32_t { adWriteChar = 0, adWriteLine = 1 };
enum StreamSave : std::int32_t { adSaveCreateNotExist = 1, adSaveCreateOverWrite = 2 };
enum StreamMode : std::int32_t { adModeUnknown = 0, adModeRead = 1, adModeWrite = 2 };

class Stream {
public:
    // held: where what it keeps is counted.
    explicit Stream(HeldMemory held = counted_memory()) : held_(std::move(held)) {}

    LongPtr Size();
    bool EOS();
    LongPtr Position();
    // Behind the end, the stream grows by zeros.
    void SetPosition(LongPtr position);
    std::int32_t Type() { return type_; }
    // Only at the beginning, as the character set.
    void SetType(std::int32_t type);
    std::int32_t LineSeparator() { return separator_; }
    void SetLineSeparator(std::int32_t separator);
    std::int32_t State() { return is_open_ ? 1 : 0; }
    std::int32_t Mode() { return mode_; }
    // Only while it is closed.
    void SetMode(std::int32_t mode);
    Text Charset() { return charset_; }
    void SetCharset(const Text& charset);
    // Null at the end.
    Variant Read(std::int32_t count);
    // With a source: 3251. The rest but for the mode has no effect.
    void Open(const Variant& source, std::int32_t mode, std::int32_t options, const Text& user,
              const Text& password);
    void Close();
    void SkipLine();
    // An array of bytes.
    void Write(const Variant& buffer);
    // What is behind the position is gone.
    void SetEOS();
    // From the position to that of another open stream: characters into text, bytes into bytes.
    void CopyTo(const Ref<Stream>& target, LongPtr count);
    void Flush();
    // All of it; the position is at the beginning then. Raises 3004 for a file that is there, where
    // it may not be overwritten, and for one that cannot be written.
    void SaveToFile(const Text& file, std::int32_t options);
    // In the place of what was in it. Raises 3002.
    void LoadFromFile(const Text& file);
    // Empty at the end.
    Text ReadText(std::int32_t count);
    void WriteText(const Text& text, std::int32_t options);
    void Cancel();

private:
    void require_open() const;
    void require_type(std::int32_t type) const;
    void require_reading() const;
    void require_writing() const;
    std::string_view rest() const { return std::string_view(bytes_).substr(position_); }
    std::string_view line_end() const;
    void skip_mark();
    std::string take(std::size_t count);
    // The bytes of that many characters ahead.
    std::string take_characters(std::int32_t count);
    std::string take_line();
    void resize(std::size_t size);
    void put(std::string_view bytes);
    void put_text(TextView text);

    HeldMemory held_;
    std::string bytes_;
    std::size_t position_ = 0;
    bool is_open_ = false;
    std::int32_t type_ = adTypeText;
    std::int32_t mode_ = adModeUnknown;
    std::int32_t separator_ = adCRLF;
    Text charset_ = u"Unicode";
    Encoding encoding_ = Encoding::utf16;
};

// clang-format off
template <>
inline constexpr auto table_of<Stream> = describe<Stream>(
    "_Stream", "00000565-0000-0010-8000-00aa006d2ea4",
    get<&Stream::Size>("Size").id(1),
    get<&Stream::EOS>("EOS").id(2),
    get<&Stream::Position>("Position").id(3),
    put<&Stream::SetPosition>("Position", "position").id(3),
    get<&Stream::Type>("Type").id(4),
    put<&Stream::SetType>("Type", "type").id(4),
    get<&Stream::LineSeparator>("LineSeparator").id(5),
    put<&Stream::SetLineSeparator>("LineSeparator", "separator").id(5),
    get<&Stream::State>("State").id(6),
    get<&Stream::Mode>("Mode").id(7),
    put<&Stream::SetMode>("Mode", "mode").id(7),
    get<&Stream::Charset>("Charset").id(8),
    put<&Stream::SetCharset>("Charset", "charset").id(8),
    method<&Stream::Read>("Read", optional("NumBytes", adReadAll)).id(9),
    method<&Stream::Open>("Open", optional("Source"), optional("Mode"), optional("Options", -1),
                          optional("UserName"), optional("Password")).id(10),
    method<&Stream::Close>("Close").id(11),
    method<&Stream::SkipLine>("SkipLine").id(12),
    method<&Stream::Write>("Write", "Buffer").id(13),
    method<&Stream::SetEOS>("SetEOS").id(14),
    method<&Stream::CopyTo>("CopyTo", "DestStream", optional("CharNumber", -1)).id(15),
    method<&Stream::Flush>("Flush").id(16),
    method<&Stream::SaveToFile>("SaveToFile", "FileName",
                                optional("Options", adSaveCreateNotExist)).id(17),
    method<&Stream::LoadFromFile>("LoadFromFile", "FileName").id(18),
    method<&Stream::ReadText>("ReadText", optional("NumChars", adReadAll)).id(19),
    method<&Stream::WriteText>("WriteText", "Data", optional("Options")).id(20),
    method<&Stream::Cancel>("Cancel").id(21));
// clang-format on

template <>
inline constexpr auto class_of<Stream> =
    describe_class<Stream>("ADODB.Stream", "00000566-0000-0010-8000-00aa006d2ea4");

}  // namespace orvo
