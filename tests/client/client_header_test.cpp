#include <gtest/gtest.h>

#include "host/idl/client_header.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

TEST(ClientHeader, TheCommittedTextIsTheOneThatTheTablesGive) {
    EXPECT_EQ(content_of(ORVO_COMMITTED), client_header())
        << "refresh it:\n    " << ORVO_REFRESH << " --client > " << ORVO_COMMITTED;
}

}  // namespace
}  // namespace orvo
