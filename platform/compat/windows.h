#pragma once

// For Linux: what ordinary COM sources, and headers made from IDL, take from the system's headers.
// These are the structures and calls of Automation as liborvo-runtime has them, under the names
// that such sources use. A source includes either this header or the product's own ones
// (platform/…), which describe the same things.
//
// Texts are UTF-16: OLECHAR is char16_t, OLESTR("a") is u"a", and not wchar_t. There is no
// registry: a module registers itself with OrvoRegisterModule, below.
//
// Any thread may make these calls, no two at once with the same array, text or variant. A failure
// is a result code, or a null text or array.

#include <cstdint>
#include <cstdlib>
#include <cstring>

#define interface struct
#define MIDL_INTERFACE(id) struct
#define STDMETHODCALLTYPE
#define __RPC_USER
#define BEGIN_INTERFACE
#define END_INTERFACE
#define EXTERN_C extern "C"
#define WINAPI
#define PURE = 0
#define STDMETHOD(name) virtual HRESULT name
#define STDMETHOD_(type, name) virtual type name
#define STDMETHODIMP HRESULT
#define STDMETHODIMP_(type) type
// An export, which is seen though the module's sources are compiled with hidden visibility.
#define STDAPI EXTERN_C __attribute__((visibility("default"))) HRESULT
#define STDAPI_(type) EXTERN_C __attribute__((visibility("default"))) type
#define OLESTR(text) u##text

using LONG = std::int32_t;
using ULONG = std::uint32_t;
using UINT = std::uint32_t;
using WORD = std::uint16_t;
using USHORT = std::uint16_t;
using BYTE = std::uint8_t;
using INT = std::int32_t;
using SHORT = std::int16_t;
using DWORD = std::uint32_t;
using BOOL = std::int32_t;
using HRESULT = std::int32_t;
using LCID = std::uint32_t;
using DISPID = std::int32_t;
using MEMBERID = DISPID;
using HREFTYPE = DWORD;
using VARTYPE = std::uint16_t;
using VARIANT_BOOL = std::int16_t;
using DATE = double;
using OLECHAR = char16_t;
using BSTR = OLECHAR*;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using LPVOID = void*;
using HINSTANCE = void*;  // of a DllMain, which nobody calls here

struct GUID {
    std::uint32_t Data1;
    std::uint16_t Data2;
    std::uint16_t Data3;
    std::uint8_t Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using REFGUID = const GUID&;
inline bool operator==(const GUID& a, const GUID& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

inline constexpr GUID GUID_NULL{};
#define IID_NULL GUID_NULL
#define CLSID_NULL GUID_NULL

#ifdef INITGUID
#define DEFINE_GUID(name, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) \
    extern "C" const GUID name = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}
#else
#define DEFINE_GUID(name, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) extern "C" const GUID name
#endif

constexpr HRESULT S_OK = 0;
constexpr HRESULT NOERROR = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001);
constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
constexpr HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFF);
constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
constexpr HRESULT E_ACCESSDENIED = static_cast<HRESULT>(0x80070005);
constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);
constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111);
constexpr HRESULT DISP_E_MEMBERNOTFOUND = static_cast<HRESULT>(0x80020003);
constexpr HRESULT DISP_E_PARAMNOTFOUND = static_cast<HRESULT>(0x80020004);
constexpr HRESULT DISP_E_TYPEMISMATCH = static_cast<HRESULT>(0x80020005);
constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154);
constexpr HRESULT DISP_E_UNKNOWNNAME = static_cast<HRESULT>(0x80020006);
constexpr HRESULT DISP_E_EXCEPTION = static_cast<HRESULT>(0x80020009);
constexpr HRESULT DISP_E_BADPARAMCOUNT = static_cast<HRESULT>(0x8002000E);
constexpr HRESULT DISP_E_UNKNOWNINTERFACE = static_cast<HRESULT>(0x80020001);
constexpr HRESULT DISP_E_NONAMEDARGS = static_cast<HRESULT>(0x80020007);
constexpr HRESULT DISP_E_BADVARTYPE = static_cast<HRESULT>(0x80020008);
constexpr HRESULT DISP_E_OVERFLOW = static_cast<HRESULT>(0x8002000A);
constexpr HRESULT DISP_E_BADINDEX = static_cast<HRESULT>(0x8002000B);
constexpr HRESULT DISP_E_ARRAYISLOCKED = static_cast<HRESULT>(0x8002000D);
constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = static_cast<HRESULT>(0x8002000F);
constexpr HRESULT RPC_E_WRONG_THREAD = static_cast<HRESULT>(0x8001010E);
constexpr HRESULT CO_E_CLASSSTRING = static_cast<HRESULT>(0x800401F3);
constexpr HRESULT CO_E_DLLNOTFOUND = static_cast<HRESULT>(0x800401F8);
constexpr HRESULT CO_E_ERRORINDLL = static_cast<HRESULT>(0x800401F9);
constexpr HRESULT CONTEXT_E_NOCONTEXT = static_cast<HRESULT>(0x8004E004);
constexpr bool SUCCEEDED(HRESULT code) { return code >= 0; }
constexpr bool FAILED(HRESULT code) { return code < 0; }

