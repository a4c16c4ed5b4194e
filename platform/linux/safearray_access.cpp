#include <atomic>
#include <cstring>
#include <utility>

#include "platform/linux/element.h"
#include "platform/system/automation.h"

namespace orvo::abi {

namespace {

using runtime::Owned;

constexpr std::uint32_t most_locks = 0xFFFF;

const SAFEARRAYBOUND* bound_of(const SAFEARRAY* array, std::uint32_t dimension) {
    if (dimension == 0 || dimension > array->cDims) return nullptr;
    return &array->rgsabound[array->cDims - dimension];
}

// The first index varies fastest.
HRESULT locate(const SAFEARRAY* array, const std::int32_t* indices, void** element) {
    std::uint64_t position = 0;
    std::uint64_t stride = 1;
    for (std::uint32_t i = 0; i < array->cDims; ++i) {
        const SAFEARRAYBOUND& bound = array->rgsabound[array->cDims - 1 - i];
        std::int64_t offset = std::int64_t{indices[i]} - bound.lLbound;
        if (offset < 0 || offset >= std::int64_t{bound.cElements}) return disp_e_badindex;
        position += static_cast<std::uint64_t>(offset) * stride;
        stride *= bound.cElements;
    }
    *element = static_cast<char*>(array->pvData) + position * array->cbElements;
    return s_ok;
}

class Locked {
public:
    explicit Locked(SAFEARRAY* array) : array_(array), outcome_(SafeArrayLock(array)) {}
    ~Locked() {
        if (succeeded(outcome_)) SafeArrayUnlock(array_);
    }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    HRESULT outcome() const { return outcome_; }

private:
    SAFEARRAY* array_;
    HRESULT outcome_;
};

HRESULT put(Owned owned, std::size_t size, void* element, void* value) {
    switch (owned) {
        case Owned::nothing:
            if (!value) return e_invalidarg;
            std::memcpy(element, value, size);
            return s_ok;
        case Owned::variant:
            return value ? VariantCopy(static_cast<VARIANT*>(element), static_cast<VARIANT*>(value))
                         : e_invalidarg;
        case Owned::text: {
            BSTR copy;
            if (!runtime::copy_text(static_cast<BSTR>(value), copy)) return e_outofmemory;
            SysFreeString(std::exchange(*static_cast<BSTR*>(element), copy));
            return s_ok;
        }
        case Owned::object: {
            auto* object = static_cast<IUnknown*>(value);
            if (object) add_ref(object);
            if (IUnknown* old = std::exchange(*static_cast<IUnknown**>(element), object))
                release(old);
            return s_ok;
        }
    }
    return e_unexpected;
}

}  // namespace

extern "C" {

std::uint32_t SafeArrayGetDim(SAFEARRAY* array) { return array ? array->cDims : 0; }

std::uint32_t SafeArrayGetElemsize(SAFEARRAY* array) { return array ? array->cbElements : 0; }

HRESULT SafeArrayGetLBound(SAFEARRAY* array, std::uint32_t dimension, std::int32_t* bound) {
    if (!array || !bound) return e_invalidarg;
    const SAFEARRAYBOUND* found = bound_of(array, dimension);
    if (!found) return disp_e_badindex;
    *bound = found->lLbound;
    return s_ok;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, std::uint32_t dimension, std::int32_t* bound) {
    if (!array || !bound) return e_invalidarg;
    const SAFEARRAYBOUND* found = bound_of(array, dimension);
    if (!found) return disp_e_badindex;
    *bound = static_cast<std::int32_t>(std::int64_t{found->lLbound} + found->cElements - 1);
    return s_ok;
}

HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) {
    if (!array || !type) return e_invalidarg;
    if (array->fFeatures & FADF_DISPATCH) {
        *type = VT_DISPATCH;
    } else if (array->fFeatures & FADF_UNKNOWN) {
        *type = VT_UNKNOWN;
    } else if (array->fFeatures & FADF_HAVEVARTYPE) {
        std::uint32_t hidden_type;
        std::memcpy(&hidden_type, reinterpret_cast<const char*>(array) - 4, sizeof hidden_type);
        *type = static_cast<VARTYPE>(hidden_type);
    } else {
        return e_invalidarg;
    }
    return s_ok;
}

// What `out` held before is not looked at.
HRESULT SafeArrayGetElement(SAFEARRAY* array, std::int32_t* indices, void* out) {
    if (!array || !indices || !out) return e_invalidarg;
    Locked lock(array);
    if (failed(lock.outcome())) return lock.outcome();
    void* element;
    HRESULT outcome = locate(array, indices, &element);
    if (failed(outcome)) return outcome;
    return runtime::copy_elements(runtime::owned_by(*array), array->cbElements, element, out, 1);
}

HRESULT SafeArrayPutElement(SAFEARRAY* array, std::int32_t* indices, void* value) {
    if (!array || !indices) return e_invalidarg;
    Locked lock(array);
    if (failed(lock.outcome())) return lock.outcome();
    void* element;
    HRESULT outcome = locate(array, indices, &element);
    if (failed(outcome)) return outcome;
    return put(runtime::owned_by(*array), array->cbElements, element, value);
}

HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, std::int32_t* indices, void** out) {
    if (!array || !indices || !out) return e_invalidarg;
    return locate(array, indices, out);
}

HRESULT SafeArrayLock(SAFEARRAY* array) {
    if (!array) return e_invalidarg;
    std::atomic_ref locks(array->cLocks);
    if (locks.fetch_add(1, std::memory_order_acquire) < most_locks) return s_ok;
    locks.fetch_sub(1, std::memory_order_release);
    return e_unexpected;
}

HRESULT SafeArrayUnlock(SAFEARRAY* array) {
    if (!array) return e_invalidarg;
    std::atomic_ref locks(array->cLocks);
    std::uint32_t count = locks.load(std::memory_order_relaxed);
    while (count != 0)
        if (locks.compare_exchange_weak(count, count - 1, std::memory_order_release)) return s_ok;
    return e_unexpected;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
    if (!array || !data) return e_invalidarg;
    HRESULT outcome = SafeArrayLock(array);
    *data = succeeded(outcome) ? array->pvData : nullptr;
    return outcome;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) { return SafeArrayUnlock(array); }

}  // extern "C"

}  // namespace orvo::abi
