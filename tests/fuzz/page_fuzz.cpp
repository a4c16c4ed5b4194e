// Server pages. The input is a page, and behind a form feed the file that it may include as
// "a.inc", both in UTF-8.

#include "host/web/pages/other_language.h"
#include "host/web/pages/page_compiler.h"
#include "tests/fuzz/properties.h"
#include "tests/support/temp_folder.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::web;

// Ends of lines as a script knows them.
std::size_t script_lines(std::string_view program) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < program.size(); ++i)
        if (program[i] == '\n' ||
            (program[i] == '\r' && !program.substr(i + 1).starts_with('\n')) ||
            program.substr(i).starts_with("\xE2\x80\xA8") ||
            program.substr(i).starts_with("\xE2\x80\xA9"))
            ++count;
    return count;
}

struct Site {
    const std::filesystem::path& root;
    std::string_view page;
    std::string_view include;

    void require_place(const script::Place& place, std::size_t first_line,
                       const char* property) const {
        const bool is_include = place.file == "/a.inc";
        require(is_include || place.file == "/page.asp", "a place is in a file of the page");
        const auto line = static_cast<std::size_t>(place.line);
        require(place.line >= static_cast<int>(first_line) &&
                    line <= line_count(is_include ? include : page),
                property);
    }

    template <class Compile>
    void check(Compile compile) const {
        try {
            const PageSource source = compile(root, std::string("/page.asp"));
            require(source.lines.size() == script_lines(source.program),
                    "each line of the program has a place");
            for (const script::Place& place : source.lines)
                require_place(place, 1, "the place of a line is in its file");
            require(source.files.size() == 1 || page.find("a.inc") != page.npos,
                    "a page is made of the files that it names");
            other_language_of(source.program);
        } catch (const PageError& error) {
            // A whole file may be what is wrong.
            require(!error.message.empty(), "a refusal has words");
            require_place(error.place, 0, "the place of a refusal is in its file");
        }
    }
};

}  // namespace

void page_properties(std::string_view input) {
    static const TempFolder folder;
    static const std::filesystem::path root = std::filesystem::canonical(folder.path());
    const auto cut = input.find('\f');
    const Site site{root, input.substr(0, cut),
                    cut == input.npos ? std::string_view() : input.substr(cut + 1)};
    folder.write("page.asp", site.page);
    folder.write("a.inc", site.include);
    site.check(compile_page);
    site.check(compile_global);
}

}  // namespace orvo::fuzz
