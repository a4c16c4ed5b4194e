#include "host/idl/reference_pages.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>

#include "component/common/OrvoMemErrors.h"
#include "component/server/class_list.h"
#include "host/idl/described_member.h"
#include "host/idl/member_failures.h"
#include "host/idl/suite_classes.h"
#include "platform/interfaces/idl.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo {
namespace {

constexpr const char* written_by =
    "Written from the interface tables by `orvo-idl --reference`; not edited by hand.\n\n";

struct TypeWords {
    const char* idl;
    const char* words;
    const char* script;
};
constexpr TypeWords type_words[] = {
    {"BSTR", "text", "text"},
    {"VARIANT", "any", "any value, an array among them"},
    {"VARIANT_BOOL", "boolean", "boolean"},
    {"short", "16-bit integer", "number"},
    {"long", "32-bit integer", "number"},
    {"CURRENCY", "currency", "number"},
    {"DATE", "date", "date"},
};

std::string code(const std::string& text) { return "`" + text + "`"; }

std::string anchor(std::string name) {
    std::ranges::transform(name, name.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
    return "#" + name;
}

template <class C>
using default_interface = typename detail::description_of<C>::first;

using DescribedClasses =
    decltype(std::tuple_cat(std::declval<PublicClasses>(), std::declval<SuiteClasses>()));

template <class C>
std::string class_name() {
    const std::string progid = class_of<C>.progid;
    return progid.substr(progid.find('.') + 1);
}

// Its page, without the ending: a class of the component's is called by its own name alone.
template <class C>
std::string page_name() {
    const std::string progid = class_of<C>.progid;
    return progid.starts_with("OrvoMembership.") ? class_name<C>() : progid;
}

template <class C>
std::string page_link() {
    return "[" + page_name<C>() + "](" + page_name<C>() + ".md)";
}

// "[User](User.md)" for "IUser*", "[IDirectoryEntry](interfaces.md#idirectoryentry)" for the
// interfaces of others.
std::map<std::string, std::string> interface_links() {
    std::map<std::string, std::string> links;
    [&]<class... C>(std::type_identity<std::tuple<C...>>) {
        ((links[table_of<default_interface<C>>.name] = page_link<C>()), ...);
    }(std::type_identity<DescribedClasses>{});
    [&]<class... I>(std::type_identity<std::tuple<I...>>) {
        ((links[table_of<I>.name] = std::string("[") + table_of<I>.name + "](interfaces.md" +
                                    anchor(table_of<I>.name) + ")"),
         ...);
    }(std::type_identity<ForeignInterfaces>{});
    return links;
}

std::string type_text(const std::string& idl) {
    for (const TypeWords& type : type_words)
        if (idl == type.idl) return type.words;
    // What the component's members answer so are record sets, all of them.
    if (idl == "IDispatch*") return "record set";
    static const std::map<std::string, std::string> links = interface_links();
    const auto link = links.find(idl.substr(0, idl.find('*')));
    return link != links.end() ? link->second : code(idl);
}

std::string without_it(const DescribedParameter& parameter) {
    if (!parameter.may_be_missing) return "is needed";
    if (parameter.idl == "VARIANT") return "missing";
    if (parameter.idl == "BSTR") return "empty text";
    return std::to_string(parameter.otherwise);
}

std::string call_text(const DescribedMember& member) {
    std::string text = member.name + "(";
    for (const DescribedParameter& parameter : member.parameters)
        text += (text.back() == '(' ? "" : ", ") + parameter.name;
    return text + ")";
}

std::string failures_of(const char* interface_name, const DescribedMember& member) {
    std::string text;
    for (const MemberFailure& failure : member_failures())
        if (std::string_view(failure.interface_name) == interface_name &&
            member.name == failure.member)
            text += "- " + shown_number(failure.number) + ", \"" + number_text(failure.number) +
                    "\": " + failure.when + ".\n";
    return text.empty() ? "" : "\nFails with\n\n" + text;
}

std::string method_text(const char* interface_name, const DescribedMember& member) {
    std::string text = "### " + member.name + "\n\n" + code(call_text(member)) +
                       (member.idl.empty() ? "" : " answers " + type_text(member.idl)) + "\n\n" +
                       member.help + "\n";
    if (!member.parameters.empty()) {
        text += "\n| Argument | Type | Direction | Without it |\n|---|---|---|---|\n";
        for (const DescribedParameter& parameter : member.parameters)
            text += "| " + code(parameter.name) + " | " + type_text(parameter.idl) + " | " +
                    (parameter.is_in_out ? "in, out" : "in") + " | " + without_it(parameter) +
                    " |\n";
    }
    return text + failures_of(interface_name, member) + "\n";
}

std::string property_row(const DescribedMember& member) {
    const std::string access = member.can_be_read && member.can_be_written ? "read, write"
                               : member.can_be_read                        ? "read"
                                                                           : "write";
    return "| " + code(member.name) + " | " + type_text(member.idl) + " | " + access + " | " +
           member.help + (member.is_default ? " The object's default value." : "") + " |\n";
}

std::string content_of_file(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (text.empty())
        throw std::runtime_error(file.string() + ": there is no such file, or nothing in it");
    return text;
}

template <class C>
std::string class_page(const std::filesystem::path& examples) {
    using I = default_interface<C>;
    const std::vector<DescribedMember> members = described_members<I>();
    std::string methods, properties;
    for (const DescribedMember& member : members)
        if (!member.is_property) methods += method_text(table_of<I>.name, member);
    for (const DescribedMember& member : members)
        if (member.is_property) properties += property_row(member);
    const std::string name = page_name<C>();
    // A class that is not created has no identifier; the page of who hands it out has the example.
    const bool is_created = class_of<C>.clsid != abi::GUID{};
    std::string page =
        std::string("# ") + class_of<C>.progid + "\n\n" + written_by + table_of<I>.about +
        "\n\n| | |\n|---|---|\n" +
        (is_created ? "| Class | " + code("{" + idl_guid(class_of<C>.clsid) + "}") + " |\n" : "") +
        "| Interface | " + code(table_of<I>.name) + ", " +
        code("{" + idl_guid(table_of<I>.iid) + "}") + " |\n\n";
    if (is_created)
        page += "## Example\n\n```js\n" + content_of_file(examples / (name + ".js")) +
                "```\n\nprints\n\n```\n" + content_of_file(examples / (name + ".expected")) +
                "```\n\n";
    if (!properties.empty())
        page += "## Properties\n\n| Property | Type | Access | |\n|---|---|---|---|\n" +
                properties + "\n";
    if (!methods.empty()) page += "## Methods\n\n" + methods;
    page.pop_back();
    return page;
}

template <class I>
std::string interface_section() {
    std::string text = std::string("## ") + table_of<I>.name + "\n\n" + table_of<I>.about + " " +
                       code("{" + idl_guid(table_of<I>.iid) + "}") + "\n\n";
    const std::vector<DescribedMember> members = described_members<I>();
    if (members.empty()) return text + "No members.\n\n";
    text += "| Slot | Member | Answers | |\n|---|---|---|---|\n";
    for (const DescribedMember& member : members)
        text += "| " + std::to_string(member.slot) + " | " + code(call_text(member)) + " | " +
                (member.idl.empty() ? "" : type_text(member.idl)) + " | " + member.help + " |\n";
    return text + "\n";
}

std::string interfaces_page() {
    std::string page =
        "# Interfaces that others implement\n\n" + std::string(written_by) +
        "A directory provider, a configuration and a log of one's own "
        "([extending.md](../extending.md)) implement these. Slots are counted from 0, "
        "the three of IUnknown and the four of IDispatch among them; those that are "
        "not listed are reserved, and nobody calls them.\n\n";
    [&]<class... I>(std::type_identity<std::tuple<I...>>) {
        ((page += interface_section<I>()), ...);
    }(std::type_identity<ForeignInterfaces>{});
    page.pop_back();
    return page;
}

std::string raised_by(std::int32_t number) {
    std::string text;
    [&]<class... C>(std::type_identity<std::tuple<C...>>) {
        const auto add = [&]<class D>(std::type_identity<D>) {
            for (const MemberFailure& failure : member_failures())
                if (failure.number == number &&
                    std::string_view(failure.interface_name) == table_of<default_interface<D>>.name)
                    text +=
                        (text.empty() ? "" : ", ") + code(page_name<D>() + "." + failure.member);
        };
        (add(std::type_identity<C>{}), ...);
    }(std::type_identity<DescribedClasses>{});
    return text.empty() ? "no member" : text;
}

std::string index_page() {
    const auto list = []<class... C>(std::type_identity<std::tuple<C...>>) {
        return (std::string("| Class | |\n|---|---|\n") + ... +
                ("| " + page_link<C>() + " | " + table_of<default_interface<C>>.about + " |\n"));
    };
    std::string page =
        "# Reference\n\n" + std::string(written_by) + list(std::type_identity<PublicClasses>{}) +
        "\nThe suite, which the component works with, has classes for programs, too:\n\n" +
        list(std::type_identity<SuiteClasses>{});
    page +=
        "\n[failures.md](failures.md): OrvoMemErrors and every other number. "
        "[settings.md](settings.md): every setting of configuration and environment. "
        "[user-properties.md](../user-properties.md): a user's properties with their attributes. "
        "[interfaces.md](interfaces.md): what a directory provider, a configuration and a log of "
        "one's own implement.\n\n"
        "Classes are created by their names: `OrvoMembership.User`, those of the suite as they "
        "stand "
        "here. `TavikAuthFilter.User` and `.Login` are handed out by the others of the filter. "
        "Arguments of direction \"in, "
        "out\" are passed by reference, and the members leave them as they are unless their page "
        "says otherwise. One that may be left out is what stands under \"Without it\".\n\n"
        "The examples are the scripts of `examples/reference`, which a test runs on the sample "
        "shop: "
        "their argument is the site's configuration file.\n\n"
        "## Types\n\n| Here | IDL | In a script |\n|---|---|---|\n";
    for (const TypeWords& type : type_words)
        page +=
            std::string("| ") + type.words + " | " + code(type.idl) + " | " + type.script + " |\n";
    return page + "| record set | `IDispatch*` | an ADO record set, on its first row |\n";
}

std::string failure_row(const std::string& shown, std::int32_t number) {
    return "| " + shown + " | " + std::to_string(number) + " | " + number_text(number) + " | " +
           raised_by(number) + " |\n";
}

std::string failures_page() {
    std::string page =
        "# Failures\n\n" + std::string(written_by) +
        "Every failure arrives as an Automation error: number, source, description. The "
        "description is a block that tells number, method and cause.\n\n"
        "## OrvoMemErrors\n\n| Name | Number | | Text | Raised by |\n|---|---|---|---|---|\n";
    for (const MemError& error : mem_errors)
        page += "| " + code(error.name) + " " + failure_row(shown_number(error.value), error.value);
    page +=
        "\n## Run-time errors\n\n"
        "In languages that show the whole number, 91 is 0x800A005B.\n\n"
        "| Number | | Text | Raised by |\n|---|---|---|---|\n";
    std::set<std::int32_t> numbers;
    for (const MemberFailure& failure : member_failures()) numbers.insert(failure.number);
    for (const std::int32_t number : numbers)
        if (number >= 0)
            page +=
                failure_row(shown_number(static_cast<std::int32_t>(0x800A0000u + number)), number);
    page += "\n## Other numbers\n\n| Number | | Text | Raised by |\n|---|---|---|---|\n";
    for (const std::int32_t number : numbers)
        if (number < 0 && std::ranges::none_of(mem_errors, [&](const MemError& error) {
                return error.value == number;
            }))
            page += failure_row(shown_number(number), number);
    page +=
        "\n## What a directory refuses\n\n"
        "Any member that reaches the directory passes these on. The description begins with the "
        "code in parentheses.\n\n| Number | Code | Text |\n|---|---|---|\n";
    for (int number = 1; number < 100; ++number) {
        const Text told = directory::directory_failure(number, {}).description;
        if (told.ends_with(u"unknown error.")) continue;
        page += "| " + shown_number(directory::number_of_code(number)) + " | " +
                std::to_string(number) + " | " +
                to_utf8(TextView(told).substr(told.find(u' ') + 1)) + " |\n";
    }
    return page;
}

}  // namespace

std::vector<ReferencePage> reference_pages(const std::filesystem::path& examples) {
    std::vector<ReferencePage> pages{{"README.md", index_page()}};
    [&]<class... C>(std::type_identity<std::tuple<C...>>) {
        (pages.push_back({page_name<C>() + ".md", class_page<C>(examples)}), ...);
    }(std::type_identity<DescribedClasses>{});
    pages.push_back({"failures.md", failures_page()});
    pages.push_back({"interfaces.md", interfaces_page()});
    return pages;
}

}  // namespace orvo