constexpr VARIANT_BOOL VARIANT_TRUE = -1;
constexpr VARIANT_BOOL VARIANT_FALSE = 0;
constexpr BOOL TRUE = 1;
constexpr BOOL FALSE = 0;
constexpr DISPID DISPID_VALUE = 0;
constexpr DISPID DISPID_UNKNOWN = -1;
constexpr WORD DISPATCH_METHOD = 1;
constexpr WORD DISPATCH_PROPERTYGET = 2;
constexpr WORD DISPATCH_PROPERTYPUT = 4;
constexpr WORD DISPATCH_PROPERTYPUTREF = 8;
constexpr DISPID DISPID_PROPERTYPUT = -3;
constexpr DISPID DISPID_NEWENUM = -4;
constexpr USHORT VARIANT_NOVALUEPROP = 0x1;
constexpr USHORT VARIANT_ALPHABOOL = 0x2;
constexpr USHORT VARIANT_NOUSEROVERRIDE = 0x4;
constexpr USHORT VARIANT_LOCALBOOL = 0x10;
constexpr std::uint32_t CLSCTX_INPROC_SERVER = 1;
constexpr LCID LOCALE_NEUTRAL = 0;
constexpr LCID LOCALE_USER_DEFAULT = 0x400;
constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x800;
constexpr DWORD COINIT_MULTITHREADED = 0;
constexpr DWORD COINIT_APARTMENTTHREADED = 2;

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

