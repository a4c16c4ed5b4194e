#include "host/script/script_host.h"

#include <chrono>
#include <filesystem>
#include <iostream>
#include <thread>

#include "host/script/script_shell.h"
#include "platform/interfaces/create.h"
#include "platform/objects/files/standard_streams.h"
#include "platform/values/values.h"

namespace orvo {

namespace {

// As the language itself shows values, where Automation has another way or none.
std::string shown(const Variant& value) {
    if (value.is_null()) return "null";
    if (value.kind() == Kind::boolean) return value.to<bool>() ? "true" : "false";
    return to_utf8(value.to<Text>());
}

}  // namespace

Object make_for_script(const Text& progid) {
    if (equal_ignoring_case(progid, script_shell_progid)) return make<ScriptShell>().object();
    return create_object(progid);
}

ScriptHost::ScriptHost(ScriptRun& run)
    : run_(run),
      input_(standard_stream(StandardStream::input)),
      output_(standard_stream(StandardStream::output)),
      errors_(standard_stream(StandardStream::errors)) {}

void ScriptHost::Echo(const Variant& words) {
    std::string line;
    if (!words.is_missing()) {
        const Values all = words.to<Values>();
        for (std::int32_t i = 0; i < all.count(); ++i) line += (i > 0 ? " " : "") + shown(all[i]);
    }
    std::cout << line << '\n';
}

void ScriptHost::Quit(std::int32_t code) {
    run_.exit_code = code;
    run_.stop();
}

Object ScriptHost::CreateObject(const Text& progid) { return make_for_script(progid); }

void ScriptHost::Sleep(std::int32_t milliseconds) {
    if (milliseconds < 0) raise_runtime_error(runtime_error::invalid_call);
    std::cout.flush();
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

Ref<ScriptArguments> ScriptHost::Arguments() { return make<ScriptArguments>(run_.arguments); }

Text ScriptHost::ScriptName() {
    return from_utf8(std::filesystem::path(run_.script).filename().string());
}

Text ScriptHost::ScriptFullName() {
    return from_utf8(std::filesystem::absolute(run_.script).string());
}

Text ScriptHost::FullName() {
    std::error_code error;
    return from_utf8(std::filesystem::read_symlink("/proc/self/exe", error).string());
}

Text ScriptHost::Path() {
    return from_utf8(std::filesystem::path(to_utf8(FullName())).parent_path().string());
}

void ScriptHost::SetTimeout(std::int32_t seconds) {
    if (seconds < 0) raise_runtime_error(runtime_error::invalid_call);
    run_.set_timeout(seconds);
    timeout_ = seconds;
}

}  // namespace orvo
