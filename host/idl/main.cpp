// Prints what is written from the component's tables.
//
//   orvo-idl               the IDL (component/server/OrvoMembership.idl)
//   orvo-idl --properties  the page of the user's properties (docs/user-properties.md)

#include <iostream>
#include <string_view>

#include "component/server/idl.h"
#include "component/server/properties_page.h"

int main(int argc, char** argv) {
    const bool properties = argc == 2 && std::string_view(argv[1]) == "--properties";
    if (argc > 1 && !properties) {
        std::cerr << "usage: orvo-idl [--properties]\n";
        return 2;
    }
    std::cout << (properties ? orvo::user_properties_page() : orvo::component_idl());
    return std::cout.flush().good() ? 0 : 1;
}
