#pragma once

// The binary structures and calls of Automation.
//
// Windows ships them; on Linux platform/linux provides them under the same names, with the same
// layouts and results, so nothing that uses this header can tell which system it is on. Names are
// the platform's own. Only platform/ includes this header; everything above it uses the C++ values
// of platform/values and the interface tables of platform/interfaces.
//
// Any thread may make these calls, no two threads at once with the same array or variant. Nothing
// is raised: a failure is one of the result codes below, or a null string or array. A string, array
// or reference that a call gives out is its receiver's to free.
//
// A source that includes this header must not include Windows headers: both declare the same
// functions.

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace orvo::abi {

using HRESULT = std::int32_t;
using LCID = std::uint32_t;
using DISPID = std::int32_t;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DATE = double;
using BSTR = char16_t*;

inline constexpr VARIANT_BOOL variant_true = -1;
inline constexpr VARIANT_BOOL variant_false = 0;

// The locale in which texts and numbers are converted: US English, whatever the user's own is.
inline constexpr LCID fixed_locale = 0x409;

constexpr HRESULT result(std::uint32_t code) { return static_cast<HRESULT>(code); }
constexpr bool succeeded(HRESULT code) { return code >= 0; }
constexpr bool failed(HRESULT code) { return code < 0; }

inline constexpr HRESULT s_ok = 0;
inline constexpr HRESULT s_false = 1;
inline constexpr HRESULT e_notimpl = result(0x80004001);
inline constexpr HRESULT e_nointerface = result(0x80004002);
inline constexpr HRESULT e_pointer = result(0x80004003);
inline constexpr HRESULT e_fail = result(0x80004005);
inline constexpr HRESULT e_unexpected = result(0x8000FFFF);
inline constexpr HRESULT e_accessdenied = result(0x80070005);
inline constexpr HRESULT e_outofmemory = result(0x8007000E);
inline constexpr HRESULT e_invalidarg = result(0x80070057);
inline constexpr HRESULT disp_e_unknowninterface = result(0x80020001);
inline constexpr HRESULT disp_e_membernotfound = result(0x80020003);
inline constexpr HRESULT disp_e_paramnotfound = result(0x80020004);
inline constexpr HRESULT disp_e_typemismatch = result(0x80020005);
inline constexpr HRESULT disp_e_unknownname = result(0x80020006);
inline constexpr HRESULT disp_e_nonamedargs = result(0x80020007);
inline constexpr HRESULT disp_e_badvartype = result(0x80020008);
inline constexpr HRESULT disp_e_exception = result(0x80020009);
inline constexpr HRESULT disp_e_overflow = result(0x8002000A);
inline constexpr HRESULT disp_e_badindex = result(0x8002000B);
inline constexpr HRESULT disp_e_arrayislocked = result(0x8002000D);
inline constexpr HRESULT disp_e_badparamcount = result(0x8002000E);
inline constexpr HRESULT disp_e_paramnotoptional = result(0x8002000F);
inline constexpr HRESULT rpc_e_wrong_thread = result(0x8001010E);
inline constexpr HRESULT class_e_noaggregation = result(0x80040110);
inline constexpr HRESULT class_e_classnotavailable = result(0x80040111);
inline constexpr HRESULT regdb_e_classnotreg = result(0x80040154);
inline constexpr HRESULT co_e_classstring = result(0x800401F3);
inline constexpr HRESULT co_e_dllnotfound = result(0x800401F8);
inline constexpr HRESULT co_e_errorindll = result(0x800401F9);
inline constexpr HRESULT context_e_nocontext = result(0x8004E004);

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
    constexpr bool operator==(const GUID&) const = default;
};
static_assert(sizeof(GUID) == 16);
using IID = GUID;
using CLSID = GUID;

// A slot of a vtable; every slot's first argument is the interface pointer itself.
using Slot = void (*)();

struct IUnknown {
    const Slot* slots;
};
struct IDispatch : IUnknown {};

// Calls one slot of somebody's interface. R and A are the binary types of that slot.
template <class R, class... A>
R call_slot(IUnknown* self, std::size_t index, A... args) {
    return reinterpret_cast<R (*)(IUnknown*, A...)>(self->slots[index])(self, args...);
}

enum : VARTYPE {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_DECIMAL = 14,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_VOID = 24,
    VT_HRESULT = 25,
    VT_SAFEARRAY = 27,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000,
};

// fFeatures of a SAFEARRAY.
enum : std::uint16_t {
    FADF_AUTO = 0x1,
    FADF_STATIC = 0x2,
    FADF_EMBEDDED = 0x4,
    FADF_FIXEDSIZE = 0x10,
    FADF_RECORD = 0x20,
    FADF_HAVEIID = 0x40,
    FADF_HAVEVARTYPE = 0x80,
    FADF_BSTR = 0x100,
    FADF_UNKNOWN = 0x200,
    FADF_DISPATCH = 0x400,
    FADF_VARIANT = 0x800,
    FADF_CREATEVECTOR = 0x2000,
};