union CY {
    std::int64_t int64;
};
using CURRENCY = CY;
struct SAFEARRAYBOUND {
    ULONG cElements;
    LONG lLbound;
};
// Bounds are stored in reverse: rgsabound[0] belongs to the last dimension.
struct SAFEARRAY {
    USHORT cDims;
    USHORT fFeatures;
    ULONG cbElements;
    ULONG cLocks;
    void* pvData;
    SAFEARRAYBOUND rgsabound[1];
};
interface IUnknown;
interface IDispatch;
using LPUNKNOWN = IUnknown*;
using LPDISPATCH = IDispatch*;
struct VARIANT {
    VARTYPE vt;
    WORD wReserved1;
    WORD wReserved2;
    WORD wReserved3;
    union {
        LONG lVal;
        SHORT iVal;
        BYTE bVal;
        std::int8_t cVal;
        USHORT uiVal;
        ULONG ulVal;
        std::int64_t llVal;
        std::uint64_t ullVal;
        INT intVal;
        UINT uintVal;
        float fltVal;
        double dblVal;
        CY cyVal;
        DATE date;
        HRESULT scode;
        void* byref;
        BSTR* pbstrVal;
        BSTR bstrVal;
        IUnknown* punkVal;
        IDispatch* pdispVal;
        SAFEARRAY* parray;
        VARIANT* pvarVal;
        VARIANT_BOOL boolVal;
        SHORT* piVal;
        LONG* plVal;
        double* pdblVal;
        VARIANT_BOOL* pboolVal;
        IUnknown** ppunkVal;
        IDispatch** ppdispVal;
        SAFEARRAY** pparray;
        struct {
            void* first;
            void* second;
        } whole;
    };
};
using VARIANTARG = VARIANT;
#define V_VT(value) ((value)->vt)
#define V_BSTR(value) ((value)->bstrVal)
#define V_BOOL(value) ((value)->boolVal)
#define V_UI1(value) ((value)->bVal)
#define V_I2(value) ((value)->iVal)
#define V_I4(value) ((value)->lVal)
#define V_I8(value) ((value)->llVal)
#define V_R8(value) ((value)->dblVal)
#define V_CY(value) ((value)->cyVal)
#define V_DATE(value) ((value)->date)
#define V_ERROR(value) ((value)->scode)
#define V_UNKNOWN(value) ((value)->punkVal)
#define V_DISPATCH(value) ((value)->pdispVal)
#define V_ARRAY(value) ((value)->parray)
#define V_VARIANTREF(value) ((value)->pvarVal)
struct DISPPARAMS {
    VARIANTARG* rgvarg;
    DISPID* rgdispidNamedArgs;
    UINT cArgs;
    UINT cNamedArgs;
};
struct EXCEPINFO {
    WORD wCode;
    WORD wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    std::uint32_t dwHelpContext;
    void* pvReserved;
    HRESULT (*pfnDeferredFillIn)(EXCEPINFO*);
    HRESULT scode;
};

