// Forms sent as multipart/form-data. The input is a content type, and behind the first line end the
// body.

#include "host/web/messages/http_message.h"
#include "host/web/messages/multipart.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::web;

constexpr std::size_t largest_text = 1000;
constexpr std::size_t block = 64 * 1024;

struct Read {
    RequestForm form;
    int status = 200;
};

Read read(std::string bytes, std::string_view type) {
    Read result;
    try {
        result.form = read_multipart(RequestBody(std::move(bytes)), type, largest_text);
    } catch (const Refusal& refusal) {
        result.status = refusal.status;
    }
    return result;
}

void check(const RequestForm& form, std::string_view body) {
    std::size_t texts = 0;
    for (const auto& field : form.fields.all())
        for (const Text& value : field.values) texts += value.size();
    require(texts <= largest_text, "texts have a bound");
    std::uint64_t end = 0;
    for (const UploadedFile& file : form.files) {
        require(file.offset >= end && file.offset + file.size <= body.size(),
                "files stand in the body, one behind the other");
        end = file.offset + file.size;
        require(file.name.find_first_of(u"/\\") == Text::npos && file.name != u"..",
                "a file's name has no folder");
    }
}

}  // namespace

void multipart_properties(std::string_view input) {
    const auto [type, body] = first_line_and_rest(input);
    const Read whole = read(std::string(body), type);
    if (whole.status != 200) {
        require(whole.status == 400 || whole.status == 413, "a form is refused as a form");
        return;
    }
    check(whole.form, body);

    // What stands in front of the first part does not count, wherever blocks end.
    const std::string before(block - std::min(block, body.size() / 2), 'x');
    const Read later = read(before + "\r\n" + std::string(body), type);
    require(later.status == 200, "text may stand in front of a form");
    require(later.form.fields.all().size() == whole.form.fields.all().size() &&
                later.form.files.size() == whole.form.files.size(),
            "a form is the same wherever it stands");
    for (std::size_t i = 0; i < whole.form.files.size(); ++i) {
        const UploadedFile& one = whole.form.files[i];
        const UploadedFile& other = later.form.files[i];
        require(other.offset == one.offset + before.size() + 2 && other.size == one.size &&
                    other.name == one.name,
                "a file is the same wherever it stands");
    }
}

}  // namespace orvo::fuzz
