#include "host/idl/client_header.h"

#include <map>
#include <optional>
#include <vector>

#include "component/common/OrvoMemErrors.h"
#include "component/server/class_list.h"
#include "host/idl/guid_numbers.h"
#include "platform/interfaces/idl.h"

namespace orvo {
namespace {

// What stands in C++ for a type of the IDL: as an argument, and as a result.
struct CppType {
    std::string argument;
    std::string result;
    std::string left_out = {};  // what an optional argument is without a value; empty: {}
    bool is_number = false;
};

CppType cpp_type(const std::string& idl) {
    static const std::map<std::string, CppType> types{
        {"BSTR", {"Text", "std::string"}},
        {"VARIANT", {"Value", "Value", "Value::missing()"}},
        {"VARIANT_BOOL", {"bool", "bool", {}, true}},
        {"short", {"std::int16_t", "std::int16_t", {}, true}},
        {"long", {"std::int32_t", "std::int32_t", {}, true}},
        {"CURRENCY", {"Currency", "Currency"}},
        {"DATE", {"Date", "Date"}},
        // What the component's members answer so are record sets, all of them.
        {"IDispatch*", {"Object", "RecordSet"}},
        {"IUser*", {"orvo::User", "orvo::User"}},
        {"IProfile*", {"orvo::Profile", "orvo::Profile"}}};
    const auto found = types.find(idl);
    return found != types.end() ? found->second : CppType{"Object", "Object"};
}

template <class C>
using default_interface = typename detail::description_of<C>::first;

std::string class_name(const char* progid) {
    const std::string whole = progid;
    return whole.substr(whole.find('.') + 1);
}

// A class of the client, as it is declared and, behind all classes, defined.
class ClassWriter {
public:
    template <class C>
    void write() {
        using I = default_interface<C>;
        name_ = class_name(class_of<C>.progid);
        declared += "// " + std::string(table_of<I>.about) + "\nclass " + name_ +
                    " : public Object {\npublic:\n    // Makes one.\n    " + name_ +
                    "() : Object(\"" + class_of<C>.progid +
                    "\", iid) {}\n    // The same object, typed. Raises where it is of another "
                    "class; none stays none.\n    explicit " +
                    name_ + "(const Object& object) : Object(object, iid) {}\n    " +
                    "static constexpr abi::IID iid{" + guid_numbers(table_of<I>.iid, "{") +
                    "}};\n\n";
        const auto& table = table_of<I>;
        table.for_each([&]<auto M>(std::size_t index) {
            if constexpr (!std::is_null_pointer_v<std::remove_cv_t<decltype(M)>>)
                member<M>(table.slots[index], table.rows[index]);
        });
        declared += "};\n\n";
    }

    std::string declared;
    std::string defined;

private:
    template <auto M>
    void member(std::size_t slot, const RowData& row) {
        using S = detail::signature_of<M>;
        std::string parameters, without_defaults, arguments;
        std::size_t index = 0;
        const auto add = [&]<class P>(std::type_identity<P>) {
            const Parameter& named = row.parameters[index++];
            const CppType type = cpp_type(crossing<detail::natural<P>>::idl());
            const std::string declaration = (detail::is_in_out<P> ? "InOut<" + type.argument + ">"
                                             : type.is_number     ? "In<" + type.argument + ">"
                                                                  : type.argument) +
                                            " " + named.name;
            const std::string comma = parameters.empty() ? "" : ", ";
            std::string otherwise = type.left_out.empty() ? "{}" : type.left_out;
            if (named.otherwise != 0) otherwise = std::to_string(named.otherwise);
            parameters += comma + declaration + (named.may_be_missing ? " = " + otherwise : "");
            without_defaults += comma + declaration;
            arguments += std::string(", ") + named.name;
        };
        [&]<class... P>(std::type_identity<std::tuple<P...>>) {
            (add(std::type_identity<P>{}), ...);
        }(std::type_identity<typename S::parameters>{});
        std::string result = "void";
        if constexpr (!std::is_void_v<typename S::result>)
            result = cpp_type(crossing<detail::natural<typename S::result>>::idl()).result;

        const std::string name = row.name;
        if (row.help[0] != 0 && row.help != last_help_)
            declared += "    // " + std::string(row.help) + "\n";
        last_help_ = row.help;
        declared += "    " + result + " " + name + "(" + parameters + ") const;\n";
        defined += "inline " + result + " " + name_ + "::" + name + "(" + without_defaults +
                   ") const {\n    return slot<" + result + ">(" + std::to_string(slot) +
                   arguments + ");\n}\n";
    }

    std::string name_;
    std::string_view last_help_ = {};
};

std::string error_numbers() {
    std::string text = "// Numbers of failures (Error::number).\n";
    for (const MemError& error : mem_errors)
        text += std::string("inline constexpr std::int32_t ") + error.name + " = " +
                std::to_string(static_cast<std::int32_t>(error.value)) + ";\n";
    return text + "\n";
}

}  // namespace

std::string client_header() {
    ClassWriter writer;
    std::string forward;
    [&]<class... C>(std::type_identity<std::tuple<C...>>) {
        ((forward += "class " + class_name(class_of<C>.progid) + ";\n"), ...);
        (writer.write<C>(), ...);
    }(std::type_identity<PublicClasses>{});
    return "#pragma once\n\n"
           "// Written from the interface tables by orvo-idl --client; not edited by hand.\n"
           "//\n"
           "// The component's classes, for C++ programs. Each object is made with its default\n"
           "// constructor, copies are the same object, and members are called by their slots:\n"
           "//\n"
           "//     orvo::Members members;\n"
           "//     members.setServerInfo(site);\n"
           "//     members.BindAs(service, code);\n"
           "//     for (auto row : members.GetOrvoMembersHavingRole(24, \"sn\"))\n"
           "//         std::cout << row[\"cn\"] << '\\n';\n"
           "\n"
           "#include \"orvo/record_set.h\"\n\n"
           "// clang-format off\n"
           "namespace orvo {\ninline namespace client {\n\n" +
           forward + "\n" + error_numbers() + writer.declared + writer.defined +
           "\n}  // namespace client\n}  // namespace orvo\n";
}

}  // namespace orvo
