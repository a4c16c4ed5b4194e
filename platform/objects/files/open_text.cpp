#include <memory>

#include "platform/objects/context/app_server.h"
#include "platform/objects/files/file_entries.h"
#include "platform/objects/files/opened_file.h"
#include "platform/objects/files/text_stream.h"

namespace orvo {
namespace {

Object reader(std::shared_ptr<OpenedFile> file, Encoding encoding) {
    return make<TextStream>(
               ReadBytes([file = std::move(file)](std::span<char> to) { return file->read(to); }),
               encoding, counted_memory())
        .object();
}

Object writer(std::shared_ptr<OpenedFile> file, Encoding encoding) {
    if (encoding == Encoding::utf16 && file->size() == 0) file->write(mark_of(encoding));
    return make<TextStream>(
               WriteBytes([file = std::move(file)](std::string_view bytes) { file->write(bytes); }),
               encoding)
        .object();
}

Encoding encoding_of(std::int32_t format) {
    if (format != TristateTrue && format != TristateFalse && format != TristateUseDefault)
        raise_runtime_error(runtime_error::invalid_call);
    return format == TristateTrue ? Encoding::utf16 : Encoding::utf8;
}

// What a file that is there begins with.
Encoding encoding_in(const UsablePath& path) {
    OpenedFile file(path, OpenedFile::Use::read);
    const std::string_view mark = mark_of(Encoding::utf16);
    char begin[2] = {};
    const bool is_marked = file.size() >= mark.size() && file.read(begin) == mark.size() &&
                           std::string_view(begin, mark.size()) == mark;
    return is_marked ? Encoding::utf16 : Encoding::utf8;
}

}  // namespace

Object open_text(const UsablePath& path, std::int32_t mode, bool create, std::int32_t format) {
    using Use = OpenedFile::Use;
    Encoding encoding = encoding_of(format);
    const bool is_there_already = is_there(path, EntryKind::file);
    if (!is_there_already && create) OpenedFile(path, Use::append);
    if (!is_there_already && !create && mode == ForAppending)
        raise_runtime_error(runtime_error::file_not_found);
    switch (mode) {
        case ForReading:
            if (format == TristateUseDefault) encoding = encoding_in(path);
            return reader(std::make_shared<OpenedFile>(path, Use::read), encoding);
        case ForWriting:
            return writer(std::make_shared<OpenedFile>(path, Use::rewrite), encoding);
        case ForAppending:
            return writer(std::make_shared<OpenedFile>(path, Use::append), encoding);
        default:
            raise_runtime_error(runtime_error::invalid_call);
    }
}

Object create_text(const UsablePath& path, bool overwrite, bool unicode) {
    const auto use = overwrite ? OpenedFile::Use::replace : OpenedFile::Use::create;
    return writer(std::make_shared<OpenedFile>(path, use),
                  unicode ? Encoding::utf16 : Encoding::utf8);
}

}  // namespace orvo
