// Prints the page of all settings: orvo-settings > docs/reference/settings.md

#include <iostream>

#include "host/settings/settings_page.h"

int main(int argc, char**) {
    if (argc != 1) {
        std::cerr << "usage: orvo-settings\n";
        return 2;
    }
    std::cout << orvo::settings_page();
    return std::cout.flush().good() ? 0 : 1;
}
