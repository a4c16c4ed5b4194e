#pragma once

#include <algorithm>
#include <ctime>

namespace orvo {

// What an action costs the process, in seconds; of three runs the least disturbed.
template <class Action>
double processor_time(Action action) {
    double least = 1e9;
    for (int run = 0; run < 3; ++run) {
        const std::clock_t begin = std::clock();
        action();
        least = std::min(least, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    }
    return least;
}

}  // namespace orvo
