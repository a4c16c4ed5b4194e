#pragma once

#include "host/common/command_line.h"

namespace orvo {

struct RegisterCommandLine : CommandLine {
    RegisterCommandLine();

    std::vector<std::string> modules;
    std::vector<std::string> classes;  // "Maker.Class={CLSID}"
    bool unregister = false;
};

}  // namespace orvo
