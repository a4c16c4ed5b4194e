#pragma once

#include <chrono>
#include <cstddef>
#include <optional>

#include "host/engine/snapshot.h"
#include "host/engine/time_limit.h"
#include "platform/objects/context/memory_budget.h"

namespace orvo::script {

// The script's memory, with a limit. What does not fit is refused as if the system had none left.
// The functions are Duktape's allocation functions, with the memory as their user data.
//
// It is also where work of the language's own library ends that takes too long: nearly all of it
// allocates, so now and then an allocation looks at the clock, and is refused once the time is
// over. Duktape answers with an error in the script; scripts cannot go on from it, for what is
// carried out next looks at the clock, too.
class Memory {
public:
    Memory() = default;
    // Frees all blocks: a heap need not be destroyed before its memory. Where a script has used
    // much, the process gives back to the system what is free then, as it does after reset().
    ~Memory();
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

    // What is allocated between these two is what reset() comes back to. Raises bad_alloc for more
    // than a snapshot holds. Nothing is limited meanwhile.
    void begin_snapshot();
    void take_snapshot();
    bool has_snapshot() const { return snapshot_ && snapshot_->is_taken(); }
    // Frees all blocks but those of the snapshot, which are again what they were. Limits end.
    void reset();

    // What is allocated from now on is taken from there. Until this is called, there is no limit:
    // Duktape cannot cope with a lack of memory while it starts. The budget outlives its use here.
    void set_budget(MemoryBudget* budget) { budget_ = budget; }
    // time: null for work that is not limited; outlives its use here.
    void set_time(TimeLimit* time) { time_ = time; }

    static void* allocate(void* memory, std::size_t size);
    static void* reallocate(void* memory, void* block, std::size_t size);
    static void release(void* memory, void* block);

    // Bytes that were taken at a time since the last reset(), the snapshot's not counted.
    std::size_t most_taken() const { return most_taken_; }

    // Whether something did not fit since the last question.
    bool take_refusal();
    // The script is about to end, or has: what was refused for lack of time is granted again.
    void end_refusal() { late_ = {.at = late_.at}; }

private:
    // What stands before each block. Those of the snapshot are in no list.
    struct alignas(std::max_align_t) Head {
        std::size_t size = 0;
        Head* previous = nullptr;
        Head* next = nullptr;
    };
    static void* block_of(Head* head) { return head + 1; }
    static Head* head_of(void* block) { return static_cast<Head*>(block) - 1; }

    bool take(std::size_t bytes);
    void give_back(std::size_t bytes);
    // Whether there is time for this request; block is null for a new one.
    bool in_time(const void* block, std::size_t size);
    void* new_block(std::size_t size);
    void free_block(Head* head);
    void free_all();

    // A request is made again after each of several collections of garbage, which make requests of
    // their own and fail without harm. So all like it are refused until end_refusal(). The error
    // that is raised then needs memory, too: of other requests none is refused for a while.
    struct Refused {
        bool is_waited_for = false;
        const void* block = nullptr;
        std::size_t size = 0;
        std::chrono::steady_clock::time_point at = {};
    };

    std::optional<Snapshot> snapshot_;
    Head all_{.previous = &all_, .next = &all_};  // begins and ends the list of all other blocks
    TimeLimit* time_ = nullptr;
    MemoryBudget* budget_ = nullptr;
    std::size_t taken_ = 0;  // by all blocks but the snapshot's
    std::size_t most_taken_ = 0;
    bool refused_ = false;
    std::size_t work_ = 0;  // since the clock was looked at
    Refused late_;
};

}  // namespace orvo::script
