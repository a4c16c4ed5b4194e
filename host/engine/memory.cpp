#include "host/engine/memory.h"

#include <algorithm>
#include <cstdlib>
#include <utility>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace orvo::script {
namespace {

// Each block begins with its size, padded so that what follows is aligned for everything.
constexpr std::size_t head = alignof(std::max_align_t);
static_assert(head >= sizeof(std::size_t));

std::size_t& size_of(void* begin) { return *static_cast<std::size_t*>(begin); }
void* begin_of(void* block) { return static_cast<char*>(block) - head; }
void* block_of(void* begin) { return static_cast<char*>(begin) + head; }

// Work is counted in requests, and in what is copied with them: one look at the clock costs about
// as much as a request, so it is a small part of this.
constexpr std::size_t work_of_a_look = 64;
constexpr std::size_t bytes_of_a_request = 4096;

// Duktape asks once, and once more after each of ten collections.
constexpr int times_asked = 11;
constexpr std::chrono::milliseconds pause{250};

// Looking for what can be given back takes milliseconds.
constexpr std::size_t much = 8 * 1024 * 1024;

}  // namespace

Memory::~Memory() {
#ifdef __GLIBC__
    // It keeps what lies below a block in use, which one small block is enough for.
    if (most_used_ >= much) malloc_trim(0);
#endif
}

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

// Less than nothing where a block has become smaller.
void Memory::count(std::size_t added) {
    used_ += added;
    most_used_ = std::max(most_used_, used_);
}

bool Memory::in_time(const void* block, std::size_t size) {
    if (late_.times_left > 0 && late_.block == block && late_.size == size) {
        --late_.times_left;
        return false;
    }
    work_ += 1 + size / bytes_of_a_request;
    if (work_ < work_of_a_look) return true;
    work_ = 0;
    if (time_ == nullptr) return true;
    const bool is_known = time_->was_over();
    if (!time_->is_over()) return true;
    const auto now = std::chrono::steady_clock::now();
    // Whoever knows of it is about to raise an error, which needs memory.
    if (is_known && now < std::max(time_->last_look(), late_.at) + pause) return true;
    late_ = {block, size, times_asked - 1, now};
    return false;
}

void* Memory::allocate(void* memory, std::size_t size) {
    Memory& self = *static_cast<Memory*>(memory);
    if (size == 0 || !self.in_time(nullptr, size) || !self.fits(size)) return nullptr;
    void* begin = std::malloc(head + size);
    if (begin == nullptr) return nullptr;
    size_of(begin) = size;
    self.count(size);
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
    if (size > before && (!self.in_time(block, size) || !self.fits(size - before))) return nullptr;
    void* begin = std::realloc(begin_of(block), head + size);
    if (begin == nullptr) return nullptr;
    size_of(begin) = size;
    self.count(size - before);
    return block_of(begin);
}

void Memory::release(void* memory, void* block) {
    if (block == nullptr) return;
    static_cast<Memory*>(memory)->used_ -= size_of(begin_of(block));
    std::free(begin_of(block));
}

bool Memory::take_refusal() { return std::exchange(refused_, false); }

}  // namespace orvo::script
