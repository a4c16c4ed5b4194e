#include "component/server/library_idl.h"

#include "component/common/OrvoMemErrors.h"
#include "component/server/class_list.h"
#include "platform/interfaces/idl.h"

namespace orvo {
namespace {

// `macros`: what the text itself needs beforehand.
std::string head(const LibraryName& library, const std::string& macros) {
    const std::string name = library.name;
    const std::string uses = library.uses;
    return "// Written from the interface tables by orvo-idl; not edited by hand.\n"
           "import \"oaidl.idl\";\n" +
           (uses.empty() ? "" : "import \"" + uses + ".idl\";\n") + "\n" + macros + "[ uuid(" +
           idl_guid(library.id) + "), version(1.0), helpstring(\"" + name +
           " 1.0 Type Library\") ]\nlibrary " + name + "\n{\n    importlib(\"stdole2.tlb\");\n" +
           (uses.empty() ? "" : "    importlib(\"" + uses + ".tlb\");\n") + "\n";
}

std::string errors() {
    std::string text =
        "    typedef [helpstring(\"Numbers of failures.\")] enum OrvoMemErrors\n    {\n";
    for (const MemError& error : mem_errors)
        text += std::string("        ") + error.name + " = " +
                std::to_string(static_cast<std::int32_t>(error.value)) +
                (&error == &mem_errors[std::size(mem_errors) - 1] ? "\n" : ",\n");
    return text + "    } OrvoMemErrors;\n\n";
}

template <class C>
using default_interface = typename detail::description_of<C>::first;

template <class... I>
void write_interfaces(IdlWriter& writer) {
    (writer.raw(std::string("    interface ") + table_of<I>.name + ";\n"), ...);
    writer.raw("\n");
    ((writer.write_interface<I>(), writer.raw("\n")), ...);
}

template <class C>
std::string coclass() {
    const std::string progid = class_of<C>.progid;
    return "    [ uuid(" + idl_guid(class_of<C>.clsid) + "), helpstring(\"" + progid +
           "\") ]\n    coclass " + progid.substr(progid.find('.') + 1) +
           "\n    {\n        [default] interface " + table_of<default_interface<C>>.name +
           ";\n    };\n";
}

}  // namespace

std::string component_idl() {
    IdlWriter writer;
    writer.raw(head(component_library, idl_empty_text));
    writer.raw(errors());
    [&]<class... C>(std::type_identity<std::tuple<C...>>) {
        write_interfaces<default_interface<C>...>(writer);
        (writer.raw(coclass<C>()), ...);
    }(std::type_identity<PublicClasses>{});
    writer.raw("};\n");
    return writer.text();
}

std::string provider_idl() {
    IdlWriter writer;
    writer.raw(head(provider_library, ""));
    [&]<class... I>(std::type_identity<std::tuple<I...>>) {
        write_interfaces<I...>(writer);
    }(std::type_identity<ForeignInterfaces>{});
    writer.raw("};\n");
    return writer.text();
}

}  // namespace orvo
