#include "suite/directory/ldif/ldif_lines.h"

#include <utility>

namespace orvo::directory {

std::optional<LdifLine> LdifLines::next() {
    if (!std::exchange(is_begun_, true)) ahead_ = read_line();
    while (ahead_) {
        LdifLine line{std::move(*ahead_), number_};
        if (line.text.starts_with(' '))
            throw LdifError(line.number, "nothing stands before this line that it could continue");
        while ((ahead_ = read_line()) && ahead_->starts_with(' ') && !line.text.empty()) {
            if (line.text.size() + ahead_->size() > longest_)
                throw LdifError(line.number, "the value is too long");
            line.text.append(*ahead_, 1);
        }
        if (!line.text.starts_with('#')) return line;
    }
    return std::nullopt;
}

// Without what ends it. An empty one that is the last does not count: nothing follows it.
std::optional<std::string> LdifLines::read_line() {
    std::string line;
    ++number_;
    std::streambuf& octets = *in_.rdbuf();
    constexpr int end = std::char_traits<char>::eof();
    for (int c = octets.sbumpc();; c = octets.sbumpc()) {
        if (c == end && line.empty()) return std::nullopt;
        if (c == end || c == '\n') break;
        if (line.size() == longest_) throw LdifError(number_, "the line is too long");
        line += static_cast<char>(c);
    }
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

}  // namespace orvo::directory
