// Arrays in a variant.

#include <cstring>

#include "platform/system/automation.h"
#include "platform/values/array_view.h"
#include "platform/values/failure.h"
#include "platform/values/secret.h"
#include "platform/values/values.h"
#include "platform/values/variant.h"

namespace orvo {
namespace {

constexpr std::size_t longest_array = 0x7FFFFFFE;

}  // namespace

Variant::Variant(const Values& value) : Variant(Values(value)) {}

Variant::Variant(Values&& value) : Variant() {
    raw().parray = value.detach();
    raw().vt = abi::VT_ARRAY | abi::VT_VARIANT;
}

Variant Variant::bytes(std::string_view content) {
    abi::SAFEARRAY* array = nullptr;
    if (content.size() <= longest_array) {
        array =
            abi::SafeArrayCreateVector(abi::VT_UI1, 0, static_cast<std::uint32_t>(content.size()));
    }
    if (!array) raise_runtime_error(runtime_error::out_of_memory);
    if (!content.empty()) std::memcpy(array->pvData, content.data(), content.size());
    Variant value;
    value.raw().vt = abi::VT_ARRAY | abi::VT_UI1;
    value.raw().parray = array;
    return value;
}

void Variant::wipe() {
    const auto wipe_text = [](const abi::VARIANT& value) {
        if (value.vt == abi::VT_BSTR && value.bstrVal)
            overwrite(value.bstrVal, abi::SysStringByteLen(value.bstrVal));
    };
    wipe_text(raw());
    if (raw().vt == (abi::VT_ARRAY | abi::VT_VARIANT)) {
        const auto view = detail::array_of(raw());
        for (std::size_t i = 0; i < view.size(); ++i)
            wipe_text(static_cast<const abi::VARIANT*>(view.array->pvData)[i]);
    }
    *this = Variant();
}

std::optional<std::string> Variant::try_bytes() const {
    if (raw().vt != (abi::VT_ARRAY | abi::VT_UI1)) return {};
    const auto view = detail::array_of(raw());
    if (!view.is_vector()) return {};
    if (view.size() == 0) return std::string();
    return std::string(static_cast<const char*>(view.array->pvData), view.size());
}

}  // namespace orvo
