#pragma once

#include <string>
#include <vector>

namespace orvo::store {

// A command's name and its arguments, which may be any bytes. Commands that leave something behind
// on their connection (SELECT, WATCH, MULTI, SUBSCRIBE) and those that wait (BLPOP) are not for
// Redis, whose connections are shared: what has to happen at once is a Script.
using Command = std::vector<std::string>;

// A Lua script, which the store runs as one step. Made once and kept.
struct Script {
    explicit Script(std::string script_text);
    const std::string text;
    const std::string sha1;  // of the text, 40 hexadecimal digits
};

}  // namespace orvo::store