interface IUnknown {
    virtual HRESULT QueryInterface(REFIID, void**) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
};
// Type information.
enum TYPEKIND : std::int32_t { TKIND_DISPATCH = 4 };
enum FUNCKIND : std::int32_t { FUNC_DISPATCH = 4 };
enum INVOKEKIND : std::int32_t {};
constexpr USHORT PARAMFLAG_FIN = 1;
constexpr USHORT PARAMFLAG_FOPT = 0x10;
struct TYPEDESC {
    TYPEDESC* lptdesc;
    VARTYPE vt;
};
struct PARAMDESC {
    void* pparamdescex;
    USHORT wParamFlags;
};
struct ELEMDESC {
    TYPEDESC tdesc;
    PARAMDESC paramdesc;
};
struct TYPEATTR {
    GUID guid;
    LCID lcid;
    DWORD dwReserved;
    MEMBERID memidConstructor;
    MEMBERID memidDestructor;
    LPOLESTR lpstrSchema;
    ULONG cbSizeInstance;
    TYPEKIND typekind;
    WORD cFuncs;
    WORD cVars;
    WORD cImplTypes;
    WORD cbSizeVft;
    WORD cbAlignment;
    WORD wTypeFlags;
    WORD wMajorVerNum;
    WORD wMinorVerNum;
    TYPEDESC tdescAlias;
    PARAMDESC idldescType;
};
struct FUNCDESC {
    MEMBERID memid;
    HRESULT* lprgscode;
    ELEMDESC* lprgelemdescParam;
    FUNCKIND funckind;
    INVOKEKIND invkind;
    std::int32_t callconv;
    SHORT cParams;
    SHORT cParamsOpt;
    SHORT oVft;
    SHORT cScodes;
    ELEMDESC elemdescFunc;
    WORD wFuncFlags;
};
struct VARDESC;
interface ITypeComp;
interface ITypeLib;
interface ITypeInfo;
interface IDispatch : public IUnknown {
    virtual HRESULT GetTypeInfoCount(UINT*) = 0;
    virtual HRESULT GetTypeInfo(UINT, LCID, ITypeInfo**) = 0;
    virtual HRESULT GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) = 0;
    virtual HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                           UINT*) = 0;
};
interface ITypeInfo : public IUnknown {
    virtual HRESULT GetTypeAttr(TYPEATTR**) = 0;
    virtual HRESULT GetTypeComp(ITypeComp**) = 0;
    virtual HRESULT GetFuncDesc(UINT, FUNCDESC**) = 0;
    virtual HRESULT GetVarDesc(UINT, VARDESC**) = 0;
    virtual HRESULT GetNames(MEMBERID, BSTR*, UINT, UINT*) = 0;
    virtual HRESULT GetRefTypeOfImplType(UINT, HREFTYPE*) = 0;
    virtual HRESULT GetImplTypeFlags(UINT, INT*) = 0;
    virtual HRESULT GetIDsOfNames(LPOLESTR*, UINT, MEMBERID*) = 0;
    virtual HRESULT Invoke(void*, MEMBERID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) = 0;
    virtual HRESULT GetDocumentation(MEMBERID, BSTR*, BSTR*, DWORD*, BSTR*) = 0;
    virtual HRESULT GetDllEntry(MEMBERID, INVOKEKIND, BSTR*, BSTR*, WORD*) = 0;
    virtual HRESULT GetRefTypeInfo(HREFTYPE, ITypeInfo**) = 0;
    virtual HRESULT AddressOfMember(MEMBERID, INVOKEKIND, void**) = 0;
    virtual HRESULT CreateInstance(IUnknown*, REFIID, void**) = 0;
    virtual HRESULT GetMops(MEMBERID, BSTR*) = 0;
    virtual HRESULT GetContainingTypeLib(ITypeLib**, UINT*) = 0;
    virtual void ReleaseTypeAttr(TYPEATTR*) = 0;
    virtual void ReleaseFuncDesc(FUNCDESC*) = 0;
    virtual void ReleaseVarDesc(VARDESC*) = 0;
};
interface IEnumVARIANT : public IUnknown {
    virtual HRESULT Next(ULONG, VARIANT*, ULONG*) = 0;
    virtual HRESULT Skip(ULONG) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Clone(IEnumVARIANT**) = 0;
};
interface IClassFactory : public IUnknown {
    virtual HRESULT CreateInstance(IUnknown*, REFIID, void**) = 0;
    virtual HRESULT LockServer(BOOL) = 0;
};
interface ISupportErrorInfo : public IUnknown {
    virtual HRESULT InterfaceSupportsErrorInfo(REFIID) = 0;
};
interface IErrorInfo : public IUnknown {
    virtual HRESULT GetGUID(GUID*) = 0;
    virtual HRESULT GetSource(BSTR*) = 0;
    virtual HRESULT GetDescription(BSTR*) = 0;
    virtual HRESULT GetHelpFile(BSTR*) = 0;
    virtual HRESULT GetHelpContext(DWORD*) = 0;
};
interface ICreateErrorInfo : public IUnknown {
    virtual HRESULT SetGUID(REFGUID) = 0;
    virtual HRESULT SetSource(LPOLESTR) = 0;
    virtual HRESULT SetDescription(LPOLESTR) = 0;
    virtual HRESULT SetHelpFile(LPOLESTR) = 0;
    virtual HRESULT SetHelpContext(std::uint32_t) = 0;
};

DEFINE_GUID(IID_IUnknown, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46);
DEFINE_GUID(IID_IClassFactory, 1, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46);
DEFINE_GUID(IID_IDispatch, 0x20400, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46);
DEFINE_GUID(IID_ITypeInfo, 0x20401, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46);
DEFINE_GUID(IID_IEnumVARIANT, 0x20404, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46);
DEFINE_GUID(IID_ISupportErrorInfo, 0xDF0B3D60, 0x548F, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B,
            0xD1, 0x19);
DEFINE_GUID(IID_IErrorInfo, 0x1CF2B120, 0x547D, 0x101B, 0x8E, 0x65, 0x08, 0x00, 0x2B, 0x2B, 0xD1,
            0x19);

