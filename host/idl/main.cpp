// Prints what is written from the component's tables.
//
//   orvo-idl                  the IDL (component/server/OrvoMembership.idl)
//   orvo-idl --interfaces     that of others' interfaces (component/server/TavikPMMInterfaces.idl)
//   orvo-idl --client         the C++ client's header (client/orvo/membership.h)
//   orvo-idl --properties     the page of the user's properties (docs/user-properties.md)
//   orvo-idl --property-list  their names for scripts (tests/conformance/user_catalogue.js.part)

#include <iostream>
#include <string_view>

#include "component/server/library_idl.h"
#include "host/idl/client_header.h"
#include "host/idl/properties_page.h"
#include "host/idl/properties_script.h"

int main(int argc, char** argv) {
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (argc == 1)
        std::cout << orvo::component_idl();
    else if (argc == 2 && what == "--interfaces")
        std::cout << orvo::provider_idl();
    else if (argc == 2 && what == "--client")
        std::cout << orvo::client_header();
    else if (argc == 2 && what == "--properties")
        std::cout << orvo::user_properties_page();
    else if (argc == 2 && what == "--property-list")
        std::cout << orvo::user_property_list_script();
    else {
        std::cerr << "usage: orvo-idl [--interfaces | --client | --properties | --property-list]\n";
        return 2;
    }
    return std::cout.flush().good() ? 0 : 1;
}
