#include "component/server/idl.h"

#include "component/common/OrvoMemErrors.h"
#include "component/server/class_list.h"
#include "component/server/idl_spelling.h"
#include "platform/interfaces/idl.h"

namespace orvo {
namespace {

constexpr const char* library_id = "6B0D9A7E-3C52-4F0B-9D2E-8A41C1F5E700";

std::string head() {
    return std::string(
               "// Written from the interface tables by orvo-idl; not edited by hand.\n"
               "import \"oaidl.idl\";\n\n"
               "[ uuid(") +
           library_id +
           "), version(1.0), helpstring(\"OrvoMembership 1.0 Type Library\") ]\n"
           "library OrvoMembership\n{\n    importlib(\"stdole2.tlb\");\n\n";
}

std::string errors() {
    std::string text = "    typedef enum OrvoMemErrors\n    {\n";
    for (const MemError& error : mem_errors)
        text += std::string("        ") + error.name + " = " +
                std::to_string(static_cast<std::int32_t>(error.value)) +
                (&error == &mem_errors[std::size(mem_errors) - 1] ? "\n" : ",\n");
    return text + "    } OrvoMemErrors;\n\n";
}

template <class I>
std::string forward() {
    return std::string("    interface ") + table_of<I>.name + ";\n";
}

template <class C>
using default_interface = typename detail::description_of<C>::first;

template <class C>
std::string class_name() {
    const std::string progid = class_of<C>.progid;
    return progid.substr(progid.find('.') + 1);
}

template <class C>
std::string coclass() {
    const std::string progid = class_of<C>.progid;
    return "    [ uuid(" + idl_guid(class_of<C>.clsid) + "), helpstring(\"" + progid +
           "\") ]\n    coclass " + class_name<C>() + "\n    {\n        [default] interface " +
           table_of<default_interface<C>>.name + ";\n    };\n";
}

}  // namespace

std::string component_idl() {
    IdlWriter writer;
    std::vector<std::string> names;
    auto each = []<class... T>(std::type_identity<std::tuple<T...>>, auto write) {
        (write(std::type_identity<T>{}), ...);
    };
    constexpr std::type_identity<UsedInterfaces> used;
    constexpr std::type_identity<PublicClasses> classes;
    each(used, [&]<class I>(std::type_identity<I>) { writer.raw(forward<I>()); });
    writer.raw("\n");
    auto interface_of = [&]<class I>(std::type_identity<I>) {
        names.push_back(table_of<I>.name);
        for (const RowData& row : table_of<I>.rows)
            if (row.shape != Shape::reserved) names.push_back(row.name);
        writer.write_interface<I>();
        writer.raw("\n");
    };
    each(used, interface_of);
    each(classes, [&]<class C>(std::type_identity<C>) {
        names.push_back(class_name<C>());
        interface_of(std::type_identity<default_interface<C>>{});
    });
    each(classes, [&]<class C>(std::type_identity<C>) { writer.raw(coclass<C>()); });
    writer.raw("};\n");
    const std::string body = writer.text();
    return head() + idl_spelling(names, body) + errors() + body;
}

}  // namespace orvo
