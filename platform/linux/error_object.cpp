#include <atomic>
#include <new>
#include <utility>

#include "platform/linux/element.h"
#include "platform/system/automation.h"

// The error object, and the place where a thread keeps one.

namespace orvo::abi {

namespace {

enum Field : std::size_t { source, description, help_file, fields };

struct ErrorObject;

struct ErrorFace : IUnknown {
    ErrorObject* object;
};

// One object with two faces: what fills it in, what reads it.
struct ErrorObject {
    ErrorFace create;
    ErrorFace read;
    std::atomic<std::uint32_t> references{1};
    GUID guid{};
    BSTR texts[fields]{};
    std::uint32_t help_context = 0;

    ErrorObject();
    ~ErrorObject() {
        for (BSTR text : texts) SysFreeString(text);
    }
    ErrorObject(const ErrorObject&) = delete;
    ErrorObject& operator=(const ErrorObject&) = delete;
};

HRESULT query(ErrorFace* self, const IID* iid, void** out) {
    if (!iid || !out) return e_pointer;
    ErrorObject* object = self->object;
    *out = *iid == iid_unknown || *iid == iid_create_error_info ? &object->create
           : *iid == iid_error_info                             ? &object->read
                                                                : nullptr;
    if (!*out) return e_nointerface;
    object->references.fetch_add(1, std::memory_order_relaxed);
    return s_ok;
}

std::uint32_t add(ErrorFace* self) {
    return self->object->references.fetch_add(1, std::memory_order_relaxed) + 1;
}

std::uint32_t drop(ErrorFace* self) {
    ErrorObject* object = self->object;
    std::uint32_t left = object->references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) delete object;
    return left;
}

HRESULT set_guid(ErrorFace* self, const GUID* guid) {
    if (!guid) return e_invalidarg;
    self->object->guid = *guid;
    return s_ok;
}

template <Field field>
HRESULT set_text(ErrorFace* self, const char16_t* text) {
    BSTR copy = SysAllocString(text);
    if (text && !copy) return e_outofmemory;
    SysFreeString(std::exchange(self->object->texts[field], copy));
    return s_ok;
}

HRESULT set_help_context(ErrorFace* self, std::uint32_t context) {
    self->object->help_context = context;
    return s_ok;
}

HRESULT get_guid(ErrorFace* self, GUID* guid) {
    if (!guid) return e_invalidarg;
    *guid = self->object->guid;
    return s_ok;
}

template <Field field>
HRESULT get_text(ErrorFace* self, BSTR* text) {
    if (!text) return e_invalidarg;
    return runtime::copy_text(self->object->texts[field], *text) ? s_ok : e_outofmemory;
}

HRESULT get_help_context(ErrorFace* self, std::uint32_t* context) {
    if (!context) return e_invalidarg;
    *context = self->object->help_context;
    return s_ok;
}

template <class Function>
Slot slot(Function* function) {
    return reinterpret_cast<Slot>(function);
}

const Slot create_slots[] = {slot(query),
                             slot(add),
                             slot(drop),
                             slot(set_guid),
                             slot(set_text<source>),
                             slot(set_text<description>),
                             slot(set_text<help_file>),
                             slot(set_help_context)};
const Slot read_slots[] = {slot(query),
                           slot(add),
                           slot(drop),
                           slot(get_guid),
                           slot(get_text<source>),
                           slot(get_text<description>),
                           slot(get_text<help_file>),
                           slot(get_help_context)};

ErrorObject::ErrorObject() : create{{create_slots}, this}, read{{read_slots}, this} {}

// Two variables, so that the usual case, a thread without an error, touches a plain pointer only;
// the second one, whose destructor releases what is left at the thread's end, is woken by the first
// error that the thread has.
thread_local constinit IUnknown* pending __attribute__((tls_model("initial-exec"))) = nullptr;

struct ReleaseAtThreadEnd {
    bool armed = false;
    ~ReleaseAtThreadEnd() {
        if (IUnknown* info = std::exchange(pending, nullptr)) release(info);
    }
};
thread_local ReleaseAtThreadEnd at_thread_end;

}  // namespace

extern "C" {

HRESULT CreateErrorInfo(IUnknown** out) {
    if (!out) return e_invalidarg;
    auto* object = new (std::nothrow) ErrorObject;
    *out = object ? &object->create : nullptr;
    return object ? s_ok : e_outofmemory;
}

HRESULT SetErrorInfo(std::uint32_t reserved, IUnknown* info) {
    if (reserved != 0) return e_invalidarg;
    if (info) {
        add_ref(info);
        at_thread_end.armed = true;
    }
    if (IUnknown* old = std::exchange(pending, info)) release(old);
    return s_ok;
}

HRESULT GetErrorInfo(std::uint32_t reserved, IUnknown** info) {
    if (reserved != 0 || !info) return e_invalidarg;
    *info = std::exchange(pending, nullptr);
    return *info ? s_ok : s_false;
}

}  // extern "C"

}  // namespace orvo::abi
