// What a shared store answers, in whatever pieces it comes.

#include <optional>
#include <vector>

#include "suite/store/lost.h"
#include "suite/store/reply_reader.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::store;

struct Read {
    std::vector<Reply> replies;
    bool is_refused = false;
    bool operator==(const Read&) const = default;
};

Read read(std::string_view input, std::size_t at_once) {
    Read all;
    ReplyReader reader;
    try {
        while (!input.empty()) {
            const std::string_view piece = input.substr(0, at_once);
            reader.feed(piece);
            input.remove_prefix(piece.size());
            while (std::optional<Reply> reply = reader.next())
                all.replies.push_back(std::move(*reply));
        }
    } catch (const Lost&) {
        all.is_refused = true;
    }
    return all;
}

std::string written(const Reply& reply) {
    if (reply.is_null()) return "$-1\r\n";
    // One that was read has no line end.
    if (reply.error()) return "-" + reply.error()->text + "\r\n";
    if (const std::string* text = reply.try_text())
        return "$" + std::to_string(text->size()) + "\r\n" + *text + "\r\n";
    const Reply::List* const list = reply.try_list();
    if (!list) return ":" + std::to_string(reply.integer()) + "\r\n";
    std::string bytes = "*" + std::to_string(list->size()) + "\r\n";
    for (const Reply& one : *list) bytes += written(one);
    return bytes;
}

std::size_t parts_of(const Reply& reply) {
    std::size_t count = 1;
    if (const Reply::List* list = reply.try_list())
        for (const Reply& one : *list) count += parts_of(one);
    return count;
}

}  // namespace

void store_reply_properties(std::string_view input) {
    const Read whole = read(input, input.size());
    for (const std::size_t at_once : {1, 3, 16})
        require(read(input, at_once) == whole, "pieces make no difference");
    std::string bytes;
    std::size_t parts = 0;
    for (const Reply& reply : whole.replies) {
        bytes += written(reply);
        parts += parts_of(reply);
        require(!reply.error() || reply.error()->reason().size() <= 200,
                "a message shows the beginning of a refusal");
    }
    require(parts <= input.size(), "nothing is answered that did not come");
    const Read again = read(bytes, bytes.size());
    require(!again.is_refused && again.replies == whole.replies,
            "what was read can be written and read again");
}

}  // namespace orvo::fuzz
