// orvo-register: makes component modules known to the system, or takes them out again.

#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <string_view>

#include "host/register/options.h"
#include "platform/linux/self_registration.h"
#include "platform/values/failure.h"
#include "platform/values/guid.h"
#include "platform/values/text.h"

namespace {

using orvo::runtime::ManifestClass;

// Raises std::runtime_error for what is no "Maker.Class={CLSID}".
std::vector<ManifestClass> read_classes(const std::vector<std::string>& words) {
    std::vector<ManifestClass> classes;
    for (const std::string& word : words) {
        const std::size_t end = std::min(word.find('='), word.size());
        ManifestClass& one = classes.emplace_back();
        one.progid = orvo::from_utf8(word.substr(0, end));
        if (end == word.size() ||
            !orvo::read_braced(std::string_view(word).substr(end + 1), one.clsid))
            throw std::runtime_error("\"" + word + "\" is no Maker.Class={CLSID}");
    }
    return classes;
}

void carry_out(std::string_view module, bool unregister,
               const std::vector<ManifestClass>& classes) {
    namespace runtime = orvo::runtime;
    if (classes.empty())
        unregister ? runtime::unregister_module_file(module)
                   : runtime::register_module_file(module);
    else
        unregister ? runtime::unregister_module_classes(module)
                   : runtime::register_module_classes(module, classes);
}

bool carried_out(std::string_view module, bool unregister,
                 const std::vector<ManifestClass>& classes) {
    try {
        carry_out(module, unregister, classes);
        std::cout << module << (unregister ? ": unregistered\n" : ": registered\n");
        return true;
    } catch (const std::exception& failure) {
        std::cerr << "orvo-register: " << failure.what() << '\n';
        return false;
    }
}

}  // namespace

int main(int count, char** words) {
    orvo::RegisterCommandLine line;
    if (const std::optional<int> code = line.read(count, words)) return *code;
    if (!line.classes.empty() && line.modules.size() > 1) {
        std::cerr << "orvo-register: --class is for one module\n";
        return 2;
    }
    std::vector<ManifestClass> classes;
    try {
        classes = read_classes(line.classes);
    } catch (const std::exception& failure) {
        std::cerr << "orvo-register: " << failure.what() << '\n';
        return 2;
    }
    bool all_done = true;
    for (const std::string& module : line.modules)
        all_done = carried_out(module, line.unregister, classes) && all_done;
    return all_done ? 0 : 1;
}
