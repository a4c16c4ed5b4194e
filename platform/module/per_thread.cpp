#include "platform/module/per_thread.h"

#include <new>

#ifdef _WIN32
extern "C" {
unsigned long FlsAlloc(void (*destroy)(void*));
int FlsFree(unsigned long key);
void* FlsGetValue(unsigned long key);
int FlsSetValue(unsigned long key, void* value);
}
#else
#include <pthread.h>
#endif

namespace orvo::detail {

#ifdef _WIN32

ThreadSlot::ThreadSlot(void (*destroy)(void*)) : destroy_(destroy), key_(FlsAlloc(destroy)) {
    if (key_ == static_cast<unsigned long>(-1)) throw std::bad_alloc();
}
// Hands every thread's pointer to `destroy` by itself.
ThreadSlot::~ThreadSlot() { FlsFree(key_); }

void* ThreadSlot::get() const { return FlsGetValue(key_); }

void ThreadSlot::put(void* value) {
    if (!FlsSetValue(key_, value)) throw std::bad_alloc();
}

#else

ThreadSlot::ThreadSlot(void (*destroy)(void*)) : destroy_(destroy), key_(0) {
    pthread_key_t key;
    if (pthread_key_create(&key, destroy) != 0) throw std::bad_alloc();
    key_ = key;
}

// The system tells only this thread's pointer; what others left stays until the process ends.
ThreadSlot::~ThreadSlot() {
    void* own = get();
    pthread_key_delete(static_cast<pthread_key_t>(key_));
    if (own) destroy_(own);
}

void* ThreadSlot::get() const { return pthread_getspecific(static_cast<pthread_key_t>(key_)); }

void ThreadSlot::put(void* value) {
    if (pthread_setspecific(static_cast<pthread_key_t>(key_), value) != 0) throw std::bad_alloc();
}

#endif

}  // namespace orvo::detail
