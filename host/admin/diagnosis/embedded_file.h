#pragma once

#include <memory>

#include "host/admin/common/site_settings.h"
#include "host/admin/diagnosis/directory_view.h"
#include "host/admin/diagnosis/step.h"
#include "platform/values/secret.h"
#include "suite/directory/embedded/directory/directory.h"

namespace orvo::admin {

// All that is in the file: whoever may read it sees everything.
class FileView : public DirectoryView {
public:
    // The directory lives longer.
    explicit FileView(const directory::embedded::Directory& directory) : directory_(directory) {}

    std::optional<directory::EntryData> find(const std::string& name) override;
    std::vector<directory::EntryData> search(const std::string& base, const std::string& filter,
                                             std::size_t most) override;

private:
    const directory::embedded::Directory& directory_;
};

// The file of an embedded directory, and what the steps so far have found.
struct EmbeddedFile {
    const SiteSettings& site;
    std::shared_ptr<directory::embedded::Directory> directory = {};  // since its version is right

    std::filesystem::path path() const { return site.server; }
    std::string service() const;
    FileView view() { return FileView(*directory); }
};

// The steps of a file, in their order. Nothing in it is changed, nor are its tables brought up to
// date.
std::vector<Examined> examine_file(EmbeddedFile& file);

}  // namespace orvo::admin
