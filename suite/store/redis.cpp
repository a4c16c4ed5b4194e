#include "suite/store/redis.h"

#include <algorithm>
#include <functional>
#include <span>
#include <utility>

#include "suite/store/pool.h"
#include "suite/store/store_error.h"

namespace orvo::store {
namespace {

// Errors that tell that the server has done nothing, and that it is not the one to ask.
constexpr std::string_view not_done[] = {"READONLY", "LOADING", "MASTERDOWN", "NOAUTH"};
// Errors that tell that it could not do it now.
constexpr std::string_view not_now[] = {"MISCONF", "NOREPLICAS",  "BUSY",
                                        "NOPERM",  "CLUSTERDOWN", "TRYAGAIN"};
constexpr std::string_view full[] = {"OOM"};

constexpr std::string_view unknown_script[] = {"NOSCRIPT"};

bool is_error(const Reply& reply, std::span<const std::string_view> kinds) {
    if (!reply.error()) return false;
    const std::string_view text = reply.error()->text;
    return std::ranges::find(kinds, text.substr(0, text.find(' '))) != kinds.end();
}

std::string wire_form_of(const Command& command) {
    const std::vector<std::string_view> words(command.begin(), command.end());
    return wire_form(words);
}

std::string script_call(std::string_view verb, const std::string& script,
                        const std::vector<std::string>& keys,
                        const std::vector<std::string>& arguments) {
    const std::string count = std::to_string(keys.size());
    std::vector<std::string_view> words = {verb, script, count};
    words.insert(words.end(), keys.begin(), keys.end());
    words.insert(words.end(), arguments.begin(), arguments.end());
    return wire_form(words);
}

template <class Raised = Failure>
[[noreturn]] void raise(std::int32_t number, const Settings& settings, std::string_view what,
                        const std::string& reason, std::string_view more = {}) {
    throw Raised(number, Text(store_source),
                 from_utf8("The store " + settings.url() + " " + std::string(what) + " (" + reason +
                           ")" + std::string(more)));
}

// Of a reply without errors: itself, otherwise the first one raises.
void check(const Settings& settings, const Reply& reply) {
    if (const Reply::Error* error = reply.error()) {
        if (is_error(reply, full))
            raise<RefusedNow>(store_unreachable, settings, "cannot be used",
                              "it is full: " + error->reason());
        if (is_error(reply, not_now))
            raise<RefusedNow>(store_unreachable, settings, "cannot be used", error->reason());
        raise(store_refused, settings, "refuses a command", error->reason());
    }
    if (const Reply::List* list = reply.try_list())
        for (const Reply& one : *list) check(settings, one);
}

}  // namespace

// Commands that are sent together.
struct Redis::Exchange {
    std::string bytes;
    std::size_t count;
    Repeat repeat;
    // To be sent in their place where the server does not know the script that they name.
    std::function<std::string()> whole_script = {};
};

Redis::Redis(Settings settings) : pool_(std::make_unique<Pool>(std::move(settings))) {}

Redis::~Redis() = default;

Reply Redis::run(const Command& command) {
    return std::move(exchange({wire_form_of(command), 1, Repeat::never}).front());
}

Reply Redis::run_repeatable(const Command& command) {
    return std::move(exchange({wire_form_of(command), 1, Repeat::once}).front());
}

Reply Redis::run(const Script& script, const std::vector<std::string>& keys,
                 const std::vector<std::string>& arguments) {
    return run_script(script, keys, arguments, Repeat::never);
}

Reply Redis::run_repeatable(const Script& script, const std::vector<std::string>& keys,
                            const std::vector<std::string>& arguments) {
    return run_script(script, keys, arguments, Repeat::once);
}

Reply Redis::run_script(const Script& script, const std::vector<std::string>& keys,
                        const std::vector<std::string>& arguments, Repeat repeat) {
    const auto whole = [&] { return script_call("EVAL", script.text, keys, arguments); };
    return std::move(
        exchange({script_call("EVALSHA", script.sha1, keys, arguments), 1, repeat, whole}).front());
}

std::vector<Reply> Redis::run_all(const std::vector<Command>& commands) {
    if (commands.empty()) return {};
    std::string bytes;
    for (const Command& command : commands) bytes += wire_form_of(command);
    return exchange({std::move(bytes), commands.size(), Repeat::never});
}

std::vector<Reply> Redis::exchange(const Exchange& asked) {
    const auto begin = std::chrono::steady_clock::now();
    const auto count = [&] {
        const auto time = std::chrono::steady_clock::now() - begin;
        ++commands_;
        microseconds_ += static_cast<std::uint64_t>(
            std::chrono::duration_cast<std::chrono::microseconds>(time).count());
    };
    std::vector<Reply> replies;
    try {
        replies = ask(asked, Deadline(settings().time_limit));
    } catch (const Lost& lost) {
        count();
        ++failures_;
        raise(store_unreachable, settings(), "cannot be used", lost.what(),
              lost.is_sent ? "; what was asked may have been done" : "");
    }
    count();
    try {
        for (const Reply& reply : replies) check(settings(), reply);
    } catch (const RefusedNow&) {
        ++failures_;
        throw;
    }
    return replies;
}

std::vector<Reply> Redis::ask(const Exchange& asked, const Deadline& deadline) {
    for (bool is_again = false;; is_again = true) {
        Pool::Lease connection = pool_->acquire(deadline);
        try {
            std::vector<Reply> replies = connection->exchange(asked.bytes, asked.count, deadline);
            if (asked.whole_script && is_error(replies.front(), unknown_script))
                replies = connection->exchange(asked.whole_script(), 1, deadline);
            // The first of several tells: what comes later may have been done.
            if (is_error(replies.front(), not_done))
                throw Lost(replies.front().error()->reason(), Lost::Why::refused);
            return replies;
        } catch (const Lost& lost) {
            connection.discard(lost);
            const bool may_go_again = !lost.is_sent || asked.repeat == Repeat::once;
            if (is_again || !may_go_again || deadline.has_passed()) throw;
        }
    }
}

bool Redis::is_reachable() const { return pool_->is_reachable(); }

Redis::Counts Redis::counts() const {
    const Pool::Counts pool = pool_->counts();
    return {commands_,
            failures_,
            pool.connects,
            pool_->masters().failovers(),
            pool.connections,
            pool.in_use,
            std::chrono::microseconds(microseconds_)};
}

const Settings& Redis::settings() const { return pool_->settings(); }

}  // namespace orvo::store
