#pragma once

// State that a module keeps for each thread. Any thread; raises std::bad_alloc where the system has
// no room for one more.

#include <memory>

namespace orvo {
namespace detail {

// A place for one pointer in each thread. `destroy` gets a thread's pointer when the thread ends,
// and those of all threads that the system still knows when the slot itself goes.
class ThreadSlot {
public:
    explicit ThreadSlot(void (*destroy)(void*));
    ~ThreadSlot();
    ThreadSlot(const ThreadSlot&) = delete;
    ThreadSlot& operator=(const ThreadSlot&) = delete;

    void* get() const;
    void put(void* value);

private:
    void (*destroy_)(void*);
    unsigned long key_;
};

}  // namespace detail

// One T for each thread, made when the thread asks for it first. It goes with its thread or with
// the module, whichever ends first, so that a module is unloaded after its last object although
// threads that used it live on; a thread_local object with a destructor would keep it loaded.
// Only for objects of static storage.
template <class T>
class PerThread {
public:
    T& get() {
        if (void* known = slot_.get()) return *static_cast<T*>(known);
        auto made = std::make_unique<T>();
        slot_.put(made.get());
        return *made.release();
    }

private:
    detail::ThreadSlot slot_{[](void* value) { delete static_cast<T*>(value); }};
};

}  // namespace orvo
