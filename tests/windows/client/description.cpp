// A registered type library, in the words of the IDL: one line for each member of each interface,
// "<interface> <slot> <declaration>", one for each error number, and one for each interface and
// enumeration with its help string.

// The library's own number is defined here, not only declared.
#include <initguid.h>

#include <TavikPMMInterfaces.h>

#include <cstdio>

#include "check.h"

void print_description(const std::string& name);
void find_library(const std::wstring& id, int major, int minor);
void register_library(const std::wstring& file);
void unregister_library(const std::wstring& file);

namespace {

std::string name_of(ITypeInfo* info) {
    Bstr name;
    info->GetDocumentation(MEMBERID_NIL, name.put(), nullptr, nullptr, nullptr);
    return narrow(name.text());
}

std::string help_of(ITypeInfo* info, MEMBERID member) {
    Bstr help;
    info->GetDocumentation(member, nullptr, help.put(), nullptr, nullptr);
    return help.text().empty() ? "" : "helpstring(\"" + narrow(help.text()) + "\")";
}

std::string type_text(ITypeInfo* info, const TYPEDESC& type) {
    switch (type.vt) {
        case VT_I2:
            return "short";
        case VT_I4:
            return "long";
        case VT_I8:
            return "hyper";
        case VT_R8:
            return "double";
        case VT_CY:
            return "CURRENCY";
        case VT_DATE:
            return "DATE";
        case VT_BSTR:
            return "BSTR";
        case VT_BOOL:
            return "VARIANT_BOOL";
        case VT_VARIANT:
            return "VARIANT";
        case VT_DISPATCH:
            return "IDispatch*";
        case VT_HRESULT:
            return "HRESULT";
        case VT_PTR:
            return type_text(info, *type.lptdesc) + "*";
        case VT_SAFEARRAY:
            return "SAFEARRAY(" + type_text(info, *type.lptdesc) + ")";
        case VT_USERDEFINED: {
            Held<ITypeInfo> other;
            if (FAILED(info->GetRefTypeInfo(type.hreftype, other.put()))) return "(unknown)";
            return name_of(other.get());
        }
        default:
            return "(type " + std::to_string(type.vt) + ")";
    }
}

// The default that a caller's omission stands for.
std::string default_text(const VARIANT& value) {
    if (value.vt == VT_BSTR) return "\"" + narrow(value.bstrVal ? value.bstrVal : L"") + "\"";
    AnyValue text;
    VariantChangeType(text.put(), const_cast<VARIANT*>(&value), 0, VT_BSTR);
    return narrow(text.text());
}

std::string parameter_flags(const PARAMDESC& parameter) {
    const USHORT flags = parameter.wParamFlags;
    std::string text;
    auto add = [&](USHORT flag, const char* word) {
        if (flags & flag) text += (text.empty() ? "" : ", ") + std::string(word);
    };
    add(PARAMFLAG_FIN, "in");
    add(PARAMFLAG_FOUT, "out");
    add(PARAMFLAG_FOPT, "optional");
    if (flags & PARAMFLAG_FHASDEFAULT)
        text += ", defaultvalue(" + default_text(parameter.pparamdescex->varDefaultValue) + ")";
    add(PARAMFLAG_FRETVAL, "retval");
    return "[" + text + "]";
}

std::string member_flags(ITypeInfo* info, const FUNCDESC& member) {
    char id[32];
    std::snprintf(id, sizeof id, member.memid >= 0x60000000 ? "0x%lx" : "%ld", member.memid);
    std::string text = std::string("[id(") + id + ")";
    if (member.invkind == INVOKE_PROPERTYGET) text += ", propget";
    if (member.invkind == INVOKE_PROPERTYPUT) text += ", propput";
    if (member.invkind == INVOKE_PROPERTYPUTREF) text += ", propputref";
    if (member.wFuncFlags & FUNCFLAG_FHIDDEN) text += ", hidden";
    if (member.wFuncFlags & FUNCFLAG_FRESTRICTED) text += ", restricted";
    const std::string help = help_of(info, member.memid);
    return text + (help.empty() ? "" : ", ") + help + "]";
}

void print_member(ITypeInfo* info, const FUNCDESC& member) {
    BSTR names[32] = {};
    UINT count = 0;
    info->GetNames(member.memid, names, 32, &count);
    auto name = [&](UINT index, const char* otherwise) {
        return index < count ? narrow(names[index]) : std::string(otherwise);
    };
    std::string text = member_flags(info, member) + " " +
                       type_text(info, member.elemdescFunc.tdesc) + " " + name(0, "(unnamed)") +
                       "(";
    for (SHORT i = 0; i < member.cParams; ++i) {
        const ELEMDESC& parameter = member.lprgelemdescParam[i];
        // The new value of a property has no name, and GetNames tells the getter's.
        const bool is_new_value = member.invkind != INVOKE_FUNC &&
                                  member.invkind != INVOKE_PROPERTYGET && i + 1 == member.cParams;
        text += (i == 0 ? "" : ", ") + parameter_flags(parameter.paramdesc) + " " +
                type_text(info, parameter.tdesc) + " " +
                (is_new_value ? "value" : name(static_cast<UINT>(i) + 1, "(unnamed)"));
    }
    std::printf("%s %d %s);\n", name_of(info).c_str(),
                static_cast<int>(member.oVft / static_cast<SHORT>(sizeof(void*))), text.c_str());
    for (UINT i = 0; i < count; ++i) SysFreeString(names[i]);
}

// The members by slot of what the library lists as a late-bound interface.
void print_interface(ITypeInfo* late) {
    std::printf("interface %s %s\n", name_of(late).c_str(), help_of(late, MEMBERID_NIL).c_str());
    HREFTYPE reference = 0;
    Held<ITypeInfo> info;
    check_result(late->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK,
                 name_of(late) + " is dual");
    check_result(late->GetRefTypeInfo(reference, info.put()), S_OK, "its slots");
    if (!info.get()) return;
    TYPEATTR* attributes = nullptr;
    info->GetTypeAttr(&attributes);
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* member = nullptr;
        info->GetFuncDesc(i, &member);
        print_member(info.get(), *member);
        info->ReleaseFuncDesc(member);
    }
    info->ReleaseTypeAttr(attributes);
}

