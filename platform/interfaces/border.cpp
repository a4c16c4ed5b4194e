#include "platform/interfaces/border.h"

#include <new>

#include "platform/interfaces/face.h"
#include "platform/values/object.h"

namespace orvo {

Failure current_failure(const char* source) noexcept {
    auto named = [&](Failure failure) {
        if (failure.source.empty() && !failure.keeps_empty_source)
            failure.source = from_utf8(source);
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

Failure told_failure(const ObjectCore& object, const char* member) noexcept {
    Failure failure = current_failure(object.source());
    object.failed(member, failure);
    return failure;
}

}  // namespace

abi::HRESULT report_current_exception(const abi::IID& iid, const char* source) noexcept {
    return leave_error_object(iid, current_failure(source));
}

abi::HRESULT report_current_exception(const abi::IID& iid, const ObjectCore& object,
                                      const char* member) noexcept {
    return leave_error_object(iid, told_failure(object, member));
}

abi::HRESULT report_current_exception_late(abi::EXCEPINFO* info, const ObjectCore& object,
                                           const char* member) noexcept {
    return fill_error_record(info, told_failure(object, member));
}

void raise_call_failure(abi::HRESULT code, abi::IUnknown* object, const abi::IID& iid) {
    Object support;
    const bool supported =
        abi::succeeded(abi::query_interface(object, abi::iid_support_error_info,
                                            reinterpret_cast<void**>(support.put()))) &&
        abi::call_slot<abi::HRESULT, const abi::IID*>(
            support.get(), abi::slot_interface_supports_error_info, &iid) == abi::s_ok;
    if (!supported) raise_bare_result(code);
    raise_result(code);
}

void raise_null_pointer(const char* parameter) {
    throw Failure(abi::e_pointer, {},
                  u"The argument " + from_utf8(parameter) + u" is a null pointer");
}

}  // namespace detail
}  // namespace orvo
