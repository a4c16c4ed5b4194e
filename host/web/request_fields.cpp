#include "host/web/request_fields.h"

#include <algorithm>

#include "host/web/encoding.h"
#include "host/web/http_message.h"

namespace orvo::web {
namespace {

class Counter {
public:
    void count() {
        if (++count_ > most_fields)
            throw Refusal(400,
                          "The request has more than " + std::to_string(most_fields) + " fields.");
    }

private:
    std::size_t count_ = 0;
};

[[noreturn]] void refuse_multipart(const std::string& reason) {
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

void read_part(std::string_view part, RequestFields& fields, Counter& counter) {
    const auto end_of_headers = part.find("\r\n\r\n");
    if (end_of_headers == std::string_view::npos) refuse_multipart("a part has no header");
    std::string_view headers = part.substr(0, end_of_headers + 2);
    bool is_named = false;
    while (!headers.empty()) {
        const auto end = headers.find("\r\n");
        const auto line = headers.substr(0, end);
        headers.remove_prefix(end + 2);
        const auto colon = line.find(':');
        if (colon == std::string_view::npos ||
            !equal_ascii_ignoring_case(line.substr(0, colon), "content-disposition"))
            continue;
        bool is_file = false;
        parameter(line, "filename", is_file);
        const std::string name = parameter(line, "name", is_named);
        if (!is_named) break;
        if (is_file) return;
        counter.count();
        fields.add(from_utf8(name), from_utf8(part.substr(end_of_headers + 4)));
        return;
    }
    refuse_multipart("a part has no name");
}

}  // namespace

void RequestFields::add(Text name, Text value) {
    for (Field& field : fields_)
        if (equal_ignoring_case(field.name, name)) {
            field.values.push_back(std::move(value));
            return;
        }
    fields_.push_back({std::move(name), {std::move(value)}});
}

const RequestFields::Field* RequestFields::find(TextView name) const {
    const auto found = std::ranges::find_if(
        fields_, [&](const Field& field) { return equal_ignoring_case(field.name, name); });
    return found == fields_.end() ? nullptr : &*found;
}

RequestFields parse_urlencoded(std::string_view text) {
    RequestFields fields;
    Counter counter;
    while (!text.empty()) {
        const auto end = text.find('&');
        const auto pair = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (pair.empty()) continue;
        counter.count();
        const auto equals = pair.find('=');
        const auto value =
            equals == std::string_view::npos ? std::string_view() : pair.substr(equals + 1);
        fields.add(from_utf8(form_decoded(pair.substr(0, equals))), from_utf8(form_decoded(value)));
    }
    return fields;
}

RequestFields parse_multipart(std::string_view body, std::string_view content_type) {
    bool has_boundary = false;
    const std::string boundary = parameter(content_type, "boundary", has_boundary);
    if (boundary.empty() || boundary.size() > 70) refuse_multipart("it has no usable boundary");
    const std::string delimiter = "\r\n--" + boundary;
    RequestFields fields;
    Counter counter;
    // The first delimiter may stand at the very beginning.
    std::size_t place = 0;
    if (!body.starts_with(std::string_view(delimiter).substr(2))) {
        place = body.find(delimiter);
        if (place == std::string_view::npos) refuse_multipart("its boundary is not in it");
        place += 2;
    }
    place += delimiter.size() - 2;
    while (!body.substr(place).starts_with("--")) {
        const auto line = body.find("\r\n", place);
        const auto next = line == std::string_view::npos ? line : body.find(delimiter, line + 2);
        if (next == std::string_view::npos) refuse_multipart("its last part does not end");
        read_part(body.substr(line + 2, next - line - 2), fields, counter);
        place = next + delimiter.size();
    }
    return fields;
}

RequestFields form_of(const HttpRequest& request) {
    const std::string_view type = request.header("Content-Type");
    const auto media = without_blanks(type.substr(0, type.find(';')));
    if (equal_ascii_ignoring_case(media, "application/x-www-form-urlencoded"))
        return parse_urlencoded(request.body.text());
    if (equal_ascii_ignoring_case(media, "multipart/form-data"))
        return parse_multipart(request.body.text(), type);
    return {};
}

}  // namespace orvo::web
