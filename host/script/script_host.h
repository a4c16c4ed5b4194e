#pragma once

// What a script file sees of the program that runs it: the global "WScript".

#include <functional>
#include <string>
#include <vector>

#include "host/script/script_arguments.h"

namespace orvo {

// What WScript does to the run that it belongs to.
struct ScriptRun {
    std::string script;  // the file's path as it was given
    std::vector<Text> arguments;
    std::function<void()> stop = {};                     // ends the script
    std::function<void(std::int32_t)> set_timeout = {};  // in seconds; 0: none
    int exit_code = 0;
};

// The object of a ProgID, as scripts make it: WScript.Shell is this program's own.
Object make_for_script(const Text& progid);

class ScriptHost {
public:
    // run: outlives the object.
    explicit ScriptHost(ScriptRun& run);

    // A line of its arguments, with blanks between; `words` is an array of them.
    void Echo(const Variant& words);
    void Quit(std::int32_t code);
    // The object of a ProgID.
    Object CreateObject(const Text& progid);
    void Sleep(std::int32_t milliseconds);
    Ref<ScriptArguments> Arguments();
    // The program's own streams.
    Object StdIn() { return input_; }
    Object StdOut() { return output_; }
    Object StdErr() { return errors_; }
    Text ScriptName();
    Text ScriptFullName();
    Text Name() { return u"orvo-script"; }
    // The program's file, and its folder.
    Text FullName();
    Text Path();
    Text Version() { return u"5.8"; }  // of the objects that scripts know
    std::int32_t BuildVersion() { return 0; }
    bool Interactive() { return is_interactive_; }
    // Has no other effect: nothing here asks back.
    void SetInteractive(bool is_interactive) { is_interactive_ = is_interactive; }
    std::int32_t Timeout() { return timeout_; }
    // Seconds from now on after which the script is ended; 0: none. Raises 5.
    void SetTimeout(std::int32_t seconds);

private:
    ScriptRun& run_;
    const Object input_;
    const Object output_;
    const Object errors_;
    bool is_interactive_ = true;
    std::int32_t timeout_ = 0;
};

// clang-format off
template <>
inline constexpr auto table_of<ScriptHost> = describe<ScriptHost>(
    "IScriptHost", "6a5d8b0c-3f21-4d5e-9b7a-1f0c5e2d8a43",
    method<&ScriptHost::Echo>("Echo", optional("words...")),
    method<&ScriptHost::Quit>("Quit", optional("code")),
    method<&ScriptHost::CreateObject>("CreateObject", "progID"),
    method<&ScriptHost::Sleep>("Sleep", "milliseconds"),
    get<&ScriptHost::Arguments>("Arguments"),
    get<&ScriptHost::StdIn>("StdIn"),
    get<&ScriptHost::StdOut>("StdOut"),
    get<&ScriptHost::StdErr>("StdErr"),
    get<&ScriptHost::ScriptName>("ScriptName"),
    get<&ScriptHost::ScriptFullName>("ScriptFullName"),
    get<&ScriptHost::Name>("Name"),
    get<&ScriptHost::FullName>("FullName"),
    get<&ScriptHost::Path>("Path"),
    get<&ScriptHost::Version>("Version"),
    get<&ScriptHost::BuildVersion>("BuildVersion"),
    get<&ScriptHost::Interactive>("Interactive"),
    put<&ScriptHost::SetInteractive>("Interactive", "value"),
    get<&ScriptHost::Timeout>("Timeout"),
    put<&ScriptHost::SetTimeout>("Timeout", "seconds"));
// clang-format on

template <>
inline constexpr auto class_of<ScriptHost> = describe_class<ScriptHost>("WScript");

}  // namespace orvo
