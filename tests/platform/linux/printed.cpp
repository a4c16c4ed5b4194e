#include "printed.h"

#include <cinttypes>
#include <cstdio>

namespace orvo::testing {

using namespace abi;

namespace {

template <class... A>
std::string formatted(const char* format, A... arguments) {
    char text[128];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

std::string quoted(BSTR text) {
    std::string result = "\"";
    for (std::uint32_t i = 0; i < SysStringLen(text); ++i) {
        if (text[i] < 0x20 || text[i] > 0x7E)
            result += formatted("\\u%04x", static_cast<unsigned>(text[i]));
        else
            result += static_cast<char>(text[i]);
    }
    return result + "\"";
}

}  // namespace

std::string printed(const VARIANT& value) {
    switch (value.vt) {
        case VT_EMPTY:
            return "Empty";
        case VT_NULL:
            return "Null";
        case VT_I1:
            return formatted("I1 %d", int{value.cVal});
        case VT_UI1:
            return formatted("UI1 %d", int{value.bVal});
        case VT_I2:
            return formatted("I2 %d", int{value.iVal});
        case VT_UI2:
            return formatted("UI2 %d", int{value.uiVal});
        case VT_I4:
            return formatted("I4 %d", value.lVal);
        case VT_UI4:
            return formatted("UI4 %u", value.ulVal);
        case VT_I8:
            return formatted("I8 %" PRId64, value.llVal);
        case VT_UI8:
            return formatted("UI8 %" PRIu64, value.ullVal);
        case VT_R4:
            return formatted("R4 %.9g", static_cast<double>(value.fltVal));
        case VT_R8:
            return formatted("R8 %.15g", value.dblVal);
        case VT_CY:
            return formatted("CY int64=%" PRId64, value.cyVal.int64);
        case VT_DATE:
            return formatted("DATE %.10g", value.date);
        case VT_BOOL:
            return formatted("BOOL %d", int{value.boolVal});
        case VT_ERROR:
            return formatted("ERROR %08X", static_cast<unsigned>(value.scode));
        case VT_BSTR:
            return "BSTR " + quoted(value.bstrVal);
        case VT_DECIMAL: {
            DECIMAL decimal = decimal_of(value);
            return formatted("DECIMAL %s%08x%016" PRIx64 "/%d", decimal.sign ? "-" : "",
                             decimal.Hi32, decimal.Lo64, int{decimal.scale});
        }
        default:
            return formatted("vt%d", int{value.vt});
    }
}

std::string printed_result(HRESULT result) {
    switch (result) {
        case s_ok:
            return "S_OK";
        case disp_e_overflow:
            return "OVERFLOW";
        case disp_e_typemismatch:
            return "TYPEMISMATCH";
        case disp_e_badvartype:
            return "BADVARTYPE";
        case e_invalidarg:
            return "E_INVALIDARG";
        default:
            return formatted("%08X", static_cast<unsigned>(result));
    }
}

void Owned::set_text(const std::u16string& text) {
    VariantClear(this);
    vt = VT_BSTR;
    bstrVal = SysAllocStringLen(text.data(), static_cast<std::uint32_t>(text.size()));
}

}  // namespace orvo::testing
