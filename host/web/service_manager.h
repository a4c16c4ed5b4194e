#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace orvo::web {

// The service manager that has started this process (systemd), and waits to hear how it does.
// Where none has, all calls do nothing. Thread-safe.
class ServiceManager {
public:
    // Takes NOTIFY_SOCKET, WATCHDOG_USEC and WATCHDOG_PID out of the environment. Raises
    // std::runtime_error where they say what cannot be.
    ServiceManager();

    // Each raises std::system_error where the manager cannot be told.
    void ready() const;
    void reloading() const;
    void stopping() const;
    // Has to be called once in `watch()`, or the process is taken for one that hangs.
    void alive() const;
    // Zero: nobody waits for alive().
    std::chrono::milliseconds watch() const { return watch_; }

private:
    void tell(std::string_view message) const;

    std::string socket_;
    std::chrono::milliseconds watch_{0};
};

}  // namespace orvo::web
