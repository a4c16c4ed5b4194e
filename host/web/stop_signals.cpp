#include "host/web/stop_signals.h"

#include <csignal>

namespace orvo::web {
namespace {

sigset_t stop_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

}  // namespace

void hold_stop_signals() {
    const sigset_t signals = stop_signals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

StopSignals::StopSignals(std::function<void()> stop)
    : thread_([stop = std::move(stop)] {
          const sigset_t signals = stop_signals();
          int signal = 0;
          if (sigwait(&signals, &signal) == 0) stop();
      }) {}

StopSignals::~StopSignals() {
    // Where none came, the thread still waits.
    pthread_kill(thread_.native_handle(), SIGTERM);
    thread_.join();
}

}  // namespace orvo::web
