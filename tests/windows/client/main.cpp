// A client of the component, of its own kind: compiled against the header that the IDL gives.
//
//   orvo-client calls SITE_FILE   calls by slot, and what errors carry
//   orvo-client unloading         the module goes with its last object
//   orvo-client register FILE     registers a type library as others do; unregister: takes it away
//   orvo-client description NAME  prints a registered type library in the words of the IDL
//   orvo-client library ID MAJOR MINOR  the system finds the type library by number and version

#include <cstdio>
#include <string>

#include "check.h"

void check_calls(const std::wstring& site_file);
void check_unloading();
void print_description(const std::string& name);
void find_library(const std::wstring& id, int major, int minor);
void register_library(const std::wstring& file);
void unregister_library(const std::wstring& file);

namespace {

int failures = 0;

}  // namespace

void check(bool holds, const std::string& what) {
    if (holds) return;
    ++failures;
    std::printf("FAILED %s\n", what.c_str());
    std::fflush(stdout);
}

void check_equal(const std::wstring& actual, const std::wstring& expected,
                 const std::string& what) {
    check(actual == expected,
          what + ": \"" + narrow(actual) + "\" instead of \"" + narrow(expected) + "\"");
}

void check_result(HRESULT actual, HRESULT expected, const std::string& what) {
    char text[64];
    std::snprintf(text, sizeof text, ": 0x%08lX instead of 0x%08lX",
                  static_cast<unsigned long>(actual), static_cast<unsigned long>(expected));
    check(actual == expected, what + text);
}

int failure_count() { return failures; }

std::string narrow(const std::wstring& text) {
    std::string bytes(text.size() * 4, '\0');
    bytes.resize(static_cast<std::size_t>(
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

int main(int count, char** arguments) {
    const std::string command = count > 1 ? arguments[1] : "";
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (command == "calls" && count == 3) {
        const std::string site = arguments[2];
        check_calls(std::wstring(site.begin(), site.end()));
    } else if ((command == "register" || command == "unregister") && count == 3) {
        const std::string file = arguments[2];
        (command == "register" ? register_library
                               : unregister_library)(std::wstring(file.begin(), file.end()));
    } else if (command == "unloading") {
        check_unloading();
    } else if (command == "description" && count == 3) {
        print_description(arguments[2]);
    } else if (command == "library" && count == 5) {
        const std::string id = arguments[2];
        find_library(std::wstring(id.begin(), id.end()), std::stoi(arguments[3]),
                     std::stoi(arguments[4]));
    } else {
        std::puts(
            "orvo-client calls SITE_FILE | unloading | description NAME | library ID MAJOR MINOR | "
            "register FILE | unregister FILE");
        return 2;
    }
    CoUninitialize();
    if (failures == 0) std::puts("passed");
    return failures == 0 ? 0 : 1;
}
