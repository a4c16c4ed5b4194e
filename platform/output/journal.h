#pragma once

// The system's journal, over its own socket.

#include <filesystem>
#include <string_view>

namespace orvo {

// Where the journal listens.
inline constexpr const char* journal_socket = "/run/systemd/journal/socket";

// Hands one entry over: `message` without a line end, under `identifier` (journalctl -t), at the
// level of information. Any thread. Raises std::system_error where nobody listens, and where there
// is no journal.
void write_to_journal(std::string_view identifier, std::string_view message,
                      const std::filesystem::path& socket = journal_socket);

}  // namespace orvo
