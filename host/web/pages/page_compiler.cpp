#include "host/web/pages/page_compiler.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string_view>

#include "host/web/files/site_files.h"
#include "host/web/messages/encoding.h"
#include "host/web/messages/http_message.h"
#include "host/web/pages/page_directive.h"
#include "host/web/pages/server_tag.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;
using script::Place;

constexpr auto npos = std::string_view::npos;
constexpr std::string_view blanks = " \t\r\n";

std::string read_whole(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

int lines_in(std::string_view text) { return static_cast<int>(std::ranges::count(text, '\n')); }

// How often a script takes something else than a line feed for the end of a line.
std::size_t other_line_ends(std::string_view code) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < code.size(); ++i)
        if ((code[i] == '\r' && code.substr(i) != "\r") ||
            code.substr(i).starts_with("\xE2\x80\xA8") ||
            code.substr(i).starts_with("\xE2\x80\xA9"))
            ++count;
    return count;
}

std::string quoted(std::string_view text) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string result = "\"";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte == '"' || byte == '\\') {
            result += '\\';
            result += text[i];
        } else if (byte == '\n') {
            result += "\\n";
        } else if (byte < 0x20 || byte == 0x7F) {
            result += "\\x";
            result += digits[byte >> 4];
            result += digits[byte & 15];
        } else if (text.substr(i).starts_with("\xE2\x80\xA8") ||
                   text.substr(i).starts_with("\xE2\x80\xA9")) {  // ends a line in a script
            result += text[i + 2] == '\xA8' ? "\\u2028" : "\\u2029";
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result + '"';
}

enum class Form { page, global };

class PageReader {
public:
    PageReader(const fs::path& root, Form form) : root_(root), form_(form) {}

    void read(const std::string& path, const Place& asked) {
        const std::string content = open(path, asked);
        read_content(path, without_mark(content));
        open_.pop_back();
    }

    PageSource take() {
        source_.program += scripts_.program;
        source_.lines.insert(source_.lines.end(), scripts_.lines.begin(), scripts_.lines.end());
        return std::move(source_);
    }

private:
    struct Code {
        std::string& program;
        script::LineMap& lines;
    };

    // The content of a file of the site, which is the innermost one from now on.
    std::string open(const std::string& path, const Place& asked) {
        if (std::ranges::find(open_, path) != open_.end())
            throw PageError(asked, "\"" + path + "\" includes itself");
        if (open_.size() > static_cast<std::size_t>(deepest_include))
            throw PageError(asked, "includes stand more than " + std::to_string(deepest_include) +
                                       " deep in each other");
        const auto file = try_site_file(root_, path);
        if (!file) throw PageError(asked, "there is no file \"" + path + "\"");
        const PageFile state = page_file(*file);
        std::string content = read_whole(*file);
        total_ += content.size();
        if (total_ > largest_page)
            throw PageError(asked, "the page is larger than " + std::to_string(largest_page) +
                                       " bytes, with what it includes");
        if (!is_utf8(content)) throw PageError({path, 0}, "the file is not UTF-8");
        source_.files.push_back(state);
        open_.push_back(path);
        return content;
    }

    static std::string_view without_mark(std::string_view content) {
        if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
        return content;
    }

    void read_content(const std::string& path, std::string_view content) {
        Place here{path, 1};
        auto pass = [&](std::size_t count) {
            here.line += lines_in(content.substr(0, count));
            content.remove_prefix(count);
        };
        bool is_at_start = true;
        while (!content.empty()) {
            const auto piece = content.find("<%");
            const auto text = content.substr(0, piece);
            const auto include = find_include(content, text.size(), here);
            const auto tag = find_server_tag(content, include ? include->begin : text.size());
            if (tag) {
                write_text(text.substr(0, tag->begin), here);
                pass(tag->begin);
                pass(read_tag(*tag, content, here));
                is_at_start = false;
                continue;
            }
            if (include) {
                write_text(text.substr(0, include->begin), here);
                pass(include->begin);
                read(path_of_include(include->include, path, here), here);
                pass(include->size);
                is_at_start = false;
                continue;
            }
            if (!is_at_start || piece == npos || !is_directive(content, piece))
                write_text(text, here);
            is_at_start = is_at_start && is_blank(text);
            if (piece == npos) return;
            pass(piece);
            const auto end = content.find("%>", 2);
            if (end == npos) throw PageError(here, "\"<%\" is not closed by \"%>\"");
            const bool was_directive = is_directive(content, 0);
            write_piece(content.substr(2, end - 2), here, is_at_start);
            is_at_start = false;
            pass(end + 2);
            // The line of a directive is none of the page's text.
            if (was_directive)
                pass(content.starts_with("\r\n") ? 2 : content.starts_with('\n') ? 1 : 0);
        }
    }

