// A module as a stranger would write it, in raw exports: one class, whose objects it counts, and a
// second one in its manifest that it does not know.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

#include "platform/system/automation.h"

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

using namespace orvo::abi;

constexpr CLSID sample_class{0x11111111, 0x2222, 0x3333, {1, 2, 3, 4, 5, 6, 7, 8}};
std::atomic<int> objects{0};

struct Sample : IUnknown {
    std::atomic<std::uint32_t> references{1};
};

HRESULT query_sample(Sample* self, const IID* iid, void** out) {
    *out = *iid == iid_unknown ? self : nullptr;
    if (!*out) return e_nointerface;
    ++self->references;
    return s_ok;
}
std::uint32_t add_sample(Sample* self) { return ++self->references; }
std::uint32_t drop_sample(Sample* self) {
    std::uint32_t left = --self->references;
    if (left == 0) {
        delete self;
        --objects;
    }
    return left;
}

template <class Function>
Slot slot(Function* function) {
    return reinterpret_cast<Slot>(function);
}

const Slot sample_slots[] = {slot(query_sample), slot(add_sample), slot(drop_sample)};

HRESULT query_factory(IUnknown* self, const IID* iid, void** out) {
    *out = *iid == iid_unknown || *iid == iid_class_factory ? self : nullptr;
    return *out ? s_ok : e_nointerface;
}
std::uint32_t count_factory(IUnknown*) { return 1; }
HRESULT create(IUnknown*, IUnknown* outer, const IID* iid, void** out) {
    if (outer) return class_e_noaggregation;
    ++objects;
    auto* made = new Sample;
    made->slots = sample_slots;
    HRESULT outcome = query_sample(made, iid, out);
    drop_sample(made);
    return outcome;
}
HRESULT lock(IUnknown*, std::int32_t locked) {
    objects += locked ? 1 : -1;
    return s_ok;
}

const Slot factory_slots[] = {slot(query_factory), slot(count_factory), slot(count_factory),
                              slot(create), slot(lock)};
IUnknown factory{factory_slots};

}  // namespace

#ifndef WITHOUT_CLASSES
EXPORTED HRESULT DllGetClassObject(const CLSID* clsid, const IID* iid, void** out) {
    *out = nullptr;
    if (*clsid == sample_class) return query_factory(&factory, iid, out);
    // Time for others to try and unload the module under the caller.
    std::this_thread::sleep_for(std::chrono::microseconds(50));
    return class_e_classnotavailable;
}
#else
EXPORTED IUnknown* unused_factory() { return &factory; }
#endif

EXPORTED HRESULT DllCanUnloadNow() { return objects == 0 ? s_ok : s_false; }
