#include "tests/support/test_directory.h"

#include "tests/support/embedded_shop.h"
#include "tests/support/slapd_directory.h"

namespace orvo {
namespace {

template <class Kind>
std::unique_ptr<TestDirectory> made(const DirectoryOptions& options) {
    return std::make_unique<Kind>(options);
}

}  // namespace

const std::vector<DirectoryKind>& every_directory() {
    static const std::vector<DirectoryKind> kinds = {
        {"Slapd", u"OrvoDirectory.Ldap", made<SlapdDirectory>},
        {"Embedded", u"OrvoDirectory.Embedded", made<EmbeddedShop>}};
    return kinds;
}

}  // namespace orvo
