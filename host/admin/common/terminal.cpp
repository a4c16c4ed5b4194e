#include "host/admin/common/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace orvo::admin {
namespace {

bool is_set(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

Terminal terminal_of(int stream) {
    Terminal terminal;
    terminal.is_there = ::isatty(stream) == 1;
    if (!terminal.is_there) return terminal;
    const char* kind = std::getenv("TERM");
    terminal.has_colours = kind && std::string_view(kind) != "dumb" && !is_set("NO_COLOR");
    winsize size{};
    if (::ioctl(stream, TIOCGWINSZ, &size) == 0) terminal.width = size.ws_col;
    return terminal;
}

}  // namespace

Terminal Terminal::of_output() { return terminal_of(STDOUT_FILENO); }
Terminal Terminal::of_errors() { return terminal_of(STDERR_FILENO); }

std::string bold(const Terminal& terminal, const std::string& text) {
    return terminal.has_colours ? "\x1B[1m" + text + "\x1B[0m" : text;
}

}  // namespace orvo::admin
