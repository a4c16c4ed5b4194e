#include "platform/interfaces/idl.h"

#include <gtest/gtest.h>

#include "tests/platform/interfaces/probe.h"

namespace orvo {
namespace {

TEST(IdlWriter, WritesMembersInSlotOrderWithTheirNumbers) {
    IdlWriter writer;
    writer.write_interface<Probe>();
    EXPECT_EQ(writer.text(),
              R"(    [ object, uuid(0B5D7C9E-53A1-4A35-8D4B-5C1F6F1D2A01), dual, oleautomation ]
    interface IProbe : IDispatch
    {
        /* 7 */ [id(1)] HRESULT Add([in] long a, [in] short b, [out, retval] long* result);
        /* 8 */ [id(2), helpstring("Greets somebody.")] HRESULT Greet([in, out] BSTR* name, [out, retval] BSTR* result);
        /* 9 */ [id(0x60010003), hidden, restricted] HRESULT Reserved3();
        /* 10 */ [id(0x60010004), hidden, restricted] HRESULT Reserved4();
        /* 11 */ [id(3)] HRESULT Swap([in, out] VARIANT* a, [in, out] VARIANT* b);
        /* 12 */ [id(4)] HRESULT Echo([in] VARIANT value, [out, retval] VARIANT* result);
        /* 13 */ [id(5)] HRESULT Not([in] VARIANT_BOOL value, [out, retval] VARIANT_BOOL* result);
        /* 14 */ [id(6)] HRESULT Half([in] double value, [out, retval] double* result);
        /* 15 */ [id(7)] HRESULT Twice([in] CURRENCY value, [out, retval] CURRENCY* result);
        /* 16 */ [id(8)] HRESULT NextDay([in] DATE day, [out, retval] DATE* result);
        /* 17 */ [id(9)] HRESULT Reverse([in, out] SAFEARRAY(VARIANT)* values, [out, retval] SAFEARRAY(VARIANT)* result);
        /* 18 */ [id(10)] HRESULT Join([in] BSTR first, [in, out, optional, defaultvalue(empty_text)] BSTR* second, [in, optional] VARIANT third, [out, retval] BSTR* result);
        /* 19 */ [id(11)] HRESULT Fail([in] long number);
        /* 20 */ [id(12)] HRESULT FailBare();
        /* 21 */ [id(13)] HRESULT Crash();
        /* 22 */ [id(14), propget] HRESULT Name([out, retval] BSTR* result);
        /* 23 */ [id(14), propput] HRESULT Name([in] BSTR value);
        /* 24 */ [id(0), propget] HRESULT Item([in] BSTR key, [out, retval] BSTR* result);
        /* 25 */ [id(0), propput] HRESULT Item([in] BSTR key, [in] BSTR value);
        /* 26 */ [id(18), propget] HRESULT Friend([out, retval] IProbe** result);
        /* 27 */ [id(19), propget] HRESULT Nothing([out, retval] IDispatch** result);
        /* 28 */ [id(20), propget, hidden] HRESULT Counted([out, retval] long* result);
    };
)");
}

}  // namespace
}  // namespace orvo
