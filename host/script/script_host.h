#pragma once

// What a script file sees of the program that runs it: the global "WScript".

#include <functional>
#include <string>
#include <vector>

#include "platform/interfaces/hosted.h"
#include "platform/values/text.h"

namespace orvo {

// A text stream that is written to.
class OutputStream {
public:
    // put: what becomes of each piece, in UTF-8.
    explicit OutputStream(std::function<void(const std::string&)> put) : put_(std::move(put)) {}
    void Write(const Text& text);
    void WriteLine(const Text& text);
    void WriteBlankLines(std::int32_t count);

private:
    std::function<void(const std::string&)> put_;
};

// clang-format off
template <>
inline constexpr auto table_of<OutputStream> = describe<OutputStream>(
    "IOutputStream", "6a5d8b0c-3f21-4d5e-9b7a-1f0c5e2d8a41",
    method<&OutputStream::Write>("Write", "text"),
    method<&OutputStream::WriteLine>("WriteLine", optional("text")),
    method<&OutputStream::WriteBlankLines>("WriteBlankLines", "lines"));
// clang-format on

template <>
inline constexpr auto class_of<OutputStream> = describe_class<OutputStream>("WScript.TextStream");

// The words behind the script's name.
class ScriptArguments {
public:
    explicit ScriptArguments(std::vector<Text> words) : words_(std::move(words)) {}
    // Counts from 0. Raises 9.
    Text Item(std::int32_t index);
    std::int32_t Count() { return static_cast<std::int32_t>(words_.size()); }
    std::int32_t Length() { return Count(); }
    Object NewEnum();

private:
    std::vector<Text> words_;
};

// clang-format off
template <>
inline constexpr auto table_of<ScriptArguments> = describe<ScriptArguments>(
    "IScriptArguments", "6a5d8b0c-3f21-4d5e-9b7a-1f0c5e2d8a42",
    get<&ScriptArguments::Item>("Item", "index").as_default(),
    method<&ScriptArguments::Count>("Count"),
    get<&ScriptArguments::Length>("length"),
    get<&ScriptArguments::NewEnum>("_NewEnum").id(-4));
// clang-format on

template <>
inline constexpr auto class_of<ScriptArguments> =
    describe_class<ScriptArguments>("WScript.Arguments");

// What WScript does to the run that it belongs to.
struct ScriptRun {
    std::string script;  // the file's path as it was given
    std::vector<Text> arguments;
    std::function<void()> stop = {};  // ends the script
    int exit_code = 0;
};

class ScriptHost {
public:
    // run: outlives the object.
    explicit ScriptHost(ScriptRun& run) : run_(run) {}

    // A line of its arguments, with blanks between.
    void Echo(const Variant& a, const Variant& b, const Variant& c, const Variant& d,
              const Variant& e, const Variant& f, const Variant& g, const Variant& h);
    void Quit(std::int32_t code);
    // The object of a ProgID.
    Object CreateObject(const Text& progid);
    void Sleep(std::int32_t milliseconds);
    Ref<ScriptArguments> Arguments();
    Ref<OutputStream> StdOut();
    Ref<OutputStream> StdErr();
    Text ScriptName();
    Text ScriptFullName();
    Text Name() { return u"orvo-script"; }

private:
    ScriptRun& run_;
};

// clang-format off
template <>
inline constexpr auto table_of<ScriptHost> = describe<ScriptHost>(
    "IScriptHost", "6a5d8b0c-3f21-4d5e-9b7a-1f0c5e2d8a43",
    method<&ScriptHost::Echo>("Echo", optional("a"), optional("b"), optional("c"), optional("d"),
                              optional("e"), optional("f"), optional("g"), optional("h")),
    method<&ScriptHost::Quit>("Quit", optional("code")),
    method<&ScriptHost::CreateObject>("CreateObject", "progID"),
    method<&ScriptHost::Sleep>("Sleep", "milliseconds"),
    get<&ScriptHost::Arguments>("Arguments"),
    get<&ScriptHost::StdOut>("StdOut"),
    get<&ScriptHost::StdErr>("StdErr"),
    get<&ScriptHost::ScriptName>("ScriptName"),
    get<&ScriptHost::ScriptFullName>("ScriptFullName"),
    get<&ScriptHost::Name>("Name"));
// clang-format on

template <>
inline constexpr auto class_of<ScriptHost> = describe_class<ScriptHost>("WScript");

}  // namespace orvo
