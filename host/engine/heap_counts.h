#pragma once

// What scripts take of the process's memory.

#include <cstddef>
#include <cstdint>

namespace orvo::script {

struct HeapCounts {
    std::size_t heaps;      // of the engine, with what every script finds in them
    std::size_t idle;       // of these: no script uses them
    std::uint64_t scripts;  // that have ended
    std::uint64_t bytes;    // what each of them held when it held most, altogether
};

// Of this process. Any thread.
HeapCounts heap_counts();

}  // namespace orvo::script
