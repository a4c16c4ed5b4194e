#include <gtest/gtest.h>

#include "host/idl/properties_page.h"
#include "host/idl/properties_script.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

TEST(UserPropertiesPage, TheCommittedTextIsTheOneThatTheCatalogueGives) {
    EXPECT_EQ(content_of(ORVO_COMMITTED_PAGE), user_properties_page())
        << "refresh it:\n    " << ORVO_REFRESH << " --properties > " << ORVO_COMMITTED_PAGE;
}

TEST(UserPropertyList, TheCommittedTextIsTheOneThatTheCatalogueGives) {
    EXPECT_EQ(content_of(ORVO_COMMITTED_LIST), user_property_list_script())
        << "refresh it:\n    " << ORVO_REFRESH << " --property-list > " << ORVO_COMMITTED_LIST;
}

}  // namespace
}  // namespace orvo
