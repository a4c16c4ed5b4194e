#pragma once

// Where log entries go.

#include <compare>
#include <cstddef>
#include <filesystem>

#include "platform/values/environment.h"

namespace orvo {

// A file, the standard error, or both. When an entry would make the file larger than
// `largest_file`, the file is renamed (orvo.log becomes orvo.1.log, that becomes orvo.2.log, …) and
// a new one is begun; together there are never more than `file_count` files (at least one). An
// entry is never cut: one that is larger than that has a file of its own.
struct LogTarget {
    std::filesystem::path file;  // empty: no file
    bool standard_error = false;
    std::size_t largest_file = 5 * 1024 * 1024;  // bytes
    std::size_t file_count = 3;

    auto operator<=>(const LogTarget&) const = default;
};

// The variables that say where, as they are when it is made; empty ones count as none.
struct LogEnvironment {
    Text file = environment_variable("ORVO_LOG_FILE");
    Text standard_error = environment_variable("ORVO_LOG_STDERR");
    Text local_app_data = environment_variable("LOCALAPPDATA");
    Text state_home = environment_variable("XDG_STATE_HOME");
    Text home = environment_variable("HOME");

    bool operator==(const LogEnvironment&) const = default;
};

// As the environment asks for it:
//
//     ORVO_LOG_FILE     the file
//     ORVO_LOG_STDERR   1: the standard error too (alone: only the standard error)
//
// Without either the file is orvo/orvo.log in $XDG_STATE_HOME (which counts when it is an absolute
// path), otherwise in ~/.local/state, on Windows in %LOCALAPPDATA%; without a home folder it is the
// standard error.
LogTarget log_target_of(const LogEnvironment& environment);

// Whether notes are written: ORVO_LOG_LEVEL is not "error". ("note" asks for everything, as any
// other text and no text do: a misspelt level shall not hide entries.)
bool log_notes_of_environment();

}  // namespace orvo
