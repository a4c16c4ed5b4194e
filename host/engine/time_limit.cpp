#include "host/engine/time_limit.h"

namespace orvo::script {

using std::chrono::steady_clock;

void TimeLimit::set(std::chrono::milliseconds limit) {
    limit_ = limit;
    last_look_ = steady_clock::now();
    end_ = last_look_ + limit;
    is_over_ = false;
}

void TimeLimit::clear() {
    end_.reset();
    is_over_ = false;
}

bool TimeLimit::is_over() {
    if (is_over_ || !end_) return is_over_;
    last_look_ = steady_clock::now();
    is_over_ = last_look_ >= *end_;
    return is_over_;
}

}  // namespace orvo::script
