#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace orvo::store {

// What the store answers to a command: nothing (null), a number, a text of any bytes, or a list of
// these. What is asked for must be there: each accessor raises store_refused for a reply of another
// kind.
class Reply {
public:
    struct Error {
        std::string text;  // "WRONGTYPE Operation against a key …"
        // As much of it as a message may show: a server repeats arguments, of which one may be a
        // password.
        std::string reason() const;
        bool operator==(const Error&) const = default;
    };
    using List = std::vector<Reply>;

    Reply() = default;  // null
    explicit Reply(std::int64_t number) : value_(number) {}
    explicit Reply(std::string text) : value_(std::move(text)) {}
    explicit Reply(List list) : value_(std::move(list)) {}
    explicit Reply(Error error) : value_(std::move(error)) {}

    bool is_null() const { return std::holds_alternative<std::monostate>(value_); }
    std::int64_t integer() const;
    const std::string& text() const;
    const List& list() const;
    // Null for a reply of another kind.
    const std::string* try_text() const { return std::get_if<std::string>(&value_); }
    const List* try_list() const { return std::get_if<List>(&value_); }
    // Null where it is none. Redis raises these, so its callers meet none.
    const Error* error() const { return std::get_if<Error>(&value_); }
    bool operator==(const Reply&) const = default;

private:
    friend class ReplyReader;
    std::variant<std::monostate, std::int64_t, std::string, List, Error> value_;
};

}  // namespace orvo::store
