#include "platform/module/class_factory.h"

#include "platform/interfaces/border.h"
#include "platform/interfaces/standard_slots.h"

namespace orvo {
namespace detail {
namespace {

using abi::HRESULT;

std::atomic<long> server_locks{0};

struct FactoryFace {
    const abi::Slot* slots;
};

HRESULT query(FactoryFace* self, const abi::IID* iid, void** out) noexcept {
    if (out == nullptr || iid == nullptr) return abi::e_pointer;
    const bool known = *iid == abi::iid_unknown || *iid == abi::iid_class_factory;
    *out = known ? self : nullptr;
    return known ? abi::s_ok : abi::e_nointerface;
}

// A class object lives as long as its module or owner; its count stays what it is.
std::uint32_t constant_count(FactoryFace*) noexcept { return 1; }

HRESULT create_instance(FactoryFace* self, abi::IUnknown* outer, const abi::IID* iid,
                        void** out) noexcept {
    if (out == nullptr || iid == nullptr) return answered(abi::e_pointer);
    *out = nullptr;
    if (outer != nullptr) return answered(abi::class_e_noaggregation);
    const ClassFactory& factory = *reinterpret_cast<ClassFactory*>(self);
    try {
        const Object object = factory.create();
        return answered(abi::query_interface(object.get(), *iid, out));
    } catch (...) {
        return report_current_exception(*iid, factory.source());
    }
}

HRESULT lock_server(FactoryFace*, std::int32_t lock) noexcept {
    server_locks += lock ? 1 : -1;
    return abi::s_ok;
}

const abi::Slot factory_slots[] = {
    reinterpret_cast<abi::Slot>(&query),          reinterpret_cast<abi::Slot>(&constant_count),
    reinterpret_cast<abi::Slot>(&constant_count), reinterpret_cast<abi::Slot>(&create_instance),
    reinterpret_cast<abi::Slot>(&lock_server),
};

}  // namespace

ClassFactory::ClassFactory(std::string source, std::function<Object()> create)
    : slots_(factory_slots), source_(std::move(source)), create_(std::move(create)) {}

long module_locks() { return live_objects() + server_locks; }

}  // namespace detail
}  // namespace orvo
