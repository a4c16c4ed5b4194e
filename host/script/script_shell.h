#pragma once

// WScript.Shell: the process's environment and its current folder, and nothing else. Programs are
// not run.

#include "platform/interfaces/hosted.h"
#include "platform/values/text.h"

namespace orvo {

// The variables of this process; what is written holds for it and for what it loads.
class ProcessEnvironment {
public:
    // Empty where there is none.
    Text Item(const Text& name);
    // Raises 5 for a name that cannot be one.
    void SetItem(const Text& name, const Text& value);
    std::int32_t Count();
    std::int32_t Length() { return Count(); }
    void Remove(const Text& name);
    // Over "NAME=value".
    Object NewEnum();
};

// clang-format off
template <>
inline constexpr auto table_of<ProcessEnvironment> = describe<ProcessEnvironment>(
    "IProcessEnvironment", "6a5d8b0c-3f21-4d5e-9b7a-1f0c5e2d8a45",
    get<&ProcessEnvironment::Item>("Item", "name").as_default(),
    put<&ProcessEnvironment::SetItem>("Item", "name", "value").as_default(),
    method<&ProcessEnvironment::Count>("Count"),
    get<&ProcessEnvironment::Length>("length"),
    method<&ProcessEnvironment::Remove>("Remove", "name"),
    get<&ProcessEnvironment::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM));
// clang-format on

template <>
inline constexpr auto class_of<ProcessEnvironment> =
    describe_class<ProcessEnvironment>("WScript.Environment");

class ScriptShell {
public:
    // Of "PROCESS" alone; raises 5 for others.
    Ref<ProcessEnvironment> Environment(const Text& kind);
    // With the values of the variables in the place of their names ("%HOME%"); a name that is none
    // stays.
    Text ExpandEnvironmentStrings(const Text& text);
    Text CurrentDirectory();
    // Raises 76.
    void SetCurrentDirectory(const Text& folder);
    // Both raise 445, with a sentence.
    void Run(const Text& command, const Variant& style, const Variant& waits);
    void Exec(const Text& command);
};

// clang-format off
template <>
inline constexpr auto table_of<ScriptShell> = describe<ScriptShell>(
    "IScriptShell", "6a5d8b0c-3f21-4d5e-9b7a-1f0c5e2d8a46",
    get<&ScriptShell::Environment>("Environment", optional("type")),
    method<&ScriptShell::ExpandEnvironmentStrings>("ExpandEnvironmentStrings", "text"),
    get<&ScriptShell::CurrentDirectory>("CurrentDirectory"),
    put<&ScriptShell::SetCurrentDirectory>("CurrentDirectory", "folder"),
    method<&ScriptShell::Run>("Run", "command", optional("style"), optional("waits")),
    method<&ScriptShell::Exec>("Exec", "command"));
// clang-format on

template <>
inline constexpr auto class_of<ScriptShell> = describe_class<ScriptShell>("WScript.Shell");

inline constexpr const char16_t* script_shell_progid = u"WScript.Shell";

}  // namespace orvo
