#include "host/web/messages/multipart.h"

#include <algorithm>

#include "host/web/messages/http_message.h"

namespace orvo::web {
namespace {

constexpr std::uint64_t nowhere = ~std::uint64_t{0};
constexpr std::size_t block_size = 64 * 1024;

[[noreturn]] void refuse(const std::string& reason) {
    throw Refusal(400, "The form cannot be read: " + reason + ".");
}

std::string_view without_blanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// The value of `name` in "form-data; name=\"x\"; filename=\"y\""; has_it tells whether it is there.
std::string parameter(std::string_view header, std::string_view name, bool& has_it) {
    has_it = false;
    std::size_t place = header.find(';');
    while (place != std::string_view::npos) {
        ++place;
        const auto equals = header.find('=', place);
        if (equals == std::string_view::npos) return {};
        const auto key = without_blanks(header.substr(place, equals - place));
        std::string value;
        std::size_t end = equals + 1;
        if (end < header.size() && header[end] == '"') {
            for (++end; end < header.size() && header[end] != '"'; ++end) {
                if (header[end] == '\\' && end + 1 < header.size() &&
                    (header[end + 1] == '"' || header[end + 1] == '\\'))
                    ++end;
                value += header[end];
            }
            end = header.find(';', std::min(end, header.size()));
        } else {
            const auto next = header.find(';', end);
            value = without_blanks(header.substr(end, next - end));
            end = next;
        }
        if (equal_ascii_ignoring_case(key, name)) {
            has_it = true;
            return value;
        }
        place = end;
    }
    return {};
}

// A body, of which one block at a time is in memory.
class BodyText {
public:
    explicit BodyText(const RequestBody& body) : body_(body) {}

    // Where `text`, which is shorter than a block, stands next, from `place` on; nowhere where it
    // does not begin before `end`.
    std::uint64_t find(std::string_view text, std::uint64_t place, std::uint64_t end = nowhere) {
        while (place + text.size() <= body_.size() && place < end) {
            load(place, text.size());
            const auto found = block_.find(text, static_cast<std::size_t>(place - begin_));
            if (found != std::string::npos) return begin_ + found < end ? begin_ + found : nowhere;
            place = begin_ + block_.size() - (text.size() - 1);
        }
        return nowhere;
    }
    bool stands_at(std::uint64_t place, std::string_view text) {
        return place + text.size() <= body_.size() && piece(place, place + text.size()) == text;
    }
    std::string piece(std::uint64_t begin, std::uint64_t end) {
        std::string text(static_cast<std::size_t>(end - begin), '\0');
        text.resize(body_.read(begin, text));
        return text;
    }

private:
    void load(std::uint64_t place, std::size_t size) {
        if (place >= begin_ && place + size <= begin_ + block_.size()) return;
        begin_ = place;
        block_.resize(block_size);
        block_.resize(body_.read(place, block_));
    }

    const RequestBody& body_;
    std::uint64_t begin_ = 0;
    std::string block_;
};

struct PartHeader {
    std::string name;
    bool is_file = false;
    std::string file_name;
    std::string content_type;
};

PartHeader read_header(std::string_view lines) {
    PartHeader header;
    bool is_named = false;
    while (!lines.empty()) {
        const auto end = lines.find("\r\n");
        const auto line = lines.substr(0, end);
        lines.remove_prefix(end + 2);
        const auto colon = line.find(':');
        if (colon == std::string_view::npos) continue;
        const auto name = line.substr(0, colon);
        if (equal_ascii_ignoring_case(name, "content-type"))
            header.content_type = without_blanks(line.substr(colon + 1));
        if (!equal_ascii_ignoring_case(name, "content-disposition") || is_named) continue;
        header.file_name = parameter(line, "filename", header.is_file);
        header.name = parameter(line, "name", is_named);
    }
    if (!is_named) refuse("a part has no name");
    return header;
}

// The last part of a path of any system, without control characters.
Text base_name(std::string_view path) {
    Text name = from_utf8(path.substr(path.find_last_of("/\\") + 1));
    std::erase_if(name, [](char16_t c) { return c < 0x20 || c == 0x7F; });
    return name == u"." || name == u".." ? Text() : name;
}

// Adds the parts of a form to what is known of it.
class FormReader {
public:
    FormReader(const RequestBody& body, std::size_t largest_text)
        : text_(body), largest_text_(largest_text) {}

