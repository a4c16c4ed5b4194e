#include "host/engine/memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace orvo::script {
namespace {

// Several times what the language's library takes; what is not used of it takes no memory.
constexpr std::size_t most_of_a_snapshot = std::size_t{1} << 20;

// Work is counted in requests, and in what is copied with them: one look at the clock costs about
// as much as a request, so it is a small part of this.
constexpr std::size_t work_of_a_look = 64;
constexpr std::size_t bytes_of_a_request = 4096;

constexpr std::chrono::milliseconds pause{250};

// Looking for what can be given back takes milliseconds.
constexpr std::size_t much = 8 * 1024 * 1024;

}  // namespace

Memory::~Memory() { free_all(); }

void Memory::begin_snapshot() { snapshot_.emplace(most_of_a_snapshot); }

void Memory::take_snapshot() {
    if (all_.next != &all_) throw std::bad_alloc();  // something did not fit into it
    snapshot_->take();
}

void Memory::reset() {
    free_all();
    snapshot_->restore();
    budget_ = nullptr;
    time_ = nullptr;
    refused_ = false;
    work_ = 0;
    late_ = {};
}

bool Memory::take(std::size_t bytes) {
    if (budget_ != nullptr && !budget_->take(bytes)) {
        refused_ = true;
        return false;
    }
    taken_ += bytes;
    most_taken_ = std::max(most_taken_, taken_);
    return true;
}

void Memory::give_back(std::size_t bytes) {
    if (budget_ != nullptr) budget_->give_back(bytes);
    taken_ -= bytes;
}

bool Memory::in_time(const void* block, std::size_t size) {
    if (late_.is_waited_for && late_.block == block && late_.size == size) return false;
    work_ += 1 + size / bytes_of_a_request;
    if (work_ < work_of_a_look) return true;
    work_ = 0;
    if (time_ == nullptr) return true;
    const bool is_known = time_->was_over();
    if (!time_->is_over()) return true;
    const auto now = std::chrono::steady_clock::now();
    // Whoever knows of it is about to raise an error, which needs memory.
    if (is_known && now < std::max(time_->last_look(), late_.at) + pause) return true;
    late_ = {true, block, size, now};
    return false;
}

void* Memory::new_block(std::size_t size) {
    if (snapshot_ && !snapshot_->is_taken())
        if (void* place = snapshot_->allocate(sizeof(Head) + size))
            return block_of(new (place) Head{.size = size});
    if (!take(size)) return nullptr;
    void* place = std::malloc(sizeof(Head) + size);
    if (place == nullptr) {
        give_back(size);
        return nullptr;
    }
    Head* head = new (place) Head{size, &all_, all_.next};
    all_.next->previous = head;
    all_.next = head;
    return block_of(head);
}

void Memory::free_block(Head* head) {
    if (head->next == nullptr) {
        if (!snapshot_->is_taken()) snapshot_->release(head, sizeof(Head) + head->size);
        return;
    }
    give_back(head->size);
    head->previous->next = head->next;
    head->next->previous = head->previous;
    std::free(head);
}

void Memory::free_all() {
    for (Head* head = all_.next; head != &all_;) std::free(std::exchange(head, head->next));
    all_.previous = all_.next = &all_;
    give_back(taken_);
#ifdef __GLIBC__
    // It keeps what lies below a block in use, which one small block is enough for.
    if (std::exchange(most_taken_, 0) >= much) malloc_trim(0);
#endif
}

void* Memory::allocate(void* memory, std::size_t size) {
    Memory& self = *static_cast<Memory*>(memory);
    return size != 0 && self.in_time(nullptr, size) ? self.new_block(size) : nullptr;
}

void* Memory::reallocate(void* memory, void* block, std::size_t size) {
    if (block == nullptr) return allocate(memory, size);
    if (size == 0) {
        release(memory, block);
        return nullptr;
    }
    Memory& self = *static_cast<Memory*>(memory);
    Head* head = head_of(block);
    const std::size_t before = head->size;
    const std::size_t added = size > before ? size - before : 0;
    if (added > 0 && !self.in_time(block, size)) return nullptr;
    if (head->next == nullptr && added > 0) {  // one of the snapshot's
        void* copy = self.new_block(size);
        if (copy == nullptr) return nullptr;
        std::memcpy(copy, block, before);
        self.free_block(head);
        return copy;
    }
    if (head->next != nullptr) {
        if (!self.take(added)) return nullptr;
        void* moved = std::realloc(head, sizeof(Head) + size);
        if (moved == nullptr) {
            self.give_back(added);
            return nullptr;
        }
        head = static_cast<Head*>(moved);
        head->previous->next = head->next->previous = head;
        if (size < before) self.give_back(before - size);
    }
    head->size = size;
    return block_of(head);
}

void Memory::release(void* memory, void* block) {
    if (block != nullptr) static_cast<Memory*>(memory)->free_block(head_of(block));
}

bool Memory::take_refusal() { return std::exchange(refused_, false); }

}  // namespace orvo::script
