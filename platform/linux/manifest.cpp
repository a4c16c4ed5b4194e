#include "platform/linux/manifest.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "platform/values/guid.h"
#include "platform/values/progid.h"
#include "platform/values/text.h"

namespace orvo::runtime {

namespace {

using std::filesystem::path;

std::string_view trimmed_line(std::string_view line) {
    constexpr std::string_view white = " \t\r";
    std::size_t first = line.find_first_not_of(white);
    if (first == std::string_view::npos) return {};
    return line.substr(first, line.find_last_not_of(white) - first + 1);
}

std::string quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

// The whole file; 0 or the number of the system's error.
int read_file(const path& file, std::string& content) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "rbe"),
                                                           std::fclose);
    if (!stream) return errno;
    char block[4096];
    while (std::size_t got = std::fread(block, 1, sizeof block, stream.get()))
        content.append(block, got);
    return std::ferror(stream.get()) ? errno : 0;
}

class ManifestReader {
public:
    ManifestReader(const path& file, Manifest& manifest) : file_(file), manifest_(manifest) {}

    void read(std::string_view content) {
        while (!content.empty()) {
            std::string_view line = content.substr(0, content.find('\n'));
            content.remove_prefix(line.size() == content.size() ? line.size() : line.size() + 1);
            ++line_;
            read_line(trimmed_line(line));
        }
        line_ = 0;
        if (manifest_.module.empty()) fault("it names no module");
    }

    // The first fault is the one that is told.
    void fault(const std::string& reason) {
        if (!manifest_.fault.empty()) return;
        manifest_.fault = file_.string();
        if (line_ != 0) manifest_.fault += ", line " + std::to_string(line_);
        manifest_.fault += ": " + reason;
    }

private:
    void read_line(std::string_view line) {
        if (line.empty() || line.front() == '#') return;
        std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) return fault(quoted(line) + " is no statement");
        std::string_view key = trimmed_line(line.substr(0, equals));
        std::string_view value = trimmed_line(line.substr(equals + 1));
        if (key == "module") return read_module(value);
        if (key == "class") return read_class(value);
        fault("the key " + quoted(key) + " is unknown");
    }

    void read_module(std::string_view value) {
        if (value.empty()) return fault("the module has no name");
        if (!manifest_.module.empty()) return fault("a second module");
        manifest_.module = (file_.parent_path() / path(value)).lexically_normal();
    }

    void read_class(std::string_view value) {
        std::size_t blank = value.find_first_of(" \t");
        std::string_view id = value.substr(0, blank);
        ManifestClass entry{};
        if (!read_braced(id, entry.clsid)) fault(quoted(id) + " is no class identifier");
        std::string_view name = blank == std::string_view::npos ? std::string_view()
                                                                : trimmed_line(value.substr(blank));
        entry.progid = from_utf8(name);
        if (!is_progid(entry.progid)) return fault(quoted(name) + " is no ProgID");
        for (const ManifestClass& other : manifest_.classes) {
            if (ProgidEqual()(other.progid, entry.progid))
                return fault("a second class named " + quoted(name));
            if (other.clsid == entry.clsid) fault("a second class " + braced(entry.clsid));
        }
        manifest_.classes.push_back(std::move(entry));
    }

    const path& file_;
    Manifest& manifest_;
    int line_ = 0;
};

}  // namespace

std::optional<Manifest> read_manifest(const path& file) {
    Manifest manifest;
    ManifestReader reader(file, manifest);
    std::string content;
    int error = read_file(file, content);
    if (error == ENOENT) return std::nullopt;
    if (error != 0)
        reader.fault("it cannot be read: " + std::generic_category().message(error));
    else
        reader.read(content);
    return manifest;
}

std::string manifest_text(const std::string& title, const path& module,
                          std::span<const ManifestClass> classes) {
    std::string text = "# Classes of " + title + "; written when the module was registered.\n";
    text += "module = " + module.string() + "\n";
    for (const ManifestClass& entry : classes)
        text += "class = " + braced(entry.clsid) + " " + to_utf8(entry.progid) + "\n";
    return text;
}

bool is_progid(std::u16string_view progid) {
    for (char16_t c : progid)
        if (c <= 0x20 || c == 0x7F) return false;
    return !version_independent(progid).empty();
}

}  // namespace orvo::runtime
