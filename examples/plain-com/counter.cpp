// An object as plain COM sources make one: counted by hand, with a class factory and exports of its
// own. Nothing here is the product's but OrvoRegisterModule, which stands in for the registry.

#define INITGUID
#include <windows.h>

#include <string>

namespace {

// {C0A9C3C4-6D5B-4D0E-8F5E-2A7E4E1F9B21}
constexpr CLSID counter_class = {
    0xC0A9C3C4, 0x6D5B, 0x4D0E, {0x8F, 0x5E, 0x2A, 0x7E, 0x4E, 0x1F, 0x9B, 0x21}};

volatile LONG objects = 0;

// Late bound: Add(n) counts on and answers the sum, Total is a property.
class Counter : public IDispatch {
public:
    Counter() { InterlockedIncrement(&objects); }
    virtual ~Counter() { InterlockedDecrement(&objects); }

    STDMETHODIMP QueryInterface(REFIID iid, LPVOID* out) override {
        const bool is_known = iid == IID_IUnknown || iid == IID_IDispatch;
        *out = is_known ? static_cast<IDispatch*>(this) : nullptr;
        if (is_known) AddRef();
        return is_known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override {
        return static_cast<ULONG>(InterlockedIncrement(&references_));
    }
    STDMETHODIMP_(ULONG) Release() override {
        const LONG left = InterlockedDecrement(&references_);
        if (left == 0) delete this;
        return static_cast<ULONG>(left);
    }
    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
        const std::basic_string<OLECHAR> name = names[0];
        ids[0] = name == OLESTR("Add") ? 1 : name == OLESTR("Total") ? 2 : DISPID_UNKNOWN;
        return ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* passed,
                        VARIANT* result, EXCEPINFO*, UINT*) override {
        if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
        if (id == 1 && (flags & DISPATCH_METHOD)) {
            if (passed->cArgs != 1) return DISP_E_BADPARAMCOUNT;
            VARIANT number;
            VariantInit(&number);
            const HRESULT code = VariantChangeType(&number, &passed->rgvarg[0], 0, VT_I4);
            if (FAILED(code)) return code;
            total_ += V_I4(&number);
        } else if (id != 2 || !(flags & DISPATCH_PROPERTYGET)) {
            return DISP_E_MEMBERNOTFOUND;
        }
        if (result) {
            V_VT(result) = VT_I4;
            V_I4(result) = total_;
        }
        return S_OK;
    }

private:
    volatile LONG references_ = 1;
    LONG total_ = 0;
};

// It lives as long as the module.
class Factory : public IClassFactory {
public:
    STDMETHODIMP QueryInterface(REFIID iid, LPVOID* out) override {
        const bool is_known = iid == IID_IUnknown || iid == IID_IClassFactory;
        *out = is_known ? static_cast<IClassFactory*>(this) : nullptr;
        return is_known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(LPUNKNOWN outer, REFIID iid, LPVOID* out) override {
        *out = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        Counter* counter = new Counter;
        const HRESULT code = counter->QueryInterface(iid, out);
        counter->Release();
        return code;
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};

}  // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* out) {
    static Factory factory;
    *out = nullptr;
    return clsid == counter_class ? factory.QueryInterface(iid, out) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return objects == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
    const OrvoModuleClass classes[] = {{OLESTR("PlainCom.Counter"), counter_class}};
    return OrvoRegisterModule(&counter_class, OLESTR("PlainCom"), classes, 1);
}

STDAPI DllUnregisterServer() { return OrvoUnregisterModule(OLESTR("PlainCom")); }
