#pragma once

#include <sys/resource.h>

namespace orvo {

// One of the process's limits, lowered for a while.
class LoweredLimit {
public:
    LoweredLimit(__rlimit_resource which, rlim_t lowered) : which_(which) {
        getrlimit(which_, &before_);
        const rlimit limit{lowered, before_.rlim_max};
        setrlimit(which_, &limit);
    }
    ~LoweredLimit() { setrlimit(which_, &before_); }
    LoweredLimit(const LoweredLimit&) = delete;
    LoweredLimit& operator=(const LoweredLimit&) = delete;

private:
    __rlimit_resource which_;
    rlimit before_{};
};

}  // namespace orvo
