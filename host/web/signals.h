#pragma once

#include <atomic>
#include <functional>
#include <thread>

namespace orvo::web {

// While it lives, SIGINT and SIGTERM call `stop`, each time that they come, and SIGHUP calls
// `reload`, all on one thread of its own and instead of ending the process; neither may raise.
// Before any thread is started, hold_signals() has to be called.
class Signals {
public:
    Signals(std::function<void()> stop, std::function<void()> reload);
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

private:
    void serve();

    const std::function<void()> stop_, reload_;
    std::atomic<bool> is_ending_ = false;
    std::thread thread_;
};

// Keeps the three signals from the calling thread and those that it starts, and ignores those that
// tell of a pipe without a reader and of a file that may not grow: whoever writes sees that anyway.
void hold_signals();

}  // namespace orvo::web
