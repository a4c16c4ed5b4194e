#include "host/admin/common/password_input.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <system_error>

namespace orvo::admin {
namespace {

volatile std::sig_atomic_t ended_by = 0;

// Nothing that is typed is shown. What ends the program meanwhile waits until the terminal is as
// before: without echo it is of no use to the next program.
class SilentTerminal {
public:
    SilentTerminal() {
        if (::tcgetattr(STDIN_FILENO, &before_) != 0) raise_unusable();
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        silent.c_lflag |= ECHONL;
        if (::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent) != 0) raise_unusable();
        ended_by = 0;
        sigset_t blocked;
        sigemptyset(&blocked);
        for (const int signal : ends) sigaddset(&blocked, signal);
        sigprocmask(SIG_BLOCK, &blocked, &mask_);
        struct sigaction noted {};
        noted.sa_handler = [](int signal) { ended_by = signal; };
        for (std::size_t i = 0; i < ends.size(); ++i) ::sigaction(ends[i], &noted, &actions_[i]);
    }
    ~SilentTerminal() {
        ::tcsetattr(STDIN_FILENO, TCSANOW, &before_);
        for (std::size_t i = 0; i < ends.size(); ++i) ::sigaction(ends[i], &actions_[i], nullptr);
        if (ended_by != 0) ::raise(ended_by);
        sigprocmask(SIG_SETMASK, &mask_, nullptr);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;

    // Nothing where the program is to end, or there is no line.
    std::optional<std::string> try_line() const {
        std::string line;
        for (char c = 0;;) {
            pollfd input{STDIN_FILENO, POLLIN, 0};
            // Signals come here, and nowhere else: none is missed.
            if (::ppoll(&input, 1, nullptr, &mask_) != 1) return std::nullopt;
            if (::read(STDIN_FILENO, &c, 1) != 1) return std::nullopt;
            if (c == '\n') return line;
            line += c;
        }
    }

private:
    static constexpr std::array ends{SIGINT, SIGTERM, SIGHUP, SIGQUIT};

    [[noreturn]] static void raise_unusable() {
        throw std::system_error(errno, std::generic_category(), "the terminal");
    }

    termios before_{};
    sigset_t mask_{};
    std::array<struct sigaction, ends.size()> actions_{};
};

[[noreturn]] void raise_missing() {
    throw std::runtime_error("there is no password in standard input");
}

std::string line_of_input() {
    std::string line;
    if (!std::getline(std::cin, line)) raise_missing();
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

}  // namespace

std::string read_password(const std::string& prompt) {
    if (!::isatty(STDIN_FILENO)) return line_of_input();
    const SilentTerminal silent;  // before anybody types
    std::cerr << prompt << ": " << std::flush;
    if (std::optional<std::string> line = silent.try_line()) return *std::move(line);
    raise_missing();
}

std::string read_new_password(const std::string& whose) {
    std::string password = read_password("New password of " + whose);
    if (::isatty(STDIN_FILENO) && read_password("Again") != password)
        throw std::runtime_error("the two passwords are not the same");
    return password;
}

}  // namespace orvo::admin
