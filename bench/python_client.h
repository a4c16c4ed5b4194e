#pragma once

// The Python client: what python-ldap does, in a script of this folder.

#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

#include "tests/support/slapd.h"

namespace orvo {

// A script in a process of its own, which measures itself: its start, its connecting and the way of
// its answers count nowhere. bench/python_client.py is its side. The first failure stays in error()
// and ends its work; what Python says of it goes to standard error.
class PythonClient {
public:
    // `argument`: one line, which the script understands.
    PythonClient(std::string script, const PrivateSlapd& shop, const std::string& argument = {})
        : script_(std::move(script)) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
            throw std::system_error(errno, std::generic_category(), "socketpair");
        answers_ = fdopen(ends[0], "r");
        start(ends[1]);
        close(ends[1]);
        say(shop.url() + '\n' + shop.service_dn() + '\n' + shop.service_password() + '\n' +
            argument + '\n');
    }
    // The end of its input ends the script.
    ~PythonClient() {
        std::fclose(answers_);
        if (child_ > 0) waitpid(child_, nullptr, 0);
    }
    PythonClient(const PythonClient&) = delete;

    // Does the job so many times; the seconds of all of them, or 0 after a failure.
    double run(int rounds) {
        if (!error_.empty()) return 0;
        say(std::to_string(rounds) + '\n');
        double seconds = 0;
        if (std::fscanf(answers_, "%lf %zu", &seconds, &rows_) == 2) return seconds;
        error_ = script_ + " failed";
        return 0;
    }
    // How many rows the job found the last time.
    std::size_t rows() const { return rows_; }
    // Empty as long as all went well.
    const std::string& error() const { return error_; }

private:
    void start(int its_end) {
        // The system's Python is the one that has the package python3-ldap.
        std::string python = "/usr/bin/python3", path = ORVO_SOURCE_DIR "/bench/" + script_;
        std::string leaves_no_bytecode = "-B";
        char* arguments[] = {python.data(), leaves_no_bytecode.data(), path.data(), nullptr};
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, its_end, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, its_end, STDOUT_FILENO);
        const int code =
            posix_spawn(&child_, python.c_str(), &actions, nullptr, arguments, environ);
        posix_spawn_file_actions_destroy(&actions);
        if (code != 0) error_ = python + ": " + std::generic_category().message(code);
    }
    // Where the script has ended, its answer will be missing.
    void say(const std::string& text) {
        send(fileno(answers_), text.data(), text.size(), MSG_NOSIGNAL);
    }

    std::string script_;
    pid_t child_ = -1;
    FILE* answers_ = nullptr;
    std::size_t rows_ = 0;
    std::string error_;
};

}  // namespace orvo
