#include "platform/abi/idl.h"

#include <gtest/gtest.h>

#include "tests/platform/abi/probe.h"

namespace orvo {
namespace {

TEST(IdlWriter, WritesMembersInSlotOrderWithTheirNumbers) {
    IdlWriter writer;
    writer.write_interface<Probe>();
    EXPECT_EQ(writer.text(),
              R"(    [ object, uuid(0B5D7C9E-53A1-4A35-8D4B-5C1F6F1D2A01), dual, oleautomation ]
    interface IProbe : IDispatch
    {
        [id(1)] HRESULT Add([in] long a, [in] short b, [out, retval] long* result);
        [id(2)] HRESULT Greet([in, out] BSTR* name, [out, retval] BSTR* result);
        [id(0x60010003), hidden, restricted] HRESULT Reserved3();
        [id(0x60010004), hidden, restricted] HRESULT Reserved4();
        [id(3)] HRESULT Swap([in, out] VARIANT* a, [in, out] VARIANT* b);
        [id(4)] HRESULT Echo([in] VARIANT value, [out, retval] VARIANT* result);
        [id(5)] HRESULT Not([in] VARIANT_BOOL value, [out, retval] VARIANT_BOOL* result);
        [id(6)] HRESULT Half([in] double value, [out, retval] double* result);
        [id(7)] HRESULT Twice([in] CURRENCY value, [out, retval] CURRENCY* result);
        [id(8)] HRESULT NextDay([in] DATE day, [out, retval] DATE* result);
        [id(9)] HRESULT Reverse([in, out] SAFEARRAY(VARIANT)* values, [out, retval] SAFEARRAY(VARIANT)* result);
        [id(10)] HRESULT Join([in] BSTR first, [in, out, optional] BSTR* second, [in, optional] VARIANT third, [out, retval] BSTR* result);
        [id(11)] HRESULT Fail([in] long number);
        [id(12)] HRESULT FailBare();
        [id(13)] HRESULT Crash();
        [id(14), propget] HRESULT Name([out, retval] BSTR* result);
        [id(14), propput] HRESULT Name([in] BSTR value);
        [id(0), propget] HRESULT Item([in] BSTR key, [out, retval] BSTR* result);
        [id(0), propput] HRESULT Item([in] BSTR key, [in] BSTR value);
        [id(18)] HRESULT Friend([out, retval] IProbe** result);
        [id(19)] HRESULT Nothing([out, retval] IDispatch** result);
        [id(20), propget, hidden] HRESULT Counted([out, retval] long* result);
    };
)");
}

}  // namespace
}  // namespace orvo
