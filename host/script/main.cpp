// orvo-script: runs a script file.

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

#include "host/engine/script_engine.h"
#include "host/script/options.h"
#include "host/script/script_host.h"
#include "platform/interfaces/late_member.h"

namespace {

using namespace orvo;
using namespace orvo::script;

constexpr std::size_t memory_limit = std::size_t{1} << 30;
constexpr int failed = 1;
constexpr int unreadable = 2;

struct Request {
    std::vector<std::string> files;  // the script itself is the last one
    std::vector<Text> arguments = {};
};

Request request_of(const ScriptCommandLine& line) {
    Request request{.files = line.includes};
    request.files.push_back(line.file);
    for (const std::string& argument : line.arguments)
        request.arguments.push_back(from_utf8(argument));
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
        Object host;
        Engine engine({.create_object = make_for_script,
                       .takes_texts =
                           [&host](const Object& object, std::int32_t member) {
                               return object == host && late::try_member(host, u"Echo") == member;
                           },
                       .memory_limit = memory_limit});
        state.stop = [&engine] { engine.stop(); };
        state.set_timeout = [&engine](std::int32_t seconds) {
            if (seconds > 0)
                engine.set_time_limit(std::chrono::seconds(seconds));
            else
                engine.clear_time_limit();
        };
        host = make<ScriptHost>(state).object();
        engine.set_global("WScript", host);
        for (const Program& program : programs) engine.run(program);
        // What is not written yet may be all that the script has said.
        if (!std::cout.flush()) throw std::runtime_error("the output cannot be written");
        return state.exit_code;
    } catch (const ScriptError& error) {
        std::cout.flush();
        std::cerr << error.what() << (error.number != 0 ? shown_number(error.number) : "") << '\n';
        return error.trouble == Trouble::syntax ? unreadable : failed;
    }
}

}  // namespace

int main(int count, char** words) {
    ScriptCommandLine line;
    if (const std::optional<int> code = line.read(count, words)) return *code;
    // Objects that a script does not configure take the site's settings; its caller may say
    // otherwise.
    ::setenv("ORVO_SITE_BY_DEFAULT", "1", 0);
    try {
        return run(request_of(line));
    } catch (const std::exception& failure) {
        std::cerr << "orvo-script: " << failure.what() << '\n';
        return failed;
    }
}
