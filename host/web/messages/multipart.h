#pragma once

// Forms sent as multipart/form-data.

#include <string>
#include <vector>

#include "host/web/messages/request_body.h"
#include "host/web/messages/request_fields.h"

namespace orvo::web {

// A file of a form, which stays where the request's body is.
struct UploadedFile {
    Text field;
    Text name;  // its last part alone, whatever path the browser sent
    std::string content_type;
    std::uint64_t offset = 0;  // in the body
    std::uint64_t size = 0;
};

struct RequestForm {
    RequestFields fields = {};
    std::vector<UploadedFile> files = {};
};

inline constexpr std::size_t most_files = 100;
inline constexpr std::size_t largest_part_header = 16 * 1024;

// The body is read block by block, and only texts are kept, `largest_text` bytes of them at most.
// Files that the form has a place for, but nobody has chosen, are left out. Raises Refusal: 400
// where the body is not what the content type says, or has too many fields or files, 413 where it
// has more text.
RequestForm read_multipart(const RequestBody& body, std::string_view content_type,
                           std::size_t largest_text);

// The form of a request, in either encoding; none where it has another content type.
RequestForm form_of(const HttpRequest& request, std::size_t largest_text);

}  // namespace orvo::web
