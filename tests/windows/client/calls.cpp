// Calls by slot: values in both directions, the error object, and what threads may do.

#include <thread>

#include "check.h"

void check_calls(const std::wstring& site_file);

namespace {

struct Reported {
    std::wstring source;
    std::wstring description;
    GUID iid{};
};

// The thread's error object, as a client reads it after a failed call.
Reported reported() {
    Reported all;
    Held<IErrorInfo> info;
    check_result(GetErrorInfo(0, info.put()), S_OK, "there is an error object");
    if (!info.get()) return all;
    Bstr source;
    Bstr description;
    info->GetSource(source.put());
    info->GetDescription(description.put());
    info->GetGUID(&all.iid);
    all.source = source.text();
    all.description = description.text();
    check_result(GetErrorInfo(0, info.put()), S_FALSE, "an error object is handed out once");
    return all;
}

void check_paths(IServerInfo* info) {
    Bstr host(L"LDAP://dir01:389/");
    Bstr container(L"ou=Users,o=Shop");
    Bstr object(L"jsmith");
    Bstr path;
    check_result(info->makeLDAPString(host.put(), container.put(), object.put(), path.put()), S_OK,
                 "makeLDAPString");
    check_equal(path.text(), L"LDAP://dir01:389/cn=jsmith,ou=Users,o=Shop", "the path");
    check_equal(host.text(), L"dir01:389", "the host afterwards");
    check_equal(object.text(), L"cn=jsmith", "the object afterwards");

    Bstr bare_path;
    check_result(info->makeLDAPString(host.put(), container.put(), nullptr, bare_path.put()), S_OK,
                 "makeLDAPString without an object");
    check_equal(bare_path.text(), L"LDAP://dir01:389/ou=Users,o=Shop", "the path of a container");
}

void check_lists(IServerInfo* info) {
    AnyValue classes;
    check_result(info->GetUserClass(classes.put()), S_OK, "GetUserClass");
    check(classes.get().vt == (VT_ARRAY | VT_VARIANT), "the classes are an array of variants");
    if (classes.get().vt != (VT_ARRAY | VT_VARIANT)) return;
    LONG last = -1;
    SafeArrayGetUBound(classes.get().parray, 1, &last);
    check(last == 1, "there are two classes");
    LONG first = 0;
    AnyValue element;
    SafeArrayGetElement(classes.get().parray, &first, element.put());
    check_equal(element.text(), L"orvoPerson", "the first class");
}

// What late-bound callers may ask an object about itself.
void check_description(IServerInfo* info) {
    UINT count = 0;
    check_result(info->GetTypeInfoCount(&count), S_OK, "GetTypeInfoCount");
    check(count == 1, "there is a description");
    Held<ITypeInfo> description;
    check_result(info->GetTypeInfo(0, 0, description.put()), S_OK, "GetTypeInfo");
    if (!description.get()) return;
    TYPEATTR* attributes = nullptr;
    description->GetTypeAttr(&attributes);
    check(attributes->guid == __uuidof(IServerInfo), "the description is of the interface");
    description->ReleaseTypeAttr(attributes);
    check_result(info->GetTypeInfo(1, 0, description.put()), DISP_E_BADINDEX,
                 "a second description");
}

void check_errors(ILdapAccess* entry) {
    Held<ISupportErrorInfo> support;
    check_result(
        entry->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(support.put())), S_OK,
        "ISupportErrorInfo");
    check_result(support->InterfaceSupportsErrorInfo(__uuidof(ILdapAccess)), S_OK,
                 "error objects for its own interface");
    check_result(support->InterfaceSupportsErrorInfo(__uuidof(IServerInfo)), S_FALSE,
                 "error objects for a foreign interface");

    Bstr name(L"mail");
    AnyValue value;
    check_result(entry->GetAttribValue(name.put(), value.put()), static_cast<HRESULT>(0x800A005B),
                 "an unbound entry");
    const Reported unbound = reported();
    check_equal(unbound.source, L"OrvoMembership", "the source");
    check_equal(unbound.description,
                L"\r\nERROR 0x5B\r\n METHOD: OrvoMembership.LDAPAccess.GetAttribValue\r\n"
                L" DESC: Object variable or With block variable not set.\r\n",
                "the description");
    check(unbound.iid == __uuidof(ILdapAccess), "the error names the interface");

    check_result(entry->GetAttribValue(nullptr, value.put()), E_POINTER, "a null argument");
    check_equal(reported().description, L"The argument iAttribName is a null pointer",
                "the description of a null argument");
    check_result(entry->GetAttribValue(name.put(), nullptr), E_POINTER, "a null result");
}

// An object belongs to the thread that made it; others reach it through the system's proxy, which
// the type library makes possible.
void check_threads(IServerInfo* info) {
    std::thread([info] {
        AnyValue value;
        check_result(info->GetServerName(value.put()), RPC_E_WRONG_THREAD, "another thread's call");
    }).join();
    std::thread([] {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        {
            const Held<IServerInfo> far_away = create<IServerInfo>(__uuidof(ServerInfo));
            if (!far_away.get()) return;
            Bstr user(L"cn=jsmith");
            Bstr path;
            check_result(far_away->FullUserPath(user.put(), path.put()), S_OK,
                         "a call through the proxy");
            check_equal(path.text(), L"cn=jsmith,", "the answer through the proxy");
        }
        CoUninitialize();
    }).join();
}

}  // namespace

void check_calls(const std::wstring& site_file) {
    const Held<IServerInfo> info = create<IServerInfo>(__uuidof(ServerInfo));
    const Held<ILdapAccess> entry = create<ILdapAccess>(__uuidof(LdapAccess));
    if (!info.get() || !entry.get()) return;
    Bstr path(site_file);
    check_result(info->SetConfiguration(path.put()), S_OK, "SetConfiguration");
    AnyValue container;
    check_result(info->GetUserContainer(container.put()), S_OK, "GetUserContainer");
    check_equal(container.text(), L"ou=Users,o=Shop", "the user container");
    Bstr loaded;
    check_result(info->get_ConfigurationPath(loaded.put()), S_OK, "ConfigurationPath");
    check_equal(loaded.text(), site_file, "the default property");
    check_paths(info.get());
    check_lists(info.get());
    check_description(info.get());
    check_errors(entry.get());
    check_threads(info.get());
}
