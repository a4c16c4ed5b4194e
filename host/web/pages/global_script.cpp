#include "host/web/pages/global_script.h"

#include <array>

#include "host/web/messages/http_message.h"

namespace orvo::web {
namespace {

constexpr std::array names{"application_onstart", "application_onend", "session_onstart",
                           "session_onend"};

// `what` is done for each function of the globals by its name in small letters.
script::Program for_each_function(const std::string& what) {
    return script::Program::compile(
        "(function (all) { for (var key in all) if (typeof all[key] === 'function') { var name = "
        "key.toLowerCase(); " +
            what + " } })(this)",
        "global.asa");
}

script::Program compile_call(GlobalEvent event) {
    return for_each_function("if (name === '" + std::string(name_of(event)) +
                             "') { all[key](); return; }");
}

}  // namespace

const char* name_of(GlobalEvent event) { return names[static_cast<std::size_t>(event)]; }

const script::Program& call_of(GlobalEvent event) {
    static const std::array programs{
        compile_call(GlobalEvent::application_start), compile_call(GlobalEvent::application_end),
        compile_call(GlobalEvent::session_start), compile_call(GlobalEvent::session_end)};
    return programs[static_cast<std::size_t>(event)];
}

const script::Program& search_for_handlers() {
    static const script::Program program = [] {
        std::string what;
        for (std::size_t i = 0; i < names.size(); ++i)
            what += "if (name === '" + std::string(names[i]) + "') " + found_function + '(' +
                    std::to_string(i) + "); ";
        return for_each_function(what);
    }();
    return program;
}

std::optional<std::string> find_global(const std::filesystem::path& root) {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(root, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (equal_ascii_ignoring_case(name, "global.asa")) return '/' + name;
    }
    return {};
}

}  // namespace orvo::web
