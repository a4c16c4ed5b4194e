#pragma once

#include <chrono>
#include <cstddef>
#include <limits>

#include "host/engine/time_limit.h"

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
    // time: null for work that is not limited; outlives the memory.
    explicit Memory(TimeLimit* time = nullptr) : time_(time) {}
    // Where a script has used much, the process gives back to the system what is free now.
    ~Memory();
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

    // From now on, so much may be added to what is used already. Until this is called, there is no
    // limit: Duktape cannot cope with a lack of memory while it starts.
    void set_limit(std::size_t added);

    static void* allocate(void* memory, std::size_t size);
    static void* reallocate(void* memory, void* block, std::size_t size);
    static void release(void* memory, void* block);

    std::size_t used() const { return used_; }
    // Whether something did not fit since the last question.
    bool take_refusal();

private:
    bool fits(std::size_t added);
    void count(std::size_t added);
    // Whether there is time for this request; block is null for a new one.
    bool in_time(const void* block, std::size_t size);

    // A request is made again after each of several collections of garbage, until it is granted or
    // the error is raised, which needs memory itself. So one request is refused, and then none for
    // a while.
    struct Refused {
        const void* block = nullptr;
        std::size_t size = 0;
        int times_left = 0;
        std::chrono::steady_clock::time_point at = {};
    };

    TimeLimit* time_;
    std::size_t limit_ = std::numeric_limits<std::size_t>::max();
    std::size_t used_ = 0;
    std::size_t most_used_ = 0;
    bool refused_ = false;
    std::size_t work_ = 0;  // since the clock was looked at
    Refused late_;
};

}  // namespace orvo::script
