// Prints what is written from the component's tables.

#include <iostream>

#include "component/server/library_idl.h"
#include "host/common/command_line.h"
#include "host/idl/client_header.h"
#include "host/idl/properties_page.h"
#include "host/idl/properties_script.h"

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
    offer("--properties", "The page of the user's properties (docs/user-properties.md)",
          orvo::user_properties_page);
    offer("--property-list", "Their names for scripts (tests/conformance/user_catalogue.js.part)",
          orvo::user_property_list_script);
    line.footer("Without an option: the IDL (component/server/OrvoMembership.idl).");
    if (const std::optional<int> code = line.read(count, words)) return *code;
    std::cout << text();
    return std::cout.flush().good() ? 0 : 1;
}
