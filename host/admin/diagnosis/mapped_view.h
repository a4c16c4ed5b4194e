#pragma once

#include <string>
#include <vector>

#include "host/admin/diagnosis/directory_view.h"
#include "suite/directory/ldap/provider/mapped_directory.h"

namespace orvo::admin {

// A directory that DIRECTORY.MAP describes, as the component knows it: our names and values, those
// that come from groups among them. Entries keep their real names. A user's name is looked for as
// in a login, and an account of the map is an entry without attributes.
class MappedView : public DirectoryView {
public:
    // Both live longer; `directory` has learned what the server knows.
    MappedView(directory::ldap::Session& session, directory::ldap::MappedDirectory& directory)
        : session_(session), directory_(directory) {}

    std::optional<directory::EntryData> find(const std::string& name) override;
    // Entries without attributes. None where `base` is not there.
    std::vector<directory::EntryData> search(const std::string& base, const std::string& filter,
                                             std::size_t most) override;

private:
    directory::ldap::Session& session_;
    directory::ldap::MappedDirectory& directory_;
};

}  // namespace orvo::admin
