#include "platform/interfaces/create.h"

#include "platform/interfaces/border.h"

namespace orvo {
namespace {

// A class that is not there at all.
bool is_unknown_class(abi::HRESULT code) {
    return code == abi::co_e_classstring || code == abi::regdb_e_classnotreg ||
           code == abi::class_e_classnotavailable;
}

[[noreturn]] void raise_creation_failure(abi::HRESULT code, const Text& progid) {
    const Text text(runtime_error_text(runtime_error::cannot_create_object));
    Failure failure = [&] {
        try {
            detail::raise_result(code);
        } catch (const Failure& reported) {
            return reported;
        }
    }();
    const bool has_reason = failure.number == code && !failure.description.empty();
    // A class that itself lacks another one fails with the same number in the run-time range.
    const bool is_classes = code == result_of_number(runtime_error::cannot_create_object);
    const bool is_systems = is_unknown_class(code) || code == abi::co_e_dllnotfound ||
                            code == abi::co_e_errorindll ||
                            (failure.number == runtime_error::cannot_create_object && !is_classes);
    if (!is_systems) throw failure;
    Text reason;
    if (has_reason && failure.description != u"Automation error")
        reason = u": " + failure.description;
    else if (is_unknown_class(code))
        reason = u": The component \"" + progid + u"\" is not registered";
    throw Failure(runtime_error::cannot_create_object, {}, text + reason);
}

}  // namespace

Object create_object(const Text& progid) {
    abi::SetErrorInfo(0, nullptr);
    abi::CLSID clsid{};
    abi::HRESULT code = abi::CLSIDFromProgID(progid.c_str(), &clsid);
    if (abi::failed(code)) raise_creation_failure(code, progid);
    Object object;
    code = abi::CoCreateInstance(clsid, nullptr, abi::CLSCTX_INPROC_SERVER, abi::iid_dispatch,
                                 reinterpret_cast<void**>(object.put()));
    if (abi::failed(code)) raise_creation_failure(code, progid);
    return object;
}

}  // namespace orvo
