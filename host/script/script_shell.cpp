#include "host/script/script_shell.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/interfaces/enumerator.h"
#include "platform/values/environment.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

std::string variable_name(const Text& name) {
    if (name.empty() || name.find(u'=') != Text::npos || name.find(u'\0') != Text::npos)
        raise_runtime_error(runtime_error::invalid_call);
    return to_utf8(name);
}

[[noreturn]] void raise_no_programs() {
    constexpr std::int32_t not_supported = 445;
    throw Failure(not_supported, u"WScript.Shell",
                  Text(runtime_error_text(not_supported)) +
                      u": WScript.Shell runs no programs here, it has the environment and the "
                      u"current folder only");
}

}  // namespace

Text ProcessEnvironment::Item(const Text& name) {
    return environment_variable(variable_name(name).c_str());
}

void ProcessEnvironment::SetItem(const Text& name, const Text& value) {
    if (::setenv(variable_name(name).c_str(), to_utf8(value).c_str(), 1) != 0)
        raise_runtime_error(runtime_error::out_of_memory);
}

std::int32_t ProcessEnvironment::Count() {
    std::int32_t count = 0;
    while (environ[count] != nullptr) ++count;
    return count;
}

void ProcessEnvironment::Remove(const Text& name) { ::unsetenv(variable_name(name).c_str()); }

Object ProcessEnvironment::NewEnum() {
    std::vector<Variant> all;
    for (char** line = environ; *line != nullptr; ++line) all.emplace_back(from_utf8(*line));
    return make_enumerator(std::move(all));
}

Ref<ProcessEnvironment> ScriptShell::Environment(const Text& kind) {
    if (!kind.empty() && !equal_ignoring_case(kind, u"PROCESS"))
        throw Failure(runtime_error::invalid_call, u"WScript.Shell",
                      Text(runtime_error_text(runtime_error::invalid_call)) +
                          u": there is no environment but that of the process");
    return make<ProcessEnvironment>();
}

Text ScriptShell::ExpandEnvironmentStrings(const Text& text) {
    Text expanded;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = text.find(u'%', at);
        const std::size_t end = begin == Text::npos ? begin : text.find(u'%', begin + 1);
        if (end == Text::npos) return expanded + text.substr(at);
        expanded += text.substr(at, begin - at);
        const std::string name = to_utf8(text.substr(begin + 1, end - begin - 1));
        if (!name.empty() && std::getenv(name.c_str()) != nullptr) {
            expanded += environment_variable(name.c_str());
            at = end + 1;
        } else {
            expanded += text.substr(begin, end - begin);
            at = end;
            if (name.empty()) expanded += text[at++];
        }
    }
    return expanded;
}

Text ScriptShell::CurrentDirectory() { return from_utf8(fs::current_path().string()); }

void ScriptShell::SetCurrentDirectory(const Text& folder) {
    std::error_code error;
    fs::current_path(to_utf8(folder), error);
    if (error) raise_runtime_error(runtime_error::path_not_found);
}

void ScriptShell::Run(const Text&, const Variant&, const Variant&) { raise_no_programs(); }
void ScriptShell::Exec(const Text&) { raise_no_programs(); }

}  // namespace orvo
