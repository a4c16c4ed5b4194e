#include "host/idl/com_headers.h"

#include <map>

#include "component/common/OrvoMemErrors.h"
#include "component/server/class_list.h"
#include "component/server/library_idl.h"
#include "host/idl/guid_numbers.h"
#include "platform/interfaces/idl.h"

namespace orvo {
namespace {

template <class C>
using default_interface = typename detail::description_of<C>::first;

std::string cpp_type(const std::string& idl) {
    static const std::map<std::string, std::string> others{
        {"short", "SHORT"}, {"long", "LONG"}, {"SAFEARRAY(VARIANT)", "SAFEARRAY*"}};
    const auto other = others.find(idl);
    return other != others.end() ? other->second : idl;
}

std::string defined_guid(const std::string& name, const abi::GUID& id) {
    return "DEFINE_GUID(" + name + ", " + guid_numbers(id) + ");\n";
}

// What __uuidof finds, with compilers that know it.
std::string uuid_of(const std::string& name, const abi::GUID& id) {
    return "#ifdef __CRT_UUID_DECL\n__CRT_UUID_DECL(" + name + ", " + guid_numbers(id) +
           ")\n#endif\n";
}

std::string declared(const std::string& name, const std::string& parameters) {
    return "    virtual HRESULT STDMETHODCALLTYPE " + name + "(" + parameters + ") = 0;\n";
}

template <auto M>
std::string declared(const RowData& row) {
    using S = detail::signature_of<M>;
    std::string parameters;
    const auto add = [&](const std::string& type, const std::string& name) {
        parameters += (parameters.empty() ? "" : ", ") + type + " " + name;
    };
    std::size_t index = 0;
    const auto parameter = [&]<class P>(std::type_identity<P>) {
        add(cpp_type(crossing<detail::natural<P>>::idl()) + (detail::is_in_out<P> ? "*" : ""),
            row.parameters[index++].name);
    };
    [&]<class... P>(std::type_identity<std::tuple<P...>>) {
        (parameter(std::type_identity<P>{}), ...);
    }(std::type_identity<typename S::parameters>{});
    if constexpr (!std::is_void_v<typename S::result>)
        if (row.shape != Shape::bare)
            add(cpp_type(crossing<detail::natural<typename S::result>>::idl()) + "*", "result");
    const char* prefix = row.shape == Shape::get             ? "get_"
                         : row.shape == Shape::put           ? "put_"
                         : row.shape == Shape::put_reference ? "putref_"
                                                             : "";
    return declared(prefix + std::string(row.name), parameters);
}

template <class I>
std::string interface_text() {
    const auto& table = table_of<I>;
    std::string text = std::string("// ") + table.about + "\n" +
                       defined_guid("IID_" + std::string(table.name), table.iid) +
                       "MIDL_INTERFACE(\"" + idl_guid(table.iid) + "\")\n" + table.name +
                       " : public " + (table.dispatch ? "IDispatch" : "IUnknown") + " {\npublic:\n";
    table.for_each([&]<auto M>(std::size_t index) {
        const RowData& row = table.rows[index];
        if constexpr (std::is_null_pointer_v<std::remove_cv_t<decltype(M)>>) {
            for (int number = row.first_reserved; number <= row.last_reserved; ++number)
                text += declared("Reserved" + std::to_string(number), "");
        } else {
            text += declared<M>(row);
        }
    });
    return text + "};\n" + uuid_of(table.name, table.iid) + "\n";
}

template <class C>
std::string class_identifier() {
    const std::string progid = class_of<C>.progid;
    return defined_guid("CLSID_" + progid.substr(progid.find('.') + 1), class_of<C>.clsid);
}

std::string errors() {
    std::string text = "// Numbers of failures.\ntypedef enum OrvoMemErrors {\n";
    for (const MemError& error : mem_errors)
        text += std::string("    ") + error.name + " = " +
                std::to_string(static_cast<std::int32_t>(error.value)) + ",\n";
    return text + "} OrvoMemErrors;\n\n";
}

template <class... I>
std::string interfaces() {
    std::string text;
    ((text += std::string("interface ") + table_of<I>.name + ";\n"), ...);
    text += "\n";
    ((text += interface_text<I>()), ...);
    return text;
}

std::string head(const LibraryName& library) {
    return "#pragma once\n\n"
           "// Written from the interface tables by orvo-idl; not edited by hand.\n"
           "//\n"
           "// For plain COM sources, on both systems. One source of a program defines INITGUID\n"
           "// before it includes anything: the identifiers are defined there.\n\n"
           "// clang-format off\n"
           "#include <windows.h>\n#include <ole2.h>\n#include <oleauto.h>\n" +
           (*library.uses ? "\n#include \"" + std::string(library.uses) + ".h\"\n" : "") + "\n" +
           defined_guid("LIBID_" + std::string(library.name), library.id) + "\n";
}

}  // namespace

std::string component_com_header() {
    return head(component_library) + errors() +
           []<class... C>(std::type_identity<std::tuple<C...>>) {
               return interfaces<default_interface<C>...>() + (class_identifier<C>() + ...);
           }(std::type_identity<PublicClasses>{});
}

std::string provider_com_header() {
    std::string text =
        head(provider_library) + []<class... I>(std::type_identity<std::tuple<I...>>) {
            return interfaces<I...>();
        }(std::type_identity<ForeignInterfaces>{});
    text.pop_back();
    return text;
}

}  // namespace orvo
