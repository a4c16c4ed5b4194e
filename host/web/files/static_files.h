#pragma once

#include <filesystem>
#include <string_view>

#include "host/web/files/compressed_files.h"
#include "host/web/messages/http_message.h"
#include "host/web/messages/request_conditions.h"

namespace orvo::web {

// The content type of a file that may be sent as it is; empty for any other one. What pages are
// made of (.asp, .inc, .ini) is never sent, nor is a file of a kind that is not known.
std::string_view content_type_of(const std::filesystem::path& file);

// Files as they stand, for GET and HEAD. Any thread.
class StaticFiles {
public:
    // 304 where the browser has it already, 206 or 416 where it asks for a range of bytes, and in
    // gzip's form where it is text and the browser takes that. Raises Refusal (403) where the file
    // cannot be read.
    HttpResponse answer(const std::filesystem::path& path, const HttpRequest& request);

private:
    static HttpResponse part(HttpResponse response, const std::shared_ptr<const OpenFile>& file,
                             const ByteRange& range, std::string_view tag);

    CompressedFiles compressed_;
};

}  // namespace orvo::web