void print_constants(ITypeInfo* info) {
    std::printf("enum %s %s\n", name_of(info).c_str(), help_of(info, MEMBERID_NIL).c_str());
    TYPEATTR* attributes = nullptr;
    info->GetTypeAttr(&attributes);
    for (UINT i = 0; i < attributes->cVars; ++i) {
        VARDESC* constant = nullptr;
        info->GetVarDesc(i, &constant);
        Bstr name;
        UINT count = 0;
        info->GetNames(constant->memid, name.put(), 1, &count);
        std::printf("%s = %ld\n", narrow(name.text()).c_str(), constant->lpvarValue->lVal);
        info->ReleaseVarDesc(constant);
    }
    info->ReleaseTypeAttr(attributes);
}

// A class with the interface that its objects have by default.
void print_class(ITypeInfo* info) {
    TYPEATTR* attributes = nullptr;
    info->GetTypeAttr(&attributes);
    wchar_t id[40];
    StringFromGUID2(attributes->guid, id, 40);
    info->ReleaseTypeAttr(attributes);
    HREFTYPE reference = 0;
    Held<ITypeInfo> face;
    info->GetRefTypeOfImplType(0, &reference);
    info->GetRefTypeInfo(reference, face.put());
    std::printf("coclass %s %s %s\n", name_of(info).c_str(), narrow(id).c_str(),
                face.get() ? name_of(face.get()).c_str() : "(nothing)");
}

}  // namespace

void find_library(const std::wstring& id, int major, int minor) {
    GUID number;
    check_result(CLSIDFromString(id.c_str(), &number), S_OK, "the library's number");
    Held<ITypeLib> library;
    check_result(LoadRegTypeLib(number, static_cast<WORD>(major), static_cast<WORD>(minor), 0,
                                library.put()),
                 S_OK, "the registered type library");
}

void print_description(const std::string& name) {
    const GUID id = name == "TavikPMMInterfaces" ? LIBID_TavikPMMInterfaces : LIBID_OrvoMembership;
    Held<ITypeLib> library;
    check_result(LoadRegTypeLib(id, 1, 0, 0, library.put()), S_OK, "the registered type library");
    if (!library.get()) return;
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
        Held<ITypeInfo> info;
        TYPEKIND kind = TKIND_MAX;
        library->GetTypeInfo(i, info.put());
        library->GetTypeInfoType(i, &kind);
        switch (kind) {
            case TKIND_DISPATCH:
                print_interface(info.get());
                break;
            case TKIND_ENUM:
                print_constants(info.get());
                break;
            case TKIND_COCLASS:
                print_class(info.get());
                break;
            default:
                check(false, "a type of an unexpected kind: " + name_of(info.get()));
                break;
        }
    }
}

void register_library(const std::wstring& file) {
    Held<ITypeLib> library;
    check_result(LoadTypeLibEx(file.c_str(), REGKIND_REGISTER, library.put()), S_OK, "registering");
}

void unregister_library(const std::wstring& file) {
    Held<ITypeLib> library;
    check_result(LoadTypeLibEx(file.c_str(), REGKIND_NONE, library.put()), S_OK, "loading");
    if (!library.get()) return;
    TLIBATTR* attributes = nullptr;
    library->GetLibAttr(&attributes);
    check_result(UnRegisterTypeLib(attributes->guid, attributes->wMajorVerNum,
                                   attributes->wMinorVerNum, attributes->lcid, attributes->syskind),
                 S_OK, "unregistering");
    library->ReleaseTLibAttr(attributes);
}