extern "C" {
BSTR SysAllocString(const OLECHAR* text);
BSTR SysAllocStringLen(const OLECHAR* text, UINT length);
BSTR SysAllocStringByteLen(const char* bytes, UINT count);
INT SysReAllocStringLen(BSTR* text, const OLECHAR* from, UINT length);
void SysFreeString(BSTR text);
UINT SysStringLen(BSTR text);
UINT SysStringByteLen(BSTR text);
void VariantInit(VARIANT* value);
HRESULT VariantClear(VARIANT* value);
HRESULT VariantCopy(VARIANT* to, const VARIANT* from);
HRESULT VariantChangeType(VARIANT* to, const VARIANT* from, USHORT flags, VARTYPE type);
HRESULT VariantCopyInd(VARIANT* to, const VARIANT* from);
HRESULT VariantChangeTypeEx(VARIANT* to, const VARIANT* from, LCID locale, USHORT flags,
                            VARTYPE type);
SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lower, ULONG count);
SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds);
HRESULT SafeArrayDestroy(SAFEARRAY* array);
HRESULT SafeArrayCopy(SAFEARRAY* from, SAFEARRAY** to);
HRESULT SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* last_bound);
UINT SafeArrayGetElemsize(SAFEARRAY* array);
HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);
HRESULT SafeArrayLock(SAFEARRAY* array);
HRESULT SafeArrayUnlock(SAFEARRAY* array);
HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, LONG* indices, void** out);
HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data);
HRESULT SafeArrayUnaccessData(SAFEARRAY* array);
UINT SafeArrayGetDim(SAFEARRAY* array);
HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* out);
HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* value);
HRESULT CreateErrorInfo(ICreateErrorInfo** out);
HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info);
HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** info);
HRESULT CoCreateGuid(GUID* out);
void CoFreeUnusedLibraries();
HRESULT CoGetClassObject(REFCLSID clsid, DWORD context, void* server_info, REFIID iid, void** out);
HRESULT CLSIDFromProgID(LPCOLESTR progid, CLSID* out);
HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, std::uint32_t context, REFIID iid,
                         void** out);

// A class that a module registers: "Maker.Class", without a version, which is registered beside it.
struct OrvoModuleClass {
    const OLECHAR* progid;
    CLSID clsid;
};
// For a module's DllRegisterServer: writes the manifest by which the runtime finds its classes,
// into the first folder of ORVO_COMPONENTS or else the user's own, in place of a former one of this
// name.
//   inside    an address in the module's code or data, by which its file is found
//   name      the file name without its ending
// What cannot be written leaves an error object with file and reason.
HRESULT OrvoRegisterModule(const void* inside, const OLECHAR* name, const OrvoModuleClass* classes,
                           ULONG count);
// For DllUnregisterServer: removes it; S_FALSE where there is none.
HRESULT OrvoUnregisterModule(const OLECHAR* name);
}

// What Windows needs and Linux does not: a thread needs no preparation.
inline HRESULT CoInitialize(void*) { return S_OK; }
inline HRESULT CoInitializeEx(void*, DWORD) { return S_OK; }
inline void CoUninitialize() {}

inline void* CoTaskMemAlloc(std::size_t size) { return std::malloc(size); }
inline void CoTaskMemFree(void* memory) { std::free(memory); }
inline LONG InterlockedIncrement(volatile LONG* number) {
    return __atomic_add_fetch(number, 1, __ATOMIC_SEQ_CST);
}
inline LONG InterlockedDecrement(volatile LONG* number) {
    return __atomic_sub_fetch(number, 1, __ATOMIC_SEQ_CST);
}
inline bool IsEqualGUID(REFGUID a, REFGUID b) { return a == b; }
inline bool IsEqualIID(REFIID a, REFIID b) { return a == b; }
inline bool IsEqualCLSID(REFCLSID a, REFCLSID b) { return a == b; }
