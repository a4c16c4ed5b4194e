#include "tests/support/pseudo_terminal.h"

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace orvo {
namespace {

constexpr int patience_in_ms = 60'000;

}  // namespace

PseudoTerminal::PseudoTerminal(const std::vector<std::string>& arguments, unsigned short columns) {
    std::vector<char*> words;
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    const winsize size{25, columns, 0, 0};
    pid_ = ::forkpty(&terminal_, nullptr, nullptr, &size);
    if (pid_ < 0) throw std::system_error(errno, std::generic_category(), "forkpty");
    if (pid_ == 0) {
        ::setenv("TERM", "xterm", 1);
        ::execv(words.front(), words.data());
        ::_exit(127);
    }
}

PseudoTerminal::~PseudoTerminal() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
    }
    ::close(terminal_);
}

// Whether there is more to come.
bool PseudoTerminal::read_more() {
    pollfd ready{terminal_, POLLIN, 0};
    const int count = ::poll(&ready, 1, patience_in_ms);
    if (count == 0) throw std::runtime_error("nothing more is shown after:\n" + shown_);
    char bytes[4096];
    const ssize_t size = ::read(terminal_, bytes, sizeof bytes);
    if (size <= 0) return false;  // the last program has closed it
    shown_.append(bytes, static_cast<std::size_t>(size));
    return true;
}

void PseudoTerminal::expect(const std::string& text) {
    for (;;) {
        const std::size_t at = shown_.find(text, seen_);
        if (at != std::string::npos) {
            seen_ = at + text.size();
            return;
        }
        if (!read_more()) throw std::runtime_error("'" + text + "' is not shown, only:\n" + shown_);
    }
}

void PseudoTerminal::type(const std::string& text) {
    if (::write(terminal_, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::system_error(errno, std::generic_category(), "the terminal");
}

int PseudoTerminal::wait() {
    while (read_more()) {
    }
    int status = 0;
    ::waitpid(pid_, &status, 0);
    pid_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace orvo
