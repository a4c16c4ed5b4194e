#include "tests/support/test_directory.h"

#include "tests/support/slapd_directory.h"

namespace orvo {

const std::vector<DirectoryKind>& every_directory() {
    static const std::vector<DirectoryKind> kinds = {
        {"Slapd", u"OrvoDirectory.Ldap",
         [](const DirectoryOptions& options) -> std::unique_ptr<TestDirectory> {
             return std::make_unique<SlapdDirectory>(options);
         }}};
    return kinds;
}

}  // namespace orvo