    // Of a tag at the beginning of the content; answers how long it is, with all that is its own.
    std::size_t read_tag(const ServerTag& tag, std::string_view content, Place here) {
        if (!tag.is_closed) throw PageError(here, "the tag is not closed by \">\"");
        if (!equal_ascii_ignoring_case(tag.runs_at, "server"))
            throw PageError(here, "runat is \"server\", not \"" + std::string(tag.runs_at) + '"');
        if (!tag.is_script)
            throw PageError(here,
                            "<object runat=\"server\"> is not known here; make the object by "
                            "Server.CreateObject on the page that needs it");
        if (!tag.language.empty()) require_ecmascript(tag.language, here);
        const auto code_begin = tag.size;
        const auto code_size = find_script_end(content.substr(code_begin));
        if (code_size == npos) throw PageError(here, "<script> is not closed by \"</script>\"");
        if (tag.source.empty()) {
            const Place at{here.file, here.line + lines_in(content.substr(0, code_begin))};
            read_script(content.substr(code_begin, code_size), at);
        } else {
            read_script_file(path_of_source(tag.source, here), here);
        }
        const auto end = content.find('>', code_begin + code_size);
        return end == npos ? content.size() : end + 1;
    }

    void read_script_file(const std::string& path, const Place& asked) {
        const std::string content = open(path, asked);
        read_script(without_mark(content), {path, 1});
        open_.pop_back();
    }

    // The code of a script, with what it includes.
    void read_script(std::string_view code, Place here) {
        auto pass = [&](std::size_t count) {
            here.line += lines_in(code.substr(0, count));
            code.remove_prefix(count);
        };
        // Hidden from browsers that know no scripts.
        const auto hides = code.find_first_not_of(blanks);
        const Code scripts{scripts_.program, scripts_.lines};
        if (hides != npos && code.substr(hides).starts_with("<!--") &&
            !try_include(code.substr(hides), here)) {
            pass(hides + 4);
            if (const auto last = code.find_last_not_of(blanks);
                last != npos && code.substr(0, last + 1).ends_with("-->"))
                code = code.substr(0, last - 2);
        }
        while (const auto include = find_include(code, code.size(), here)) {
            write_code(scripts, "", code.substr(0, include->begin), "", here);
            pass(include->begin);
            read_script_file(path_of_include(include->include, here.file, here), here);
            pass(include->size);
        }
        write_code(scripts, "", code, "", here);
    }

    struct FoundInclude {
        Include include;
        std::size_t begin;
        std::size_t size;
    };
    // The first include that begins in the first `size` bytes; any other comment is text.
    static std::optional<FoundInclude> find_include(std::string_view content, std::size_t size,
                                                    const Place& here) {
        for (auto begin = content.find("<!--"); begin < size;
             begin = content.find("<!--", begin + 4)) {
            const auto end = content.find("-->", begin);
            const auto comment = content.substr(begin, end == npos ? npos : end + 3 - begin);
            const Place at{here.file, here.line + lines_in(content.substr(0, begin))};
            const auto include = try_include(comment, at);
            if (!include) continue;
            if (end == npos) throw PageError(at, "the include is not closed by \"-->\"");
            return FoundInclude{*include, begin, comment.size()};
        }
        return {};
    }

    static bool is_blank(std::string_view text) { return text.find_first_not_of(blanks) == npos; }
    static bool is_directive(std::string_view content, std::size_t piece) {
        return content.substr(piece).starts_with("<%@");
    }

