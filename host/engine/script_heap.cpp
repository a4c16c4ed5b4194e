#include "host/engine/script_heap.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <vector>

#include "host/engine/heap_counts.h"
#include "platform/values/metric.h"

namespace orvo::script {
namespace {

// As many as a busy host uses at once; each takes 400 KiB.
constexpr std::size_t most_idle = 64;

struct IdleHeaps {
    std::mutex mutex;
    std::vector<std::unique_ptr<ScriptHeap>> heaps;
};

IdleHeaps& idle() {
    static IdleHeaps all;
    return all;
}

Gauge heaps;
Counter scripts;
Counter bytes_of_scripts;

// What scripts do is all within reach of a duk_safe_call; this happens only when the engine itself
// is at fault.
[[noreturn]] void report_fault(void*, const char* message) {
    std::fprintf(stderr, "script engine: %s\n", message != nullptr ? message : "unknown fault");
    std::abort();
}

}  // namespace

ScriptHeap::ScriptHeap() {
    memory_.begin_snapshot();
    context_ = duk_create_heap(Memory::allocate, Memory::reallocate, Memory::release,
                               static_cast<Memory*>(&memory_), report_fault);
    if (context_ == nullptr) throw std::bad_alloc();
    heaps.add();
}

ScriptHeap::~ScriptHeap() { heaps.add(-1); }

std::unique_ptr<ScriptHeap> ScriptHeap::acquire(Runtime& runtime) {
    std::unique_ptr<ScriptHeap> heap;
    {
        const std::lock_guard lock(idle().mutex);
        if (!idle().heaps.empty()) {
            heap = std::move(idle().heaps.back());
            idle().heaps.pop_back();
        }
    }
    if (heap == nullptr) heap = std::make_unique<ScriptHeap>();
    heap->memory_.runtime = &runtime;
    return heap;
}

void ScriptHeap::release(std::unique_ptr<ScriptHeap> heap) {
    scripts.add();
    bytes_of_scripts.add(heap->memory_.most_taken());
    if (!heap->is_kept()) return;
    heap->memory_.reset();
    heap->memory_.runtime = nullptr;
    const std::lock_guard lock(idle().mutex);
    if (idle().heaps.size() < most_idle) idle().heaps.push_back(std::move(heap));
}

HeapCounts heap_counts() {
    const std::lock_guard lock(idle().mutex);
    return {static_cast<std::size_t>(heaps.value()), idle().heaps.size(), scripts.value(),
            bytes_of_scripts.value()};
}

Runtime& ScriptHeap::runtime_of(duk_context* context) {
    duk_memory_functions functions;
    duk_get_memory_functions(context, &functions);
    return *static_cast<OwnMemory*>(static_cast<Memory*>(functions.udata))->runtime;
}

}  // namespace orvo::script
