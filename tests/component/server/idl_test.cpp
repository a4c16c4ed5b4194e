#include "component/server/idl.h"

#include <gtest/gtest.h>

#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

TEST(ComponentIdl, TheCommittedTextIsTheOneThatTheTablesGive) {
    EXPECT_EQ(content_of(ORVO_COMMITTED_IDL), component_idl())
        << "refresh it:\n    " << ORVO_REFRESH << " > " << ORVO_COMMITTED_IDL;
}

}  // namespace
}  // namespace orvo
