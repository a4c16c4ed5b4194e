#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace orvo {

// A program that a test has started. It never outlives the test: the system kills it when the
// thread that started it ends, however that happens. So start it on a thread that lives as long as
// the program is needed, as a rule the main one.
class ChildProcess {
public:
    // Runs `arguments`, the first of which is the path of the program. What it prints, on either
    // stream, goes to the end of `log`. Of the test's open files it gets none.
    ChildProcess(const std::vector<std::string>& arguments, const std::filesystem::path& log);
    // Kills it if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool running();
    pid_t pid() const { return pid_; }
    void send(int signal);
    // Makes it stand still; returns when it does. send(SIGCONT) lets it go on.
    void pause();
    // Waits for its end and answers its exit code, or 128 + signal number.
    int wait();
    // Asks it to end and waits; kills it after `seconds`.
    void terminate(double seconds);

private:
    pid_t pid_;
    bool ended_ = false;
    int code_ = 0;
};

// Runs `arguments` to the end and answers what the program printed on both streams. Raises
// std::runtime_error with that text when the exit code is not 0.
std::string output_of(const std::vector<std::string>& arguments);

}  // namespace orvo