    void write_piece(std::string_view code, const Place& begin, bool is_at_start) {
        if (form_ == Form::global) refuse_outside(begin);
        const Code page{source_.program, source_.lines};
        if (code.starts_with('@')) {
            if (!is_at_start || open_.size() > 1)
                throw PageError(begin, "a directive stands at the beginning of the page only");
            read_directive(code.substr(1), begin, source_.settings);
        } else if (code.starts_with('=')) {
            code.remove_prefix(1);
            if (is_blank(code)) throw PageError(begin, "\"<%=\" has nothing to write");
            write_code(page, "Response.Write(", code, ");", begin);
        } else {
            write_code(page, "", code, "", begin);
        }
    }

    // The end stands on a line of its own, behind whatever comment the code may end with.
    static void write_code(const Code& to, std::string_view before, std::string_view code,
                           std::string_view after, Place place) {
        to.program += before;
        while (true) {
            const auto end = code.find('\n');
            const auto line = code.substr(0, end);
            to.program += line;
            to.lines.insert(to.lines.end(), other_line_ends(line), place);
            end_line(to, place);
            if (end == npos) break;
            code.remove_prefix(end + 1);
            ++place.line;
        }
        if (after.empty()) return;
        to.program += after;
        end_line(to, place);
    }

    // One statement, however long the text is: it may stand behind an "if" without braces.
    void write_text(std::string_view text, Place place) {
        if (text.empty()) return;
        if (form_ == Form::global) return refuse_text(text, std::move(place));
        source_.program += "Response.Write(" + quoted(text) + ");";
        end_line({source_.program, source_.lines}, place);
    }

    // global.asa has comments outside of its scripts, and nothing else.
    static void refuse_text(std::string_view text, Place place) {
        while (true) {
            const auto first = text.find_first_not_of(blanks);
            if (first == npos) return;
            place.line += lines_in(text.substr(0, first));
            text.remove_prefix(first);
            const auto end = text.find("-->");
            if (!text.starts_with("<!--") || end == npos) refuse_outside(place);
            place.line += lines_in(text.substr(0, end));
            text.remove_prefix(end + 3);
        }
    }
    [[noreturn]] static void refuse_outside(const Place& place) {
        throw PageError(place,
                        "this file has <script runat=\"server\"> blocks, and nothing outside of "
                        "them");
    }

    static void end_line(const Code& to, const Place& place) {
        to.program += '\n';
        to.lines.push_back(place);
    }

    // The file of src="…": below the page's folder, or below the site's where it begins with "/".
    static std::string path_of_source(std::string_view source, const Place& place) {
        const bool is_virtual = source.starts_with('/') || source.starts_with('\\');
        return path_of_include({std::string(source), is_virtual}, place.file, place);
    }

    static std::string path_of_include(Include include, const std::string& path,
                                       const Place& place) {
        std::ranges::replace(include.path, '\\', '/');
        fs::path asked;
        if (include.is_virtual)
            asked = fs::path("/") / include.path;
        else if (include.path.starts_with('/'))
            throw PageError(place,
                            "the file of an include is relative to the page's folder; "
                            "virtual=\"" +
                                include.path + "\" counts from the site's");
        else
            asked = fs::path(path).parent_path() / include.path;
        const std::string normal = asked.lexically_normal().generic_string();
        if (normal.find("/../") != npos)
            throw PageError(place, "\"" + include.path + "\" is outside the site");
        return normal;
    }

    const fs::path& root_;
    const Form form_;
    PageSource source_;
    // What stands in <script runat="server">, to run behind the page's own pieces.
    struct {
        std::string program;
        script::LineMap lines;
    } scripts_;
    std::vector<std::string> open_;
    std::size_t total_ = 0;
};

}  // namespace

PageError::PageError(Place place, const std::string& message)
    : std::runtime_error(place.file +
                         (place.line > 0 ? ", line " + std::to_string(place.line) : "") + ": " +
                         message),
      place(std::move(place)),
      message(message) {}

PageFile page_file(const fs::path& file) {
    std::error_code error;
    const auto time = fs::last_write_time(file, error);
    const auto size = fs::file_size(file, error);
    return {file, time, error ? 0 : size};
}

PageSource compile_page(const fs::path& root, const std::string& path) {
    PageReader reader(root, Form::page);
    reader.read(path, {path, 0});
    return reader.take();
}

PageSource compile_global(const fs::path& root, const std::string& path) {
    PageReader reader(root, Form::global);
    reader.read(path, {path, 0});
    return reader.take();
}

}  // namespace orvo::web
