#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <vector>

namespace orvo::script {

// Blocks that stand side by side, so that one copy makes all of them again what they were at a
// moment.
class Snapshot {
public:
    // Blocks that are not written to take no memory of the system's.
    explicit Snapshot(std::size_t capacity) : capacity_(capacity) {}

    // Both only until it is taken. Blocks are aligned for everything; null once there is no room
    // left.
    void* allocate(std::size_t size);
    void release(void* block, std::size_t size);

    void take();
    bool is_taken() const { return !image_.empty(); }
    void restore();

private:
    const std::size_t capacity_;
    std::unique_ptr<std::byte[]> blocks_{new std::byte[capacity_]};
    std::size_t used_ = 0;
    std::multimap<std::size_t, void*> free_;  // by their sizes
    std::vector<std::byte> image_;
};

}  // namespace orvo::script
