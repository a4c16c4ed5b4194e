#include "host/engine/snapshot.h"

#include <cstring>

namespace orvo::script {
namespace {

std::size_t padded(std::size_t size) {
    constexpr std::size_t alignment = alignof(std::max_align_t);
    return (size + alignment - 1) / alignment * alignment;
}

}  // namespace

void* Snapshot::allocate(std::size_t size) {
    const std::size_t needed = padded(size);
    const auto reused = free_.lower_bound(needed);
    if (reused != free_.end()) {
        const auto [found, block] = *reused;
        free_.erase(reused);
        if (found > needed) release(static_cast<std::byte*>(block) + needed, found - needed);
        return block;
    }
    if (needed < size || needed > capacity_ - used_) return nullptr;
    void* block = blocks_.get() + used_;
    used_ += needed;
    return block;
}

void Snapshot::release(void* block, std::size_t size) { free_.emplace(padded(size), block); }

void Snapshot::take() {
    free_.clear();
    image_.assign(blocks_.get(), blocks_.get() + used_);
}

void Snapshot::restore() { std::memcpy(blocks_.get(), image_.data(), image_.size()); }

}  // namespace orvo::script
