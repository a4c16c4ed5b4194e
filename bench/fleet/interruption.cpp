#include "bench/fleet/interruption.h"

#include <algorithm>
#include <csignal>
#include <thread>

namespace orvo::fleet {
namespace {

volatile std::sig_atomic_t is_interrupted = 0;

}  // namespace

void catch_interruptions() {
    for (const int signal : {SIGINT, SIGTERM}) std::signal(signal, [](int) { is_interrupted = 1; });
}

void wait_until(Clock::time_point end) {
    constexpr auto glance = std::chrono::milliseconds(50);
    while (Clock::now() < end) {
        if (is_interrupted != 0) throw Interrupted();
        std::this_thread::sleep_until(std::min(end, Clock::now() + glance));
    }
}

void wait_for_interruption() {
    while (true) wait_until(Clock::time_point::max());
}

}  // namespace orvo::fleet
