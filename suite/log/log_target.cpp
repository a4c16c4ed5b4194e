#include "suite/log/log_target.h"

#include "platform/automation/environment.h"

namespace orvo {

namespace {

std::filesystem::path usual_file() {
    // Only Windows has the first.
    std::filesystem::path folder = environment_variable("LOCALAPPDATA");
    if (folder.empty()) folder = environment_variable("XDG_STATE_HOME");
    if (!folder.is_absolute()) {
        folder = environment_variable("HOME");
        if (folder.empty()) return {};
        folder /= ".local/state";
    }
    return folder / "orvo" / "orvo.log";
}

}  // namespace

LogTarget log_target_of_environment() {
    LogTarget target;
    target.file = environment_variable("ORVO_LOG_FILE");
    target.standard_error = environment_variable("ORVO_LOG_STDERR") == u"1";
    if (!target.file.empty() || target.standard_error) return target;
    target.file = usual_file();
    target.standard_error = target.file.empty();
    return target;
}

bool log_notes_of_environment() { return environment_variable("ORVO_LOG_LEVEL") != u"error"; }

}  // namespace orvo
