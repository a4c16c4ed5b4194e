#pragma once

#include <functional>
#include <thread>

namespace orvo::web {

// While it lives, SIGINT and SIGTERM call `stop`, once and on a thread of its own, instead of
// ending the process. Before any thread is started, hold_stop_signals() has to be called.
class StopSignals {
public:
    explicit StopSignals(std::function<void()> stop);
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

private:
    std::thread thread_;
};

// Keeps the two signals from the calling thread and those that it starts.
void hold_stop_signals();

}  // namespace orvo::web
