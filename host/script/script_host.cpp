#include "host/script/script_host.h"

#include <chrono>
#include <filesystem>
#include <iostream>
#include <thread>

#include "platform/interfaces/create.h"
#include "platform/interfaces/enumerator.h"

namespace orvo {

namespace {

// As the language itself shows values, where Automation has another way or none.
std::string shown(const Variant& value) {
    if (value.is_null()) return "null";
    if (value.kind() == Kind::boolean) return value.to<bool>() ? "true" : "false";
    return to_utf8(value.to<Text>());
}

}  // namespace

void OutputStream::Write(const Text& text) { put_(to_utf8(text)); }
void OutputStream::WriteLine(const Text& text) { put_(to_utf8(text) + "\n"); }
void OutputStream::WriteBlankLines(std::int32_t count) {
    for (std::int32_t i = 0; i < count; ++i) put_("\n");
}

Text ScriptArguments::Item(std::int32_t index) {
    if (index < 0 || index >= Count()) raise_runtime_error(runtime_error::subscript_out_of_range);
    return words_[static_cast<std::size_t>(index)];
}

Object ScriptArguments::NewEnum() { return make_enumerator({words_.begin(), words_.end()}); }

void ScriptHost::Echo(const Variant& a, const Variant& b, const Variant& c, const Variant& d,
                      const Variant& e, const Variant& f, const Variant& g, const Variant& h) {
    std::string line;
    for (const Variant* word : {&a, &b, &c, &d, &e, &f, &g, &h}) {
        if (word->is_missing()) break;
        if (word != &a) line += ' ';
        line += shown(*word);
    }
    std::cout << line << '\n';
}

void ScriptHost::Quit(std::int32_t code) {
    run_.exit_code = code;
    run_.stop();
}

Object ScriptHost::CreateObject(const Text& progid) { return create_object(progid); }

void ScriptHost::Sleep(std::int32_t milliseconds) {
    if (milliseconds < 0) raise_runtime_error(runtime_error::invalid_call);
    std::cout.flush();
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

Ref<ScriptArguments> ScriptHost::Arguments() { return make<ScriptArguments>(run_.arguments); }

Ref<OutputStream> ScriptHost::StdOut() {
    return make<OutputStream>([](const std::string& text) { std::cout << text; });
}

Ref<OutputStream> ScriptHost::StdErr() {
    return make<OutputStream>([](const std::string& text) { std::cerr << text; });
}

Text ScriptHost::ScriptName() {
    return from_utf8(std::filesystem::path(run_.script).filename().string());
}

Text ScriptHost::ScriptFullName() {
    return from_utf8(std::filesystem::absolute(run_.script).string());
}

}  // namespace orvo
