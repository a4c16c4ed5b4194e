#pragma once

// The grammar that the descriptions of a schema share (RFC 4512, 4.1), for their readers.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvo::directory::schema {

// Words, quoted texts and parentheses of a description, one after another.
class Words {
public:
    explicit Words(std::string_view text) : text_(text) {}

    // Nothing at the end, and where a quoted text has no end.
    std::optional<std::string_view> next() {
        while (position_ < text_.size() && is_blank(text_[position_])) ++position_;
        if (position_ == text_.size()) return std::nullopt;
        const std::size_t begin = position_;
        const char c = text_[position_++];
        if (c == '(' || c == ')') return text_.substr(begin, 1);
        if (c == '\'') {
            const std::size_t end = text_.find('\'', position_);
            if (end == std::string_view::npos) return std::nullopt;
            position_ = end + 1;
            return text_.substr(begin, position_ - begin);
        }
        while (position_ < text_.size() && !is_blank(text_[position_]) && text_[position_] != '(' &&
               text_[position_] != ')')
            ++position_;
        return text_.substr(begin, position_ - begin);
    }

private:
    static bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

    std::string_view text_;
    std::size_t position_ = 0;
};

inline std::string_view unquoted(std::string_view word) {
    if (word.size() >= 2 && word.front() == '\'') return word.substr(1, word.size() - 2);
    return word;
}

// One value, or several in parentheses; false when the parentheses are not closed.
inline bool read_values(Words& words, std::vector<std::string>& values) {
    std::optional<std::string_view> word = words.next();
    if (!word) return false;
    if (*word != "(") {
        values.emplace_back(unquoted(*word));
        return true;
    }
    while ((word = words.next()) && *word != ")") values.emplace_back(unquoted(*word));
    return word.has_value();
}

}  // namespace orvo::directory::schema
