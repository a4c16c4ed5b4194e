// Prints what is written from the component's tables.

#include <fstream>
#include <iostream>

#include "component/server/library_idl.h"
#include "host/common/command_line.h"
#include "host/idl/client_header.h"
#include "host/idl/com_headers.h"
#include "host/idl/properties_page.h"
#include "host/idl/properties_script.h"
#include "host/idl/reference_pages.h"

namespace {

int write_reference(const std::filesystem::path& source) try {
    for (const orvo::ReferencePage& page :
         orvo::reference_pages(source / "examples" / "reference")) {
        const std::filesystem::path path = source / "docs" / "reference" / page.file;
        std::ofstream file(path, std::ios::binary);
        if (!(file << page.text).flush())
            throw std::runtime_error(path.string() + ": it cannot be written");
    }
    return 0;
} catch (const std::exception& failure) {
    std::cerr << "orvo-idl: " << failure.what() << '\n';
    return 1;
}

}  // namespace

int main(int count, char** words) {
    orvo::CommandLine line("orvo-idl", "Prints what is written from the component's tables.");
    std::string (*text)() = orvo::component_idl;
    line.require_option(0, 1);
    auto offer = [&](const std::string& name, const std::string& what, std::string (*that)()) {
        line.add_flag_callback(
            name, [&text, that] { text = that; }, what);
    };
    offer("--interfaces", "The IDL of others' interfaces (component/server/TavikPMMInterfaces.idl)",
          orvo::provider_idl);
    offer("--client", "The C++ client's header (client/orvo/membership.h)", orvo::client_header);
    offer("--com", "The header for plain COM sources (client/com/OrvoMembership.h)",
          orvo::component_com_header);
    offer("--com-interfaces", "The same of others' interfaces (client/com/TavikPMMInterfaces.h)",
          orvo::provider_com_header);
    offer("--properties", "The page of the user's properties (docs/user-properties.md)",
          orvo::user_properties_page);
    offer("--property-list", "Their names for scripts (tests/conformance/user_catalogue.js.part)",
          orvo::user_property_list_script);
    std::filesystem::path source;
    line.add_option("--reference", source,
                    "Writes the pages of the classes into docs/reference of this source tree")
        ->option_text("SOURCE");
    line.footer("Without an option: the IDL (component/server/OrvoMembership.idl).");
    if (const std::optional<int> code = line.read(count, words)) return *code;
    if (!source.empty()) return write_reference(source);
    std::cout << text();
    return std::cout.flush().good() ? 0 : 1;
}