// Flags of VariantChangeType.
enum : std::uint16_t {
    VARIANT_NOVALUEPROP = 0x1,
    VARIANT_ALPHABOOL = 0x2,
    VARIANT_NOUSEROVERRIDE = 0x4,
    VARIANT_LOCALBOOL = 0x10,
};

// Flags of IDispatch::Invoke.
enum : std::uint16_t {
    DISPATCH_METHOD = 0x1,
    DISPATCH_PROPERTYGET = 0x2,
    DISPATCH_PROPERTYPUT = 0x4,
    DISPATCH_PROPERTYPUTREF = 0x8,
};

inline constexpr DISPID DISPID_VALUE = 0;
inline constexpr DISPID DISPID_UNKNOWN = -1;
inline constexpr DISPID DISPID_PROPERTYPUT = -3;
inline constexpr DISPID DISPID_NEWENUM = -4;

enum : std::uint32_t { CLSCTX_INPROC_SERVER = 0x1 };

struct CY {
    std::int64_t int64;
};

struct DECIMAL {
    std::uint16_t wReserved;
    std::uint8_t scale;
    std::uint8_t sign;  // 0x80 when negative
    std::uint32_t Hi32;
    std::uint64_t Lo64;
};
static_assert(sizeof(DECIMAL) == 16);

struct SAFEARRAYBOUND {
    std::uint32_t cElements;
    std::int32_t lLbound;
};

// Bounds are stored in reverse: rgsabound[0] belongs to the last dimension.
struct SAFEARRAY {
    std::uint16_t cDims;
    std::uint16_t fFeatures;
    std::uint32_t cbElements;
    std::uint32_t cLocks;
    void* pvData;
    SAFEARRAYBOUND rgsabound[1];
};
static_assert(sizeof(SAFEARRAY) == 32 && offsetof(SAFEARRAY, rgsabound) == 24);

struct VARIANT {
    VARTYPE vt;
    std::uint16_t wReserved1;
    std::uint16_t wReserved2;
    std::uint16_t wReserved3;
    union {
        std::int8_t cVal;
        std::uint8_t bVal;
        std::int16_t iVal;
        std::uint16_t uiVal;
        std::int32_t lVal;
        std::uint32_t ulVal;
        std::int64_t llVal;
        std::uint64_t ullVal;
        float fltVal;
        double dblVal;
        VARIANT_BOOL boolVal;
        HRESULT scode;
        CY cyVal;
        DATE date;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        SAFEARRAY* parray;
        void* byref;
        std::int16_t* piVal;
        std::int32_t* plVal;
        double* pdblVal;
        VARIANT_BOOL* pboolVal;
        BSTR* pbstrVal;
        IUnknown** ppunkVal;
        IDispatch** ppdispVal;
        SAFEARRAY** pparray;
        VARIANT* pvarVal;
        DECIMAL* pdecVal;
        struct {
            void* pvRecord;
            void* pRecInfo;
        } record;
    };
};
static_assert(sizeof(VARIANT) == 24 && alignof(VARIANT) == 8);

// A decimal overlays the whole variant; its first two bytes are the variant's type.
inline DECIMAL decimal_of(const VARIANT& value) {
    DECIMAL decimal;
    std::memcpy(&decimal, &value, sizeof decimal);
    return decimal;
}
inline void put_decimal(VARIANT& value, DECIMAL decimal) {
    decimal.wReserved = VT_DECIMAL;
    std::memcpy(&value, &decimal, sizeof decimal);
}

// rgvarg is in reverse order: rgvarg[0] is the last argument, for a property put the new value.
struct DISPPARAMS {
    VARIANT* rgvarg;
    DISPID* rgdispidNamedArgs;
    std::uint32_t cArgs;
    std::uint32_t cNamedArgs;
};

struct EXCEPINFO {
    std::uint16_t wCode;
    std::uint16_t wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    std::uint32_t dwHelpContext;
    void* pvReserved;
    HRESULT (*pfnDeferredFillIn)(EXCEPINFO*);
    HRESULT scode;
};
static_assert(sizeof(EXCEPINFO) == 64);

