#include "tests/support/temp_folder.h"

#include <stdlib.h>

#include <cerrno>
#include <string>
#include <system_error>

namespace orvo {

TempFolder::TempFolder() {
    std::string name = std::filesystem::temp_directory_path() / "orvo-XXXXXX";
    if (!mkdtemp(name.data())) {
        throw std::system_error(errno, std::generic_category(), "mkdtemp " + name);
    }
    path_ = name;
}

TempFolder::~TempFolder() {
    std::error_code left_behind;  // a destructor cannot report it
    std::filesystem::remove_all(path_, left_behind);
}

}  // namespace orvo
