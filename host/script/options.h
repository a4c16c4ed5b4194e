#pragma once

#include "host/common/command_line.h"

namespace orvo::script {

struct ScriptCommandLine : CommandLine {
    ScriptCommandLine();

    // What stands behind FILE is the script's own, whatever it looks like.
    std::optional<int> read(int count, char** words);

    std::vector<std::string> includes;
    std::string file;
    std::vector<std::string> arguments;
};

}  // namespace orvo::script
