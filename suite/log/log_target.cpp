#include "suite/log/log_target.h"

#include <cstdlib>
#include <string_view>

namespace orvo {

namespace {

std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::filesystem::path usual_file() {
    std::filesystem::path folder = variable("XDG_STATE_HOME");
    if (!folder.is_absolute()) {
        folder = variable("HOME");
        if (folder.empty()) return {};
        folder /= ".local/state";
    }
    return folder / "orvo" / "orvo.log";
}

}  // namespace

LogTarget log_target_of_environment() {
    LogTarget target;
    target.file = variable("ORVO_LOG_FILE");
    target.standard_error = variable("ORVO_LOG_STDERR") == "1";
    if (!target.file.empty() || target.standard_error) return target;
    target.file = usual_file();
    target.standard_error = target.file.empty();
    return target;
}

bool log_notes_of_environment() { return variable("ORVO_LOG_LEVEL") != "error"; }

}  // namespace orvo
