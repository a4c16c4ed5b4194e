#include "host/web/pages/server_tag.h"

#include "host/web/messages/http_message.h"

namespace orvo::web {
namespace {

constexpr auto npos = std::string_view::npos;
constexpr std::string_view blanks = " \t\r\n\f";

// Attributes of a tag, with and without values.
class TagReader {
public:
    explicit TagReader(std::string_view text) : text_(text) {}

    // False at the end of the tag.
    bool read(std::string_view& name, std::string_view& value) {
        pass(text_.find_first_not_of(" \t\r\n\f/"));
        if (text_.empty() || text_.front() == '>') return false;
        name = take(text_.find_first_of(" \t\r\n\f/=>"));
        value = {};
        pass(text_.find_first_not_of(blanks));
        if (!text_.starts_with('=')) return !name.empty();
        text_.remove_prefix(1);
        pass(text_.find_first_not_of(blanks));
        if (text_.starts_with('"') || text_.starts_with('\'')) {
            const auto end = text_.find(text_.front(), 1);
            value = text_.substr(1, end == npos ? npos : end - 1);
            pass(end == npos ? npos : end + 1);
        } else {
            value = take(text_.find_first_of(" \t\r\n\f>"));
        }
        return true;
    }
    std::size_t left() const { return text_.size(); }

private:
    void pass(std::size_t count) { text_.remove_prefix(count == npos ? text_.size() : count); }
    std::string_view take(std::size_t count) {
        const auto taken = text_.substr(0, count);
        text_.remove_prefix(taken.size());
        return taken;
    }
    std::string_view text_;
};

bool begins_with_word(std::string_view text, std::string_view word) {
    return equal_ascii_ignoring_case(text.substr(0, word.size()), word) &&
           (text.size() == word.size() ||
            std::string_view(" \t\r\n\f/>").find(text[word.size()]) != npos);
}

}  // namespace

std::optional<ServerTag> find_server_tag(std::string_view text, std::size_t limit) {
    for (auto begin = text.find('<'); begin < limit; begin = text.find('<', begin + 1)) {
        const auto rest = text.substr(begin + 1);
        ServerTag tag{.begin = begin};
        tag.is_script = begins_with_word(rest, "script");
        if (!tag.is_script && !begins_with_word(rest, "object")) continue;
        TagReader reader(rest.substr(6));
        bool runs_at_server = false;
        std::string_view name, value;
        while (reader.read(name, value)) {
            if (equal_ascii_ignoring_case(name, "runat")) {
                runs_at_server = true;
                tag.runs_at = value;
            }
            if (equal_ascii_ignoring_case(name, "language")) tag.language = value;
            if (equal_ascii_ignoring_case(name, "src")) tag.source = value;
        }
        if (!runs_at_server) continue;
        tag.is_closed = reader.left() > 0;
        tag.size = text.size() - begin - reader.left() + (tag.is_closed ? 1 : 0);
        return tag;
    }
    return {};
}

std::size_t find_script_end(std::string_view text) {
    for (auto begin = text.find("</"); begin != npos; begin = text.find("</", begin + 2))
        if (begins_with_word(text.substr(begin + 2), "script")) return begin;
    return npos;
}

}  // namespace orvo::web
