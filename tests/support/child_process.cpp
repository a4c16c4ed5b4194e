#include "tests/support/child_process.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "tests/support/temp_folder.h"

namespace orvo {

namespace {

// Between fork and exec only calls that are safe in a signal handler: other threads of the test may
// have held locks.
[[noreturn]] void become(char* const* arguments, int log, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(126);
    int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, 0);
    dup2(log, 1);
    dup2(log, 2);
    close_range(3, ~0U, 0);
    execv(arguments[0], arguments);
    _exit(127);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments,
                           const std::filesystem::path& log) {
    std::vector<char*> pointers;
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    int file = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (file < 0) throw std::system_error(errno, std::generic_category(), log);
    int ready[2];
    if (pipe2(ready, O_CLOEXEC) != 0) {
        close(file);
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    pid_t parent = getpid();
    pid_ = fork();
    if (pid_ == 0) become(pointers.data(), file, parent);
    int error = errno;
    close(file);
    close(ready[1]);
    // The child's end closes once its life is tied to this thread's, which may end right away.
    char nothing;
    while (pid_ > 0 && read(ready[0], &nothing, 1) < 0 && errno == EINTR) continue;
    close(ready[0]);
    if (pid_ < 0) throw std::system_error(error, std::generic_category(), "fork");
}

ChildProcess::~ChildProcess() {
    if (!running()) return;
    send(SIGKILL);
    wait();
}

bool ChildProcess::running() {
    int status = 0;
    if (!ended_ && waitpid(pid_, &status, WNOHANG) == pid_) {
        ended_ = true;
        code_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    return !ended_;
}

void ChildProcess::send(int signal) {
    if (running()) kill(pid_, signal);
}

void ChildProcess::pause() {
    send(SIGSTOP);
    // A stop is reported when every thread stands; the end of the process stays for running().
    siginfo_t info{};
    if (!ended_) waitid(P_PID, static_cast<id_t>(pid_), &info, WSTOPPED | WEXITED | WNOWAIT);
}

int ChildProcess::wait() {
    while (running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return code_;
}

void ChildProcess::terminate(double seconds) {
    auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    send(SIGTERM);
    while (running() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    send(SIGKILL);
    wait();
}

std::string output_of(const std::vector<std::string>& arguments) {
    TempFolder folder;
    std::filesystem::path log = folder.path() / "output";
    int code = ChildProcess(arguments, log).wait();
    std::string text = content_of(log);
    if (code != 0) {
        throw std::runtime_error(arguments.front() + " ended with " + std::to_string(code) + ": " +
                                 text);
    }
    return text;
}

}  // namespace orvo
