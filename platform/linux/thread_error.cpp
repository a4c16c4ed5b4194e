#include "platform/linux/thread_error.h"

#include "platform/system/automation.h"
#include "platform/values/text.h"

namespace orvo::runtime {

using namespace abi;

void set_thread_error(std::string_view description_in_utf8) {
    SetErrorInfo(0, nullptr);
    IUnknown* create = nullptr;
    if (description_in_utf8.empty() || failed(CreateErrorInfo(&create))) return;
    std::u16string description = from_utf8(description_in_utf8);
    call_slot<HRESULT, const char16_t*>(create, slot_error_set_source, u"orvo-runtime");
    call_slot<HRESULT, const char16_t*>(create, slot_error_set_description, description.c_str());
    void* error = nullptr;
    if (succeeded(query_interface(create, iid_error_info, &error))) {
        SetErrorInfo(0, static_cast<IUnknown*>(error));
        release(static_cast<IUnknown*>(error));
    }
    release(create);
}

}  // namespace orvo::runtime