inline constexpr IID iid_unknown{0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID iid_class_factory{1, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID iid_dispatch{0x20400, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID iid_enum_variant{0x20404, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
inline constexpr IID iid_error_info{
    0x1CF2B120, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
inline constexpr IID iid_create_error_info{
    0x22F03340, 0x547D, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};
inline constexpr IID iid_support_error_info{
    0xDF0B3D60, 0x548F, 0x101B, {0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1, 0x19}};

// Slots of the interfaces that the runtime itself speaks.
enum : std::size_t {
    slot_query_interface = 0,
    slot_add_ref = 1,
    slot_release = 2,
    slot_get_type_info_count = 3,
    slot_get_type_info = 4,
    slot_get_ids_of_names = 5,
    slot_invoke = 6,
    slot_enum_next = 3,
    slot_enum_skip = 4,
    slot_enum_reset = 5,
    slot_enum_clone = 6,
    slot_factory_create_instance = 3,
    slot_factory_lock_server = 4,
    slot_error_get_guid = 3,
    slot_error_get_source = 4,
    slot_error_get_description = 5,
    slot_error_get_help_file = 6,
    slot_error_get_help_context = 7,
    slot_error_set_guid = 3,
    slot_error_set_source = 4,
    slot_error_set_description = 5,
    slot_error_set_help_file = 6,
    slot_error_set_help_context = 7,
    slot_interface_supports_error_info = 3,
};

inline std::uint32_t add_ref(IUnknown* object) {
    return call_slot<std::uint32_t>(object, slot_add_ref);
}
inline std::uint32_t release(IUnknown* object) {
    return call_slot<std::uint32_t>(object, slot_release);
}
inline HRESULT query_interface(IUnknown* object, const IID& iid, void** out) {
    return call_slot<HRESULT, const IID*, void**>(object, slot_query_interface, &iid, out);
}

#ifndef _WIN32
#pragma GCC visibility push(default)
#endif
extern "C" {

BSTR SysAllocString(const char16_t* text);
BSTR SysAllocStringLen(const char16_t* text, std::uint32_t length);
BSTR SysAllocStringByteLen(const char* bytes, std::uint32_t count);
std::int32_t SysReAllocStringLen(BSTR* text, const char16_t* from, std::uint32_t length);
void SysFreeString(BSTR text);
std::uint32_t SysStringLen(BSTR text);
std::uint32_t SysStringByteLen(BSTR text);

void VariantInit(VARIANT* value);
HRESULT VariantClear(VARIANT* value);
HRESULT VariantCopy(VARIANT* to, const VARIANT* from);
HRESULT VariantCopyInd(VARIANT* to, const VARIANT* from);
HRESULT VariantChangeType(VARIANT* to, const VARIANT* from, std::uint16_t flags, VARTYPE type);
HRESULT VariantChangeTypeEx(VARIANT* to, const VARIANT* from, LCID locale, std::uint16_t flags,
                            VARTYPE type);

SAFEARRAY* SafeArrayCreate(VARTYPE type, std::uint32_t dimensions, SAFEARRAYBOUND* bounds);
SAFEARRAY* SafeArrayCreateVector(VARTYPE type, std::int32_t lower, std::uint32_t count);
HRESULT SafeArrayDestroy(SAFEARRAY* array);
HRESULT SafeArrayCopy(SAFEARRAY* from, SAFEARRAY** to);
HRESULT SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* last_bound);
std::uint32_t SafeArrayGetDim(SAFEARRAY* array);
std::uint32_t SafeArrayGetElemsize(SAFEARRAY* array);
HRESULT SafeArrayGetLBound(SAFEARRAY* array, std::uint32_t dimension, std::int32_t* bound);
HRESULT SafeArrayGetUBound(SAFEARRAY* array, std::uint32_t dimension, std::int32_t* bound);
HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);
HRESULT SafeArrayGetElement(SAFEARRAY* array, std::int32_t* indices, void* out);
HRESULT SafeArrayPutElement(SAFEARRAY* array, std::int32_t* indices, void* value);
HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, std::int32_t* indices, void** out);
HRESULT SafeArrayLock(SAFEARRAY* array);
HRESULT SafeArrayUnlock(SAFEARRAY* array);
HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data);
HRESULT SafeArrayUnaccessData(SAFEARRAY* array);

HRESULT CreateErrorInfo(IUnknown** out);
HRESULT SetErrorInfo(std::uint32_t reserved, IUnknown* info);
HRESULT GetErrorInfo(std::uint32_t reserved, IUnknown** info);

HRESULT CoCreateGuid(GUID* out);
HRESULT CLSIDFromProgID(const char16_t* progid, CLSID* out);
HRESULT CoGetClassObject(const CLSID& clsid, std::uint32_t context, void* server_info,
                         const IID& iid, void** out);
HRESULT CoCreateInstance(const CLSID& clsid, IUnknown* outer, std::uint32_t context, const IID& iid,
                         void** out);
void CoFreeUnusedLibraries();

}  // extern "C"
#ifndef _WIN32
#pragma GCC visibility pop
#endif

}  // namespace orvo::abi
