#include "host/engine/memory.h"

#include <cstdlib>
#include <utility>

namespace orvo::script {
namespace {

// Each block begins with its size, padded so that what follows is aligned for everything.
constexpr std::size_t head = alignof(std::max_align_t);
static_assert(head >= sizeof(std::size_t));

std::size_t& size_of(void* begin) { return *static_cast<std::size_t*>(begin); }
void* begin_of(void* block) { return static_cast<char*>(block) - head; }
void* block_of(void* begin) { return static_cast<char*>(begin) + head; }

}  // namespace

void Memory::set_limit(std::size_t added) {
    limit_ = added < std::numeric_limits<std::size_t>::max() - used_
                 ? used_ + added
                 : std::numeric_limits<std::size_t>::max();
}

bool Memory::fits(std::size_t added) {
    if (added <= limit_ && used_ <= limit_ - added) return true;
    refused_ = true;
    return false;
}

void* Memory::allocate(void* memory, std::size_t size) {
    Memory& self = *static_cast<Memory*>(memory);
    if (size == 0 || !self.fits(size)) return nullptr;
    void* begin = std::malloc(head + size);
    if (begin == nullptr) return nullptr;
    size_of(begin) = size;
    self.used_ += size;
    return block_of(begin);
}

void* Memory::reallocate(void* memory, void* block, std::size_t size) {
    if (block == nullptr) return allocate(memory, size);
    if (size == 0) {
        release(memory, block);
        return nullptr;
    }
    Memory& self = *static_cast<Memory*>(memory);
    const std::size_t before = size_of(begin_of(block));
    if (size > before && !self.fits(size - before)) return nullptr;
    void* begin = std::realloc(begin_of(block), head + size);
    if (begin == nullptr) return nullptr;
    size_of(begin) = size;
    self.used_ += size - before;
    return block_of(begin);
}

void Memory::release(void* memory, void* block) {
    if (block == nullptr) return;
    static_cast<Memory*>(memory)->used_ -= size_of(begin_of(block));
    std::free(begin_of(block));
}

bool Memory::take_refusal() { return std::exchange(refused_, false); }

}  // namespace orvo::script
