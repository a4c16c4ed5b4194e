#pragma once

#include <fstream>

#include "suite/configuration/ini_files.h"
#include "suite/configuration/suite_configuration.h"
#include "tests/support/slapd_directory.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory {

// The sample shop behind a map that looks for users, and gives them a value of an attribute that
// the server does not know: everything goes through the map, and has to be as without it.
class MappedShop final : public SlapdDirectory {
public:
    explicit MappedShop(const DirectoryOptions& options) : SlapdDirectory(options) {
        const std::filesystem::path file = folder_.path() / "site.ini";
        std::ofstream(file) << content_of(site_ini())
                            << "\n[DIRECTORY.MAP]\nUserSearch = sub\nLoginAttributes = cn\n"
                               "EmployeeNumber =\n"
                               "[DIRECTORY.MAP.DEFAULTS]\nEmployeeNumber = 4711\n";
        SuiteConfiguration().LoadConfigurationFile(text_of(file));
    }

private:
    TempFolder folder_;
};

}  // namespace orvo::directory
