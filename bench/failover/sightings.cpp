#include "bench/failover/sightings.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <stdexcept>

namespace orvo::failover {
namespace {

constexpr std::string_view mark_prefix = "try-";
constexpr std::size_t mark_digits = 10;

// Tags of RFC 4511.
constexpr char message_tag = 0x30, bind_tag = 0x60, search_tag = 0x63, modify_tag = 0x66,
               add_tag = 0x68, delete_tag = 0x4a, extended_tag = 0x77;

bool is_write(char operation) {
    return operation == modify_tag || operation == add_tag || operation == delete_tag ||
           operation == extended_tag;
}

// One element of the encoding: its tag, its content, and how long it is with both.
struct Element {
    char tag;
    std::string_view content;
    std::size_t size;
};

// Nothing where more bytes are needed.
std::optional<Element> first_element(std::string_view bytes) {
    if (bytes.size() < 2) return std::nullopt;
    std::size_t length = static_cast<unsigned char>(bytes[1]), head = 2;
    if (length >= 0x80) {
        const std::size_t digits = length & 0x7f;
        if (digits == 0 || digits > 4) throw std::runtime_error("a request that is not LDAP");
        head += digits;
        if (bytes.size() < head) return std::nullopt;
        length = 0;
        for (const char digit : bytes.substr(2, digits))
            length = length << 8 | static_cast<unsigned char>(digit);
    }
    if (bytes.size() < head + length) return std::nullopt;
    return Element{bytes[0], bytes.substr(head, length), head + length};
}

}  // namespace

std::uint64_t new_mark() {
    static std::atomic<std::uint64_t> last = 0;
    return ++last;
}

std::string text_of(std::uint64_t mark) {
    const std::string digits = std::to_string(mark);
    return std::string(mark_prefix) + std::string(mark_digits - digits.size(), '0') + digits;
}

std::optional<std::uint64_t> mark_in(std::string_view text) {
    const std::size_t place = text.find(mark_prefix);
    if (place == std::string_view::npos) return std::nullopt;
    text = text.substr(place + mark_prefix.size(), mark_digits);
    std::uint64_t mark = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), mark).ec != std::errc())
        return std::nullopt;
    return mark;
}

void Sightings::saw(int server, char operation, std::string_view content) {
    const auto mark = mark_in(content);
    const bool is_marked = mark && (is_write(operation) || operation == bind_tag);
    // A search begins with the name of the entry below which it looks; the root's is empty.
    const bool serves =
        is_write(operation) ||
        (operation == search_tag && !content.starts_with(std::string_view("\x04\x00", 2)));
    const std::lock_guard lock(mutex_);
    if (serves) served_[static_cast<std::size_t>(server)].push_back(Clock::now());
    if (!is_marked) return;
    Seen& seen = marked_[key_of(*mark, operation)];
    ++seen.times;
    seen.server = server;
}

Sightings::Repeated Sightings::repeated() const {
    const std::lock_guard lock(mutex_);
    Repeated found;
    for (const auto& [key, seen] : marked_)
        if (seen.times > 1)
            ++(static_cast<char>(key & 0xff) == bind_tag ? found.binds : found.writes);
    return found;
}

std::optional<int> Sightings::server_of_write(std::uint64_t mark) const {
    const std::lock_guard lock(mutex_);
    for (const char operation : {modify_tag, add_tag})
        if (const auto found = marked_.find(key_of(mark, operation)); found != marked_.end())
            return found->second.server;
    return std::nullopt;
}

Sightings::Return Sightings::preferred_serves_after(Clock::time_point healed) const {
    const std::lock_guard lock(mutex_);
    const auto seconds = [&](Clock::time_point time) {
        return std::chrono::duration<double>(time - healed).count();
    };
    Return found;
    std::array<std::vector<int>, 2> in_second;
    for (const std::size_t server : {preferred, other})
        for (const auto time : served_[server]) {
            if (time < healed) continue;
            if (server == preferred && !found.first) found.first = seconds(time);
            const auto second = static_cast<std::size_t>(seconds(time));
            for (auto& counts : in_second)
                if (counts.size() <= second) counts.resize(second + 1);
            ++in_second[server][second];
        }
    for (std::size_t second = 0; second < in_second[preferred].size() && !found.most; ++second)
        if (in_second[preferred][second] > in_second[other][second])
            found.most = static_cast<double>(second);
    return found;
}

void RequestReader::take(std::string_view bytes) {
    pending_ += bytes;
    std::string_view rest = pending_;
    while (const auto message = first_element(rest)) {
        if (message->tag != message_tag) throw std::runtime_error("a request that is not LDAP");
        const auto number = first_element(message->content);
        const auto request =
            number ? first_element(message->content.substr(number->size)) : std::nullopt;
        if (!request) throw std::runtime_error("a request that is not LDAP");
        sightings_.saw(server_, request->tag, request->content);
        rest.remove_prefix(message->size);
    }
    pending_.erase(0, pending_.size() - rest.size());
}

}  // namespace orvo::failover