    RequestForm read(const std::string& boundary) {
        const std::string delimiter = "\r\n--" + boundary;
        // The first delimiter may stand at the very beginning.
        std::uint64_t place = 0;
        if (!text_.stands_at(0, std::string_view(delimiter).substr(2))) {
            place = text_.find(delimiter, 0);
            if (place == nowhere) refuse("its boundary is not in it");
            place += 2;
        }
        place += delimiter.size() - 2;
        while (!text_.stands_at(place, "--")) {
            const auto line = text_.find("\r\n", place);
            const auto next = line == nowhere ? nowhere : text_.find(delimiter, line + 2);
            if (next == nowhere) refuse("its last part does not end");
            add(line + 2, next);
            place = next + delimiter.size();
        }
        return std::move(form_);
    }

private:
    void add(std::uint64_t begin, std::uint64_t end) {
        const auto limit = std::min(end, begin + largest_part_header);
        const auto end_of_header = text_.find("\r\n\r\n", begin, limit);
        if (end_of_header == nowhere || end_of_header + 4 > end)
            refuse(limit < end ? "the header of a part is too long" : "a part has no header");
        PartHeader header = read_header(text_.piece(begin, end_of_header + 2));
        const auto content = end_of_header + 4;
        if (header.is_file)
            add_file(std::move(header), content, end - content);
        else
            add_field(header.name, content, end);
    }

    void add_file(PartHeader header, std::uint64_t offset, std::uint64_t size) {
        if (++files_ > most_files)
            throw Refusal(400, "The form has more than " + std::to_string(most_files) + " files.");
        if (header.file_name.empty() && size == 0) return;
        form_.files.push_back({from_utf8(header.name), base_name(header.file_name),
                               std::move(header.content_type), offset, size});
    }

    void add_field(const std::string& name, std::uint64_t begin, std::uint64_t end) {
        if (++fields_ > most_fields)
            throw Refusal(400,
                          "The request has more than " + std::to_string(most_fields) + " fields.");
        if (end - begin > largest_text_ - text_size_)
            throw Refusal(413, "The texts of the form are larger than " +
                                   std::to_string(largest_text_) + " bytes.");
        text_size_ += static_cast<std::size_t>(end - begin);
        form_.fields.add(from_utf8(name), from_utf8(text_.piece(begin, end)));
    }

    BodyText text_;
    const std::size_t largest_text_;
    std::size_t text_size_ = 0;
    std::size_t fields_ = 0;
    std::size_t files_ = 0;
    RequestForm form_;
};

}  // namespace

RequestForm read_multipart(const RequestBody& body, std::string_view content_type,
                           std::size_t largest_text) {
    bool has_boundary = false;
    const std::string boundary = parameter(content_type, "boundary", has_boundary);
    if (boundary.empty() || boundary.size() > 70) refuse("it has no usable boundary");
    return FormReader(body, largest_text).read(boundary);
}

RequestForm form_of(const HttpRequest& request, std::size_t largest_text) {
    const std::string_view type = request.header("Content-Type");
    const auto media = without_blanks(type.substr(0, type.find(';')));
    if (equal_ascii_ignoring_case(media, "application/x-www-form-urlencoded"))
        return {.fields = parse_urlencoded(request.body.text())};
    if (equal_ascii_ignoring_case(media, "multipart/form-data"))
        return read_multipart(request.body, type, largest_text);
    return {};
}

}  // namespace orvo::web
