#pragma once

// Written from the interface tables by orvo-idl; not edited by hand.
//
// For plain COM sources, on both systems. One source of a program defines INITGUID
// before it includes anything: the identifiers are defined there.

// clang-format off
#include <windows.h>
#include <ole2.h>
#include <oleauto.h>

DEFINE_GUID(LIBID_TavikPMMInterfaces, 0x6B0D9A7E, 0x3C52, 0x4F0B, 0x9D, 0x2E, 0x8A, 0x41, 0xC1, 0xF5, 0xE7, 0xA0);

interface IDirectoryModule;
interface IDirectoryEntry;
interface IDirectorySearch;
interface IDirectoryValidator;
interface IDirectorySchema;
interface IQuendraConfiguration;
interface IQuendraLog;

// Makes the objects of a directory provider.
DEFINE_GUID(IID_IDirectoryModule, 0xCCF6FD6B, 0x5048, 0x43CA, 0xA4, 0x5F, 0xC1, 0x2B, 0x35, 0x84, 0xAB, 0x82);
MIDL_INTERFACE("CCF6FD6B-5048-43CA-A45F-C12B3584AB82")
IDirectoryModule : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE Reserved1() = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateSchema(IDirectorySchema** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateEntry(IDirectoryEntry** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateValidator(IDirectoryValidator** result) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateSearch(IDirectorySearch** result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IDirectoryModule, 0xCCF6FD6B, 0x5048, 0x43CA, 0xA4, 0x5F, 0xC1, 0x2B, 0x35, 0x84, 0xAB, 0x82)
#endif

// One entry of the directory.
DEFINE_GUID(IID_IDirectoryEntry, 0x33CC820F, 0x121F, 0x4221, 0xB4, 0x8E, 0x57, 0xEB, 0xB1, 0x1C, 0x69, 0x55);
MIDL_INTERFACE("33CC820F-121F-4221-B48E-57EBB11C6955")
IDirectoryEntry : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE Reserved1() = 0;
    virtual HRESULT STDMETHODCALLTYPE Bind(BSTR* server, BSTR* container, BSTR* commonName, BSTR* user, BSTR* password, VARIANT* attributes) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved3() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetValues(BSTR* name, VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetValues(BSTR* name, VARIANT* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearValues(BSTR* name) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved7() = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateChild(VARIANT* classes, BSTR* namingAttribute, IDispatch** attributes) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteChild(BSTR* className, BSTR* entryName) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE InitializeConnectionPool(VARIANT* names, VARIANT* values, VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE InitializeCache(VARIANT* names, VARIANT* values, VARIANT_BOOL* result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IDirectoryEntry, 0x33CC820F, 0x121F, 0x4221, 0xB4, 0x8E, 0x57, 0xEB, 0xB1, 0x1C, 0x69, 0x55)
#endif

// A search below a container.
DEFINE_GUID(IID_IDirectorySearch, 0x3F8F6BE4, 0xF403, 0x45BE, 0x90, 0xA5, 0xE0, 0x24, 0x3C, 0x01, 0x36, 0x56);
MIDL_INTERFACE("3F8F6BE4-F403-45BE-90A5-E0243C013656")
IDirectorySearch : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE Reserved1() = 0;
    virtual HRESULT STDMETHODCALLTYPE Connect(BSTR* server, BSTR* container, BSTR* user, BSTR* password) = 0;
    virtual HRESULT STDMETHODCALLTYPE Execute(BSTR* filter, VARIANT* attributes, LONG maximum, IDispatch** result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IDirectorySearch, 0x3F8F6BE4, 0xF403, 0x45BE, 0x90, 0xA5, 0xE0, 0x24, 0x3C, 0x01, 0x36, 0x56)
#endif

// Checks passwords.
DEFINE_GUID(IID_IDirectoryValidator, 0x356CFAF8, 0x0D94, 0x40AF, 0xB4, 0x06, 0xE5, 0x21, 0xEE, 0x56, 0x1F, 0x56);
MIDL_INTERFACE("356CFAF8-0D94-40AF-B406-E521EE561F56")
IDirectoryValidator : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE Reserved1() = 0;
    virtual HRESULT STDMETHODCALLTYPE Open(BSTR* server, BSTR* userContainer) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved3() = 0;
    virtual HRESULT STDMETHODCALLTYPE Validate(VARIANT* path, VARIANT* password, LONG* result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IDirectoryValidator, 0x356CFAF8, 0x0D94, 0x40AF, 0xB4, 0x06, 0xE5, 0x21, 0xEE, 0x56, 0x1F, 0x56)
#endif

// The schema; callers hold it and ask it nothing.
DEFINE_GUID(IID_IDirectorySchema, 0x5F118A9F, 0xB82B, 0x486D, 0xA9, 0x90, 0xE8, 0x46, 0x24, 0xC8, 0x18, 0xC1);
MIDL_INTERFACE("5F118A9F-B82B-486D-A990-E84624C818C1")
IDirectorySchema : public IDispatch {
public:
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IDirectorySchema, 0x5F118A9F, 0xB82B, 0x486D, 0xA9, 0x90, 0xE8, 0x46, 0x24, 0xC8, 0x18, 0xC1)
#endif

// The site's configuration.
DEFINE_GUID(IID_IQuendraConfiguration, 0xA717E666, 0xA0D2, 0x453A, 0x93, 0x57, 0x9D, 0xCF, 0x85, 0x6B, 0xE2, 0x0B);
MIDL_INTERFACE("A717E666-A0D2-453A-9357-9DCF856BE20B")
IQuendraConfiguration : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE Reserved1() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved2() = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFolder(BSTR* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LoadSiteConfigurationFile(BSTR path, VARIANT_BOOL* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LoadConfigurationFile(BSTR path) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved6() = 0;
    virtual HRESULT STDMETHODCALLTYPE ReadConfigValue(BSTR* section, BSTR* key, VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LoadSiteConfig(VARIANT_BOOL reload) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetValue2(BSTR* section, BSTR* key, VARIANT* value, LONG* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved10() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved11() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved12() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved13() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved14() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved15() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved16() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved17() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved18() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved19() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved20() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved21() = 0;
    virtual HRESULT STDMETHODCALLTYPE Initialize(VARIANT* output) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IQuendraConfiguration, 0xA717E666, 0xA0D2, 0x453A, 0x93, 0x57, 0x9D, 0xCF, 0x85, 0x6B, 0xE2, 0x0B)
#endif

// The log that the component writes to.
DEFINE_GUID(IID_IQuendraLog, 0x0621D2F8, 0x6009, 0x4F66, 0xA8, 0x55, 0x2F, 0x8D, 0x3A, 0x15, 0xD6, 0x01);
MIDL_INTERFACE("0621D2F8-6009-4F66-A855-2F8D3A15D601")
IQuendraLog : public IDispatch {
public:
    virtual HRESULT STDMETHODCALLTYPE Reserved1() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved2() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved3() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved4() = 0;
    virtual HRESULT STDMETHODCALLTYPE LogMessage(BSTR* source, BSTR* message, LONG* level, VARIANT* result) = 0;
    virtual HRESULT STDMETHODCALLTYPE LogMessageAlternate(BSTR* source, BSTR* message, LONG* level, VARIANT* result) = 0;
};
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IQuendraLog, 0x0621D2F8, 0x6009, 0x4F66, 0xA8, 0x55, 0x2F, 0x8D, 0x3A, 0x15, 0xD6, 0x01)
#endif
