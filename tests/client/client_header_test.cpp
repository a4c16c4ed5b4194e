#include <gtest/gtest.h>

#include "host/idl/client_header.h"
#include "host/idl/com_headers.h"
#include "tests/support/temp_folder.h"

namespace orvo {
namespace {

TEST(ClientHeader, TheCommittedTextIsTheOneThatTheTablesGive) {
    EXPECT_EQ(content_of(ORVO_COMMITTED), client_header())
        << "refresh it:\n    " << ORVO_REFRESH << " --client > " << ORVO_COMMITTED;
}

TEST(ComHeaders, TheCommittedTextsAreThoseThatTheTablesGive) {
    EXPECT_EQ(content_of(ORVO_COM_FOLDER "/OrvoMembership.h"), component_com_header())
        << "refresh it:\n    " << ORVO_REFRESH << " --com > " << ORVO_COM_FOLDER
        << "/OrvoMembership.h";
    EXPECT_EQ(content_of(ORVO_COM_FOLDER "/TavikPMMInterfaces.h"), provider_com_header())
        << "refresh it:\n    " << ORVO_REFRESH << " --com-interfaces > " << ORVO_COM_FOLDER
        << "/TavikPMMInterfaces.h";
}

}  // namespace
}  // namespace orvo
