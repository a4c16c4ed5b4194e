#include "host/web/intrinsics/page_failure.h"

#include <fstream>

#include "host/web/files/site_files.h"
#include "host/web/intrinsics/intrinsics.h"
#include "platform/interfaces/hosted.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

constexpr std::int32_t unspecified_error = error_number(0x80004005);

Text line_of(const std::filesystem::path& root, const script::Place& place) {
    const auto file = place.line > 0 ? try_site_file(root, place.file) : std::nullopt;
    if (!file) return {};
    std::ifstream stream(*file, std::ios::binary);
    std::string line;
    for (int i = 0; i < place.line; ++i)
        if (!std::getline(stream, line)) return {};
    if (line.ends_with('\r')) line.pop_back();
    return from_utf8(line);
}

}  // namespace

class AspErrorObject final : public AspError {
public:
    explicit AspErrorObject(PageFailure failure) : failure_(std::move(failure)) {}

    Text ASPCode() override { return failure_.asp_code; }
    std::int32_t Number() override { return failure_.number; }
    Text Category() override { return failure_.category; }
    Text File() override { return from_utf8(failure_.file); }
    std::int32_t Line() override { return failure_.line; }
    Text Description() override { return failure_.description; }
    Text ASPDescription() override { return failure_.asp_description; }
    std::int32_t Column() override { return -1; }
    Text Source() override { return failure_.source_line; }
    Text Reference() override { return failure_.reference; }

private:
    const PageFailure failure_;
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto class_of<web::AspErrorObject> = describe_class<web::AspError>("ASPError");
}

namespace orvo::web {

PageFailure failure_of(const PageError& error, const std::filesystem::path& root) {
    const Text message = from_utf8(error.message);
    return {.number = unspecified_error,
            .category = u"Pages",
            .file = error.place.file,
            .line = error.place.line,
            .source_line = line_of(root, error.place),
            .description = message,
            .asp_description = message};
}

PageFailure failure_of(const script::ScriptError& error, const std::filesystem::path& root) {
    const bool is_late = error.trouble == script::Trouble::time_limit;
    const Text message = from_utf8(error.message);
    PageFailure failure{.number = error.number ? error.number : unspecified_error,
                        .category = error.source,
                        .file = error.place.file,
                        .line = error.place.line,
                        .source_line = line_of(root, error.place),
                        .description = error.description.empty() ? message : error.description};
    if (failure.category.empty())
        failure.category =
            error.trouble == script::Trouble::syntax ? u"JScript compilation" : u"JScript runtime";
    if (is_late) {
        failure.asp_code = u"ASP 0113";
        failure.category = u"Pages";
        failure.asp_description = message;
    }
    return failure;
}

PageFailure failure_of(const std::exception& error) {
    const Text message = from_utf8(error.what());
    return {.number = unspecified_error,
            .category = u"Pages",
            .description = message,
            .asp_description = message};
}

Object asp_error(PageFailure failure) { return make<AspErrorObject>(std::move(failure)).object(); }

}  // namespace orvo::web
