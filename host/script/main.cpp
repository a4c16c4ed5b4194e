// orvo-script: runs a script file.

#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string_view>

#include "host/engine/script_engine.h"
#include "host/script/script_host.h"
#include "platform/interfaces/create.h"

namespace {

using namespace orvo;
using namespace orvo::script;

constexpr std::string_view usage =
    "usage: orvo-script [--include FILE]... FILE [ARGUMENT]...\n"
    "Runs a script file (ECMAScript 5, UTF-8) that makes Automation objects by ProgID.\n"
    "  --include FILE  run this file first, among the same globals\n"
    "Ends with 0, with what the script gave to WScript.Quit, with 1 where it failed, or with 2\n"
    "where it cannot be read.\n";

constexpr std::size_t memory_limit = std::size_t{1} << 30;
constexpr int failed = 1;
constexpr int unreadable = 2;

struct Request {
    std::vector<std::string> files;  // the script itself is the last one
    std::vector<Text> arguments;
};

std::optional<Request> read_arguments(const std::vector<std::string_view>& words) {
    Request request;
    std::size_t at = 0;
    for (; at + 1 < words.size() && words[at] == "--include"; at += 2)
        request.files.emplace_back(words[at + 1]);
    if (at == words.size() || words[at].starts_with('-')) return std::nullopt;
    request.files.emplace_back(words[at]);
    for (++at; at < words.size(); ++at) request.arguments.push_back(from_utf8(words[at]));
    return request;
}

Program program_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    file.peek();  // finds out what can be opened but not read: a folder
    if (!file.is_open() || file.bad())
        throw ScriptError(Trouble::syntax, {path, 0}, "the file cannot be read");
    const std::string source(std::istreambuf_iterator<char>(file), {});
    return Program::compile(source, path);
}

// "800A01A8", as error numbers are written.
std::string shown_number(std::int32_t number) {
    return " (0x" + to_utf8(hexadecimal(number)) + ")";
}

int run(Request request) {
    ScriptRun state{.script = request.files.back(), .arguments = std::move(request.arguments)};
    try {
        std::vector<Program> programs;
        for (const std::string& path : request.files) programs.push_back(program_of(path));
        Engine engine({.create_object = create_object, .memory_limit = memory_limit});
        state.stop = [&engine] { engine.stop(); };
        engine.set_global("WScript", make<ScriptHost>(state).object());
        for (const Program& program : programs) engine.run(program);
        return state.exit_code;
    } catch (const ScriptError& error) {
        std::cout.flush();
        std::cerr << error.what() << (error.number != 0 ? shown_number(error.number) : "") << '\n';
        return error.trouble == Trouble::syntax ? unreadable : failed;
    }
}

}  // namespace

int main(int count, char** words) {
    const std::vector<std::string_view> arguments(words + 1, words + count);
    if (arguments == std::vector<std::string_view>{"--help"}) {
        std::cout << usage;
        return 0;
    }
    std::optional<Request> request = read_arguments(arguments);
    if (!request) {
        std::cerr << usage;
        return unreadable;
    }
    try {
        return run(std::move(*request));
    } catch (const std::exception& failure) {
        std::cerr << "orvo-script: " << failure.what() << '\n';
        return failed;
    }
}
