#pragma once

// Tags inside a page that the server carries out: `<script runat="server">` and
// `<object runat="server">`.

#include <optional>
#include <string_view>

namespace orvo::web {

// The opening tag. The views are pieces of the text that was searched.
struct ServerTag {
    std::size_t begin = 0;
    std::size_t size = 0;  // up to its ">"; the rest of the text where there is none
    bool is_closed = false;
    bool is_script = true;  // else an object
    std::string_view runs_at = {};
    std::string_view language = {};  // empty: none was named
    std::string_view source = {};    // src="…"
};

// The first such tag that begins in the first `limit` bytes; a tag without `runat` is text.
std::optional<ServerTag> find_server_tag(std::string_view text, std::size_t limit);

// Where "</script" begins; npos where there is none.
std::size_t find_script_end(std::string_view text);

}  // namespace orvo::web
