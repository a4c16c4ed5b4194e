#pragma once

// A part of a test in a process of its own.

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <functional>
#include <stdexcept>
#include <string>

namespace orvo::directory::embedded {

// Runs `body` in a copy of this process, which has no threads but this one and no database open.
// What the body writes to the descriptor comes to read_all; the child ends with the body and never
// outlives this object.
class Child {
public:
    explicit Child(const std::function<void(int descriptor)>& body) {
        int ends[2];
        if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
        pid_ = ::fork();
        if (pid_ < 0) throw std::runtime_error("no process");
        if (pid_ == 0) {
            ::close(ends[0]);
            body(ends[1]);
            ::_exit(0);
        }
        ::close(ends[1]);
        from_ = ends[0];
    }
    ~Child() {
        kill();
        ::close(from_);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // A piece of what it has written; empty: it has ended.
    std::string read_some() {
        char octets[4096];
        ssize_t count;
        do count = ::read(from_, octets, sizeof octets);
        while (count < 0 && errno == EINTR);
        return {octets, count > 0 ? static_cast<std::size_t>(count) : 0};
    }
    std::string read_all() {
        std::string all;
        for (std::string some = read_some(); !some.empty(); some = read_some()) all += some;
        return all;
    }
    void kill() {
        if (pid_ == 0) return;
        ::kill(pid_, SIGKILL);
        ::waitpid(pid_, nullptr, 0);
        pid_ = 0;
    }

private:
    pid_t pid_ = 0;
    int from_ = -1;
};

inline void write_all(int descriptor, const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        const ssize_t count = ::write(descriptor, text.data() + at, text.size() - at);
        if (count <= 0) ::_exit(1);
        at += static_cast<std::size_t>(count);
    }
}

}  // namespace orvo::directory::embedded
