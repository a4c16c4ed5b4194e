#include "host/web/pages/page_directive.h"

#include <algorithm>
#include <initializer_list>

#include "host/web/messages/http_message.h"
#include "host/web/pages/page_compiler.h"

namespace orvo::web {
namespace {

constexpr auto npos = std::string_view::npos;
constexpr std::string_view blanks = " \t\r\n";

// Reads `name = "value"` pairs from the front of a text.
class AttributeReader {
public:
    explicit AttributeReader(std::string_view text) : text_(text) { skip_blanks(); }

    bool at_end() const { return text_.empty(); }
    std::string_view rest() const { return text_; }
    // False where the text goes on in another way; the value may stand in quotes.
    bool read(std::string_view& name, std::string_view& value) {
        const auto equals = text_.find('=');
        if (equals == npos) return false;
        name = text_.substr(0, equals);
        name = name.substr(0, name.find_last_not_of(blanks) + 1);
        if (name.empty() || name.find_first_of(blanks) != npos) return false;
        text_.remove_prefix(equals + 1);
        skip_blanks();
        if (text_.empty()) return false;
        if (text_.front() == '"' || text_.front() == '\'') {
            const auto end = text_.find(text_.front(), 1);
            if (end == npos) return false;
            value = text_.substr(1, end - 1);
            text_.remove_prefix(end + 1);
        } else {
            value = text_.substr(0, text_.find_first_of(blanks));
            text_.remove_prefix(value.size());
        }
        skip_blanks();
        return true;
    }

private:
    void skip_blanks() {
        const auto first = text_.find_first_not_of(blanks);
        text_.remove_prefix(first == npos ? text_.size() : first);
    }
    std::string_view text_;
};

bool is_any_of(std::string_view value, std::initializer_list<std::string_view> known) {
    return std::ranges::any_of(known,
                               [&](auto one) { return equal_ascii_ignoring_case(value, one); });
}

void read_setting(std::string_view name, std::string_view value, const script::Place& place,
                  PageSettings& settings) {
    const auto refuse = [&](const std::string& sentence) {
        throw PageError(place, sentence + ", not \"" + std::string(value) + '"');
    };
    if (equal_ascii_ignoring_case(name, "Language")) {
        require_ecmascript(value, place);
    } else if (equal_ascii_ignoring_case(name, "CodePage")) {
        if (value != "65001") refuse("pages are UTF-8 (CodePage=65001)");
    } else if (equal_ascii_ignoring_case(name, "LCID")) {
        if (!is_any_of(value, {"1033", "127", "2048"}))
            refuse("texts, numbers and dates are formatted the same everywhere (LCID=1033)");
    } else if (equal_ascii_ignoring_case(name, "EnableSessionState")) {
        settings.has_session = is_any_of(value, {"True"});
        if (!is_any_of(value, {"True", "False"}))
            refuse("EnableSessionState is \"True\" or \"False\"");
    } else if (equal_ascii_ignoring_case(name, "Transaction")) {
        if (!is_any_of(value, {"Not_Supported", "Supported"}))
            refuse("pages run in no transaction (Transaction=\"Not_Supported\")");
    } else {
        throw PageError(place, "the directive \"" + std::string(name) + "\" is not known");
    }
}

}  // namespace

void require_ecmascript(std::string_view language, const script::Place& place) {
    if (is_any_of(language, {"JScript", "JavaScript", "ECMAScript"})) return;
    throw PageError(place, "the language of pages is ECMAScript (Language=\"JScript\"), not \"" +
                               std::string(language) + '"');
}

void read_directive(std::string_view text, const script::Place& place, PageSettings& settings) {
    AttributeReader reader(text);
    while (!reader.at_end()) {
        std::string_view name, value;
        if (!reader.read(name, value))
            throw PageError(place, "the directive cannot be read from \"" +
                                       std::string(reader.rest()) + "\" on");
        read_setting(name, value, place, settings);
    }
}

std::optional<Include> try_include(std::string_view comment, const script::Place& place) {
    comment.remove_prefix(4);  // "<!--"
    const auto begin = comment.find_first_not_of(blanks);
    constexpr std::string_view word = "#include";
    if (begin == npos || !equal_ascii_ignoring_case(comment.substr(begin, word.size()), word))
        return {};
    AttributeReader reader(comment.substr(begin + word.size()));
    std::string_view name, value;
    if (reader.read(name, value) && !value.empty()) {
        if (equal_ascii_ignoring_case(name, "file")) return Include{std::string(value), false};
        if (equal_ascii_ignoring_case(name, "virtual")) return Include{std::string(value), true};
    }
    throw PageError(place, "the include names no file; write <!-- #include file=\"name\" -->");
}

}  // namespace orvo::web
