// A configuration whose values are fixed, and a log that writes nowhere.

#include "object.h"

namespace {

struct Setting {
    const OLECHAR* key;
    const OLECHAR* value;
};

constexpr Setting settings[] = {
    {OLESTR("LDAPServer"), OLESTR("dir01:389")},
    {OLESTR("LDAPRoot"), OLESTR("o=Shop")},
    {OLESTR("UserContainer"), OLESTR("ou=Users")},
    {OLESTR("ProfileContainer"), OLESTR("ou=Profiles")},
    {OLESTR("AccountContainer"), OLESTR("ou=Accounts")},
    {OLESTR("UserClass"), OLESTR("shopPerson")},
    {OLESTR("ProfileClass"), OLESTR("shopProfile")},
    {OLESTR("UserNamingAttribute"), OLESTR("cn")},
    {OLESTR("ProfileNamingAttribute"), OLESTR("cn")},
    {OLESTR("AccountNamingAttribute"), OLESTR("cn")},
    {OLESTR("UserMandatoryAttributes"), OLESTR("sn")},
    {OLESTR("MemScriptUser"), OLESTR("cn=script")},
    {OLESTR("MemScriptCode"), OLESTR("code")},
    {OLESTR("PlugableModuleImplementation"), OLESTR("Outsider.Directory")},
};

class Configuration : public Foreign<IQuendraConfiguration, IID_IQuendraConfiguration> {
public:
    HRESULT STDMETHODCALLTYPE GetFolder(BSTR* result) override {
        note_call(OLESTR("GetFolder"));
        *result = nullptr;
        return outcome_of(OLESTR("GetFolder"), IID_IQuendraConfiguration);
    }
    HRESULT STDMETHODCALLTYPE LoadSiteConfigurationFile(BSTR path, VARIANT_BOOL* result) override {
        note_call(OLESTR("LoadSiteConfigurationFile"), path);
        *result = VARIANT_TRUE;
        return outcome_of(OLESTR("LoadSiteConfigurationFile"), IID_IQuendraConfiguration);
    }
    HRESULT STDMETHODCALLTYPE LoadConfigurationFile(BSTR path) override {
        note_call(OLESTR("LoadConfigurationFile"), path);
        return outcome_of(OLESTR("LoadConfigurationFile"), IID_IQuendraConfiguration);
    }
    HRESULT STDMETHODCALLTYPE ReadConfigValue(BSTR* section, BSTR* key, VARIANT* result) override {
        note_call(OLESTR("ReadConfigValue"), section, key);
        VariantInit(result);
        const HRESULT code = outcome_of(OLESTR("ReadConfigValue"), IID_IQuendraConfiguration);
        for (const Setting& setting : settings)
            if (SUCCEEDED(code) && shown(key) == setting.key) *result = text_value(setting.value);
        return code;
    }
    HRESULT STDMETHODCALLTYPE LoadSiteConfig(VARIANT_BOOL reload) override {
        note_call(OLESTR("LoadSiteConfig"), static_cast<LONG>(reload));
        return outcome_of(OLESTR("LoadSiteConfig"), IID_IQuendraConfiguration);
    }
    HRESULT STDMETHODCALLTYPE GetValue2(BSTR* section, BSTR* key, VARIANT* value,
                                        LONG* result) override {
        note_call(OLESTR("GetValue2"), section, key, value);
        *result = 1;
        return outcome_of(OLESTR("GetValue2"), IID_IQuendraConfiguration);
    }
    HRESULT STDMETHODCALLTYPE Initialize(VARIANT* output) override {
        note_call(OLESTR("Initialize"), output);
        return outcome_of(OLESTR("Initialize"), IID_IQuendraConfiguration);
    }
    HRESULT STDMETHODCALLTYPE Reserved1() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved2() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved6() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved13() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved15() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved16() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved17() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved18() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved19() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved20() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved21() override { return E_NOTIMPL; }
};

class Log : public Foreign<IQuendraLog, IID_IQuendraLog> {
public:
    HRESULT STDMETHODCALLTYPE LogMessage(BSTR* source, BSTR* message, LONG* level,
                                         VARIANT* result) override {
        note_call(OLESTR("LogMessage"), source, message, *level);
        VariantInit(result);
        return outcome_of(OLESTR("LogMessage"), IID_IQuendraLog);
    }
    HRESULT STDMETHODCALLTYPE LogMessageAlternate(BSTR* source, BSTR* message, LONG* level,
                                                  VARIANT* result) override {
        note_call(OLESTR("LogMessageAlternate"), source, message, *level);
        VariantInit(result);
        return outcome_of(OLESTR("LogMessageAlternate"), IID_IQuendraLog);
    }
    HRESULT STDMETHODCALLTYPE Reserved1() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved2() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved4() override { return E_NOTIMPL; }
};

}  // namespace

IUnknown* new_configuration() {
    note(OLESTR("new Quendra.Configuration"));
    return static_cast<IQuendraConfiguration*>(new Configuration);
}

IUnknown* new_log() { return static_cast<IQuendraLog*>(new Log); }
