#include "platform/abi/border.h"

#include <new>

#include "platform/abi/crossing.h"
#include "platform/abi/face.h"

namespace orvo {
namespace detail {
namespace {

using abi::call_slot;
using abi::HRESULT;

Text take_text(abi::BSTR& text) { return crossing<Text>::take(text); }

Text text_of(abi::IUnknown* info, std::size_t slot) {
    abi::BSTR text = nullptr;
    call_slot<HRESULT, abi::BSTR*>(info, slot, &text);
    return take_text(text);
}

[[noreturn]] void raise(HRESULT code, Text source, Text description, Text help_file,
                        std::int32_t help_context) {
    // A code that came with a text stays itself, but for the run-time errors' own range.
    const bool run_time = (static_cast<std::uint32_t>(code) & 0xFFFF0000u) == 0x800A0000u;
    const std::int32_t number = description.empty() || run_time ? number_of_result(code) : code;
    if (description.empty()) description = runtime_error_text(number);
    if (description.empty()) description = u"Automation error";
    throw Failure(number, std::move(source), std::move(description), std::move(help_file),
                  help_context);
}

}  // namespace
}  // namespace detail

Failure current_failure(const char* source) noexcept {
    auto named = [&](Failure failure) {
        if (failure.source.empty()) failure.source = from_utf8(source);
        return failure;
    };
    try {
        throw;
    } catch (const Failure& failure) {
        return named(failure);
    } catch (const std::bad_alloc&) {
        return named({runtime_error::out_of_memory,
                      {},
                      Text(runtime_error_text(runtime_error::out_of_memory))});
    } catch (const std::exception& other) {
        return named({abi::e_unexpected, {}, from_utf8(other.what())});
    } catch (...) {
        return named({abi::e_unexpected, {}, u"Unexpected failure"});
    }
}

namespace detail {

namespace {

abi::HRESULT report(const abi::IID& iid, const Failure& failure) noexcept {
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

Failure told_failure(const ObjectCore& object, const char* member) noexcept {
    Failure failure = current_failure(object.source());
    object.failed(member, failure);
    return failure;
}

}  // namespace

abi::HRESULT report_current_exception(const abi::IID& iid, const char* source) noexcept {
    return report(iid, current_failure(source));
}

abi::HRESULT report_current_exception(const abi::IID& iid, const ObjectCore& object,
                                      const char* member) noexcept {
    return report(iid, told_failure(object, member));
}

abi::HRESULT report_current_exception_late(abi::EXCEPINFO* info, const ObjectCore& object,
                                           const char* member) noexcept {
    const Failure failure = told_failure(object, member);
    const HRESULT code = result_of_number(failure.number);
    if (info == nullptr) return code;
    *info = {};
    info->bstrSource = crossing<Text>::give(failure.source);
    info->bstrDescription = crossing<Text>::give(failure.description);
    if (!failure.help_file.empty()) info->bstrHelpFile = crossing<Text>::give(failure.help_file);
    info->dwHelpContext = static_cast<std::uint32_t>(failure.help_context);
    info->scode = code;
    return abi::disp_e_exception;
}

void raise_result(abi::HRESULT code) {
    Object info;
    if (abi::GetErrorInfo(0, info.put()) != abi::s_ok || !info) raise(code, {}, {}, {}, 0);
    std::uint32_t help_context = 0;
    call_slot<HRESULT, std::uint32_t*>(info.get(), abi::slot_error_get_help_context, &help_context);
    raise(code, text_of(info.get(), abi::slot_error_get_source),
          text_of(info.get(), abi::slot_error_get_description),
          text_of(info.get(), abi::slot_error_get_help_file),
          static_cast<std::int32_t>(help_context));
}

void raise_call_failure(abi::HRESULT code, abi::IUnknown* object, const abi::IID& iid) {
    Object support;
    const bool supported =
        abi::succeeded(abi::query_interface(object, abi::iid_support_error_info,
                                            reinterpret_cast<void**>(support.put()))) &&
        call_slot<HRESULT, const abi::IID*>(support.get(), abi::slot_interface_supports_error_info,
                                            &iid) == abi::s_ok;
    if (!supported) raise(code, {}, {}, {}, 0);
    raise_result(code);
}

void raise_late_failure(abi::HRESULT code, abi::EXCEPINFO& info) {
    if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
    Text source = take_text(info.bstrSource);
    Text description = take_text(info.bstrDescription);
    Text help_file = take_text(info.bstrHelpFile);
    if (code == abi::disp_e_exception) {
        if (info.wCode != 0)
            throw Failure(info.wCode, std::move(source), std::move(description),
                          std::move(help_file), static_cast<std::int32_t>(info.dwHelpContext));
        code = abi::failed(info.scode) ? info.scode : abi::e_fail;
    }
    raise(code, std::move(source), std::move(description), std::move(help_file),
          static_cast<std::int32_t>(info.dwHelpContext));
}

}  // namespace detail
}  // namespace orvo
