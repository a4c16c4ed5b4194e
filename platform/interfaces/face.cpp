#include "platform/interfaces/face.h"

namespace orvo::detail {

ObjectCore::ObjectCore(const char* source, bool shared)
    : home_(shared ? std::thread::id() : std::this_thread::get_id()), source_(source) {
    ++live_objects();
}

ObjectCore::~ObjectCore() { --live_objects(); }

std::uint32_t ObjectCore::release_reference() {
    const std::uint32_t left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) {
        // While the object is destroyed, references that its own code takes and gives back must not
        // destroy it once more.
        references_.store(1, std::memory_order_relaxed);
        delete this;
    }
    return left;
}

std::atomic<long>& live_objects() {
    static std::atomic<long> count{0};
    return count;
}

}  // namespace orvo::detail
