#pragma once

#include <duktape.h>

#include <memory>
#include <mutex>

#include "host/engine/memory.h"

namespace orvo::script {

class Runtime;

// Duktape's heap of one script. Making one and what every script finds in it costs many times what
// a short page does, so a heap serves one script after the other: between them its memory becomes
// again what it was before the first one, and nothing of a script is left in it.
class ScriptHeap {
public:
    // One that no script uses; it is the script's of `runtime` until it is given back. Any thread.
    // Where it is new, it is empty: what is put into it before `keep` is there for all scripts.
    static std::unique_ptr<ScriptHeap> acquire(Runtime& runtime);
    static void release(std::unique_ptr<ScriptHeap> heap);

    ScriptHeap();
    ~ScriptHeap();
    ScriptHeap(const ScriptHeap&) = delete;
    ScriptHeap& operator=(const ScriptHeap&) = delete;

    bool is_kept() const { return memory_.has_snapshot(); }
    void keep() { memory_.take_snapshot(); }

    duk_context* context() const { return context_; }
    Memory& memory() { return memory_; }
    // Whose script runs.
    static Runtime& runtime_of(duk_context* context);

private:
    struct OwnMemory : Memory {
        Runtime* runtime = nullptr;
    };

    OwnMemory memory_;
    duk_context* context_;
};

}  // namespace orvo::script
