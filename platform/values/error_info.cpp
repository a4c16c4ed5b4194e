#include "platform/values/error_info.h"

#include <utility>

#include "platform/values/object.h"

namespace orvo::detail {
namespace {

using abi::call_slot;
using abi::HRESULT;

static_assert(wrong_thread == abi::rpc_e_wrong_thread);

abi::BSTR given(const Text& text) {
    return abi::SysAllocStringLen(text.data(), static_cast<std::uint32_t>(text.size()));
}

Text taken(abi::BSTR& text) {
    Text copy(text ? text : u"", abi::SysStringLen(text));
    abi::SysFreeString(std::exchange(text, nullptr));
    return copy;
}

Text text_of(abi::IUnknown* info, std::size_t slot) {
    abi::BSTR text = nullptr;
    call_slot<HRESULT, abi::BSTR*>(info, slot, &text);
    return taken(text);
}

Text standard_text(std::int32_t number) {
    const TextView text = runtime_error_text(number);
    return Text(text.empty() ? u"Automation error" : text);
}

// What an error object or an exception record says of a failure.
[[noreturn]] void raise_told(HRESULT code, Text source, Text description, Text help_file,
                             std::int32_t help_context) {
    // A code that came with a text stays itself, but for the run-time errors' own range.
    const bool run_time = (static_cast<std::uint32_t>(code) & 0xFFFF0000u) == 0x800A0000u;
    const std::int32_t number = description.empty() || run_time ? number_of_result(code) : code;
    if (description.empty()) description = standard_text(number);
    Failure failure(number, std::move(source), std::move(description), std::move(help_file),
                    help_context);
    failure.keeps_empty_source = true;
    throw failure;
}

}  // namespace

HRESULT leave_error_object(const abi::IID& iid, const Failure& failure) noexcept {
    Object created;
    if (abi::succeeded(abi::CreateErrorInfo(created.put()))) {
        abi::IUnknown* info = created.get();
        call_slot<HRESULT, const abi::GUID*>(info, abi::slot_error_set_guid, &iid);
        auto set = [&](std::size_t slot, const Text& text) {
            call_slot<HRESULT, const char16_t*>(info, slot, text.c_str());
        };
        set(abi::slot_error_set_source, failure.source);
        set(abi::slot_error_set_description, failure.description);
        set(abi::slot_error_set_help_file, failure.help_file);
        call_slot<HRESULT, std::uint32_t>(info, abi::slot_error_set_help_context,
                                          static_cast<std::uint32_t>(failure.help_context));
        Object readable;
        if (abi::succeeded(abi::query_interface(info, abi::iid_error_info,
                                                reinterpret_cast<void**>(readable.put()))))
            abi::SetErrorInfo(0, readable.get());
    }
    return result_of_number(failure.number);
}

HRESULT fill_error_record(abi::EXCEPINFO* info, const Failure& failure) noexcept {
    const HRESULT code = result_of_number(failure.number);
    if (info == nullptr) return code;
    *info = {};
    info->bstrSource = given(failure.source);
    info->bstrDescription = given(failure.description);
    if (!failure.help_file.empty()) info->bstrHelpFile = given(failure.help_file);
    info->dwHelpContext = static_cast<std::uint32_t>(failure.help_context);
    info->scode = code;
    return abi::disp_e_exception;
}

void check(HRESULT result) {
    if (abi::failed(result)) raise_runtime_error(number_of_result(result));
}

void raise_bare_result(HRESULT code) {
    const std::int32_t number = number_of_result(code);
    throw Failure(number, {}, standard_text(number));
}

void raise_result(HRESULT code) {
    Object info;
    if (abi::GetErrorInfo(0, info.put()) != abi::s_ok || !info) raise_bare_result(code);
    std::uint32_t help_context = 0;
    call_slot<HRESULT, std::uint32_t*>(info.get(), abi::slot_error_get_help_context, &help_context);
    raise_told(code, text_of(info.get(), abi::slot_error_get_source),
               text_of(info.get(), abi::slot_error_get_description),
               text_of(info.get(), abi::slot_error_get_help_file),
               static_cast<std::int32_t>(help_context));
}

void raise_late_failure(HRESULT code, abi::EXCEPINFO& info) {
    if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
    Text source = taken(info.bstrSource);
    Text description = taken(info.bstrDescription);
    Text help_file = taken(info.bstrHelpFile);
    if (code != abi::disp_e_exception) raise_bare_result(code);
    if (info.wCode != 0)
        code = result_of_number(info.wCode);
    else
        code = abi::failed(info.scode) ? info.scode : abi::e_fail;
    raise_told(code, std::move(source), std::move(description), std::move(help_file),
               static_cast<std::int32_t>(info.dwHelpContext));
}

}  // namespace orvo::detail
