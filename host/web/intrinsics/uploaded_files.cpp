#include "host/web/intrinsics/uploaded_files.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

#include "platform/interfaces/enumerator.h"
#include "platform/interfaces/hosted.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

constexpr std::int32_t file_exists = 58;
constexpr std::int32_t permission_denied = 70;
constexpr std::int32_t path_not_found = 76;

bool lies_in(const fs::path& path, const fs::path& folder) {
    return std::ranges::mismatch(folder, path).in1 == folder.end();
}

// Where a page may write a new file. Raises Failure.
fs::path allowed_file(const PageContext& page, const Text& path) {
    // The system would take what stands in front of it.
    if (path.find(u'\0') != Text::npos) raise_runtime_error(runtime_error::invalid_call);
    const fs::path asked = to_utf8(path);
    std::error_code error;
    const fs::path folder = fs::canonical(asked.parent_path(), error);
    if (!asked.is_absolute() || error || !asked.has_filename())
        throw Failure(path_not_found, {},
                      u"\"" + path +
                          u"\" is no file in a folder that is there; Server.MapPath gives whole "
                          u"paths");
    const fs::path file = folder / asked.filename();
    const bool is_allowed = std::ranges::any_of(
        page.file_folders, [&](const fs::path& allowed) { return lies_in(folder, allowed); });
    if (!is_allowed)
        throw Failure(permission_denied, {},
                      u"\"" + path +
                          u"\" is not below a folder that pages may write to (site.ini, "
                          u"FileFolders)");
    if (is_part_of_pages(page, file))
        throw Failure(permission_denied, {},
                      u"\"" + path + u"\" would become a part of the site's pages");
    return file;
}

// A file that is written, and removed again unless it is finished.
class NewFile {
public:
    explicit NewFile(fs::path path)
        : path_(std::move(path)), stream_(std::fopen(path_.c_str(), "wbx")) {
        if (!stream_)
            throw Failure(
                errno == EEXIST ? file_exists : permission_denied, {},
                from_utf8(path_.string()) + (errno == EEXIST ? u": the file is there already"
                                                             : u": the file cannot be written"));
    }
    ~NewFile() {
        if (!stream_) return;
        std::fclose(stream_);
        std::remove(path_.c_str());
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    void write(std::string_view bytes) {
        if (std::fwrite(bytes.data(), 1, bytes.size(), stream_) != bytes.size()) refuse();
    }
    void finish() {
        if (std::fflush(stream_) != 0) refuse();
        std::fclose(std::exchange(stream_, nullptr));
    }

private:
    [[noreturn]] void refuse() const {
        throw Failure(permission_denied, {},
                      from_utf8(path_.string()) + u": the disk does not take it");
    }

    const fs::path path_;
    std::FILE* stream_;
};

}  // namespace

class FormFileObject final : public FormFile {
public:
    FormFileObject(std::shared_ptr<PageContext> page, const UploadedFile& file)
        : page_(std::move(page)), file_(file) {}

    Text Name() override { return file_.field; }
    Text FileName() override { return file_.name; }
    Text ContentType() override { return from_utf8(file_.content_type); }
    double Size() override { return static_cast<double>(file_.size); }

    void SaveAs(const Text& path) override {
        NewFile target(allowed_file(*page_, replaced(path, u"\\", u"/")));
        std::array<char, 64 * 1024> block{};
        for (std::uint64_t place = 0; place < file_.size; place += block.size())
            target.write(read(place, block));
        target.finish();
    }

    Variant BinaryRead(const Variant& count) override {
        const std::uint64_t left = file_.size - read_;
        const std::uint64_t asked = count.is_missing() ? left : count_of_bytes(count);
        std::string bytes(static_cast<std::size_t>(std::min({asked, left, largest_read})), '\0');
        const auto got = read(read_, bytes);
        read_ += got.size();
        return Variant::bytes(got);
    }

private:
    // What stands at a place of the file, as far as `to` has room.
    std::string_view read(std::uint64_t place, std::span<char> to) const {
        const auto size =
            static_cast<std::size_t>(std::min<std::uint64_t>(to.size(), file_.size - place));
        return {to.data(), page_->request.body.read(file_.offset + place, to.first(size))};
    }

    const std::shared_ptr<PageContext> page_;
    const UploadedFile& file_;  // the page's
    std::uint64_t read_ = 0;
};

class FormFilesObject final : public FormFiles {
public:
    explicit FormFilesObject(std::shared_ptr<PageContext> page) : page_(std::move(page)) {}

    Object Item(const Variant& index) override;
    std::int32_t Count() override { return static_cast<std::int32_t>(page_->form.files.size()); }
    Object NewEnum() override;

private:
    const std::shared_ptr<PageContext> page_;
};

}  // namespace orvo::web

namespace orvo {
template <>
inline constexpr auto class_of<web::FormFileObject> = describe_class<web::FormFile>("Request.File");
template <>
inline constexpr auto class_of<web::FormFilesObject> =
    describe_class<web::FormFiles>("Request.Files");
}  // namespace orvo

namespace orvo::web {

Object FormFilesObject::Item(const Variant& index) {
    const auto& files = page_->form.files;
    if (index.is_text() || index.is_object()) {
        const Text name = index.to<Text>();
        for (const UploadedFile& file : files)
            if (equal_ignoring_case(file.field, name))
                return make<FormFileObject>(page_, file).object();
        return {};
    }
    const auto number = index.to<std::int32_t>();
    if (number < 1 || static_cast<std::size_t>(number) > files.size())
        raise_runtime_error(runtime_error::subscript_out_of_range);
    return make<FormFileObject>(page_, files[static_cast<std::size_t>(number) - 1]).object();
}

Object FormFilesObject::NewEnum() {
    std::vector<Variant> files;
    for (const UploadedFile& file : page_->form.files)
        files.emplace_back(make<FormFileObject>(page_, file).object());
    return make_enumerator(std::move(files));
}

bool is_part_of_pages(const PageContext& page, const fs::path& file) {
    if (!lies_in(file, page.root)) return false;
    const std::string ending = file.extension().string();
    return std::ranges::any_of(
        std::initializer_list<std::string_view>{".asp", ".asa", ".inc", ".ini"},
        [&](std::string_view known) { return equal_ascii_ignoring_case(ending, known); });
}

Object files_object(std::shared_ptr<PageContext> page) {
    return make<FormFilesObject>(std::move(page)).object();
}

std::uint64_t count_of_bytes(const Variant& count) {
    const double number = count.to<double>();
    if (!(number >= 0)) raise_runtime_error(runtime_error::invalid_call);
    return number >= static_cast<double>(largest_read) ? largest_read
                                                       : static_cast<std::uint64_t>(number);
}

}  // namespace orvo::web
