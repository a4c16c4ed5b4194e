#pragma once

#include <cstddef>
#include <limits>

namespace orvo::script {

// The script's memory, with a limit. What does not fit is refused as if the system had none left.
// The functions are Duktape's allocation functions, with the memory as their user data.
class Memory {
public:
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

    std::size_t limit_ = std::numeric_limits<std::size_t>::max();
    std::size_t used_ = 0;
    bool refused_ = false;
};

}  // namespace orvo::script
