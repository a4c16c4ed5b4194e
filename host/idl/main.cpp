// Prints the component's IDL.

#include <iostream>

#include "component/server/idl.h"

int main() {
    std::cout << orvo::component_idl();
    return std::cout.good() ? 0 : 1;
}
