#pragma once

// Server pages: HTML with pieces of ECMAScript in it.
//
//     <%@ Language="JScript" CodePage=65001 %>
//     <!-- #include file="head.inc" -->
//     <% for (var i = 0; i < 3; i++) { %>
//       <li><%= Server.HTMLEncode(names[i]) %></li>
//     <% } %>
//
// A page becomes one program: the text around the pieces is written by Response.Write, each piece
// stands as it is, and `<%= … %>` writes the value of an expression. A piece ends at the next "%>",
// also inside a string of the script ("%\>" is what to write there). An include stands in the text
// or in a `<script runat="server">`, never in a piece; `file` counts from the including file's
// folder, `virtual` from the site's. A directive stands once, before anything but blanks, and says
// what PageSettings has. The scripts of `<script runat="server">` run behind all pieces of the
// page, as the platform has it; their functions are there from the beginning.
//
// The site's global.asa has such scripts and nothing else.

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/engine/script_engine.h"
#include "host/web/pages/page_directive.h"

namespace orvo::web {

// Something in a page that cannot be compiled, where it stands.
struct PageError : std::runtime_error {
    PageError(script::Place place, const std::string& message);
    script::Place place;
    std::string message;
};

// A file that a page was made of, as it was when it was read.
struct PageFile {
    std::filesystem::path file;
    std::filesystem::file_time_type time = {};
    std::uintmax_t size = 0;
    bool operator==(const PageFile&) const = default;
};
PageFile page_file(const std::filesystem::path& file);

// A page as the engine takes it.
struct PageSource {
    std::string program;
    script::LineMap lines;
    std::vector<PageFile> files;
    PageSettings settings = {};
};

inline constexpr int deepest_include = 16;
inline constexpr std::size_t largest_page = 4 * 1024 * 1024;  // includes and all

// root: the site's folder, canonical. path: of the page below it, as "/members/list.asp", which is
// also its name in errors. Raises PageError; nothing outside the folder is read.
PageSource compile_page(const std::filesystem::path& root, const std::string& path);

// The same of global.asa, which has another form.
PageSource compile_global(const std::filesystem::path& root, const std::string& path);

}  // namespace orvo::web
