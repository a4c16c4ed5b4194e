#pragma once

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/child_process.h"
#include "tests/support/environment.h"
#include "tests/support/temp_folder.h"

// The product's modules, registered for the test alone.
class InstalledModules : public testing::Test {
protected:
    InstalledModules() {
        const std::string bin = ORVO_BIN;
        std::vector<std::string> command{bin + "/orvo-register"};
        for (const char* name : {"OrvoMembership", "OrvoSuite", "OrvoEmbedded", "OrvoPlatform"})
            command.push_back(bin + "/" + name + ".so");
        orvo::output_of(command);
    }

    orvo::TempFolder folder_;

private:
    const orvo::Environment components_{"ORVO_COMPONENTS", folder_.path().string()};
    const orvo::Environment log_{"ORVO_LOG_FILE", (folder_.path() / "log").string()};
};
