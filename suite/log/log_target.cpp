#include "suite/log/log_target.h"

namespace orvo {

namespace {

std::filesystem::path usual_file(const LogEnvironment& environment) {
    // Only Windows has the first.
    std::filesystem::path folder = environment.local_app_data;
    if (folder.empty()) folder = environment.state_home;
    if (!folder.is_absolute()) {
        folder = environment.home;
        if (folder.empty()) return {};
        folder /= ".local/state";
    }
    return folder / "orvo" / "orvo.log";
}

}  // namespace

LogTarget log_target_of(const LogEnvironment& environment) {
    LogTarget target;
    target.file = environment.file;
    target.standard_error = environment.standard_error == u"1";
    if (!target.file.empty() || target.standard_error) return target;
    target.file = usual_file(environment);
    target.standard_error = target.file.empty();
    return target;
}

bool log_notes_of_environment() { return environment_variable("ORVO_LOG_LEVEL") != u"error"; }

}  // namespace orvo
