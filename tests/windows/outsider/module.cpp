// The exports of the module, by hand. It is registered by who runs it.

#include <iterator>

#include "records.h"

namespace {

// {6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E7C0} and the ones behind it
constexpr GUID first_class = {
    0x6B0D9A7E, 0x3C52, 0x4F0B, {0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0xC0}};

using Make = IUnknown* (*)();
constexpr Make makers[] = {new_directory,
                           new_configuration,
                           new_log,
                           new_probe,
                           [] { return new_records(Manner::strict); },
                           [] { return new_records(Manner::typed); },
                           [] { return new_records(Manner::careless); }};

class Factory : public IClassFactory {
public:
    Factory(Make make) : make_(make) {}
    virtual ~Factory() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** out) override {
        const bool is_known = iid == IID_IUnknown || iid == IID_IClassFactory;
        *out = is_known ? this : nullptr;
        return is_known ? S_OK : E_NOINTERFACE;
    }
    // It lives as long as the module.
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** out) override {
        *out = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        IUnknown* object = make_();
        const HRESULT code = object->QueryInterface(iid, out);
        object->Release();
        return code;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

private:
    Make make_;
};

}  // namespace

#ifdef _WIN32
#define EXPORTED extern "C" __declspec(dllexport)
#else
#define EXPORTED extern "C" __attribute__((visibility("default")))
#endif

EXPORTED HRESULT STDMETHODCALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, void** out) {
    static auto& factories = *new std::vector<Factory>(std::begin(makers), std::end(makers));
    *out = nullptr;
    GUID candidate = first_class;
    for (Factory& factory : factories) {
        if (clsid == candidate) return factory.QueryInterface(iid, out);
        ++candidate.Data4[7];
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

// It stays: its journal is to outlast its objects.
EXPORTED HRESULT STDMETHODCALLTYPE DllCanUnloadNow() { return S_FALSE; }
