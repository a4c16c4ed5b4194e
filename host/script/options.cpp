#include "host/script/options.h"

namespace orvo::script {

ScriptCommandLine::ScriptCommandLine()
    : CommandLine("orvo-script",
                  "Runs a script file (ECMAScript 5, UTF-8) that makes Automation objects by "
                  "ProgID.") {
    add_option("--include", includes, "Run this file first, among the same globals")
        ->type_name("FILE")
        ->type_size(1)
        ->expected(1)
        ->take_all();
    add_option("FILE", file, "The script")->required();
    add_option("ARGUMENT", arguments, "What the script finds in WScript.Arguments");
    footer(
        "Environment:\n"
        "  ORVO_SITE_CONFIG  the site configuration, instead of /etc/orvo/site.ini\n"
        "  ORVO_COMPONENTS   folders of components in front of the user's and the system's\n"
        "  ORVO_LOG_FILE     the component's log\n"
        "\n"
        "Exit status:\n"
        "  0  it ran to its end; or the number that it gave to WScript.Quit\n"
        "  1  it failed\n"
        "  2  it cannot be read, or orvo-script was called in a wrong way");
}

std::optional<int> ScriptCommandLine::read(int count, char** words) {
    std::vector<std::string> all(words + 1, words + count);
    std::size_t at = 0;
    while (at < all.size() && all[at].starts_with('-') && all[at] != "--")
        at += all[at] == "--include" ? 2 : 1;
    // From here on no word is an option.
    if (at < all.size() && all[at] != "--") all.insert(all.begin() + at, "--");
    return CommandLine::read(std::move(all));
}

}  // namespace orvo::script
