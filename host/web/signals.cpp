#include "host/web/signals.h"

#include <csignal>

namespace orvo::web {
namespace {

sigset_t held_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
    return signals;
}

}  // namespace

void hold_signals() {
    const sigset_t signals = held_signals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
}

Signals::Signals(std::function<void()> stop, std::function<void()> reload)
    : stop_(std::move(stop)), reload_(std::move(reload)), thread_([this] { serve(); }) {}

Signals::~Signals() {
    is_ending_ = true;
    pthread_kill(thread_.native_handle(), SIGHUP);
    thread_.join();
}

void Signals::serve() {
    const sigset_t signals = held_signals();
    int signal = 0;
    while (sigwait(&signals, &signal) == 0 && !is_ending_) {
        if (signal == SIGHUP)
            reload_();
        else
            stop_();
    }
}

}  // namespace orvo::web
