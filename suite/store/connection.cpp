#include "suite/store/connection.h"

#include <array>

#include "suite/store/lost.h"

namespace orvo::store {
namespace {

std::string command(std::initializer_list<std::string_view> words) {
    return wire_form({words.begin(), words.size()});
}

const Reply& accepted(const Reply& reply) {
    if (const Reply::Error* error = reply.error()) throw Lost(error->reason(), Lost::Why::refused);
    return reply;
}

// Of the names and values that the server tells of itself.
std::string role_in(const Reply& told) {
    const Reply::List* const list = told.try_list();
    for (std::size_t i = 0; list && i + 1 < list->size(); i += 2) {
        const std::string* const name = (*list)[i].try_text();
        const std::string* const value = (*list)[i + 1].try_text();
        if (name && value && *name == "mode" && *value == "sentinel") return *value;
        if (name && value && *name == "role") return *value;
    }
    throw Lost("it does not tell its role", Lost::Why::refused);
}

}  // namespace

Connection::Connection(const Address& address, const TlsContext& tls, const Login& login,
                       const Deadline& deadline)
    : address_(address), transport_(address, tls, deadline) {
    log_in(login, deadline);
}

void Connection::log_in(const Login& login, const Deadline& deadline) {
    std::string hello =
        login.user.empty() && login.password.empty()
            ? command({"HELLO", "2"})
            : command({"HELLO", "2", "AUTH", login.user.empty() ? "default" : login.user,
                       login.password.reveal()});
    send(hello, deadline);
    overwrite(hello.data(), hello.size());
    // A server that is loading its data tells that now, and not at the first command.
    send(command({"PING"}), deadline);
    if (login.database != 0) send(command({"SELECT", std::to_string(login.database)}), deadline);

    role_ = role_in(accepted(next(deadline)));
    accepted(next(deadline));
    if (login.database != 0) accepted(next(deadline));
}

std::vector<Reply> Connection::exchange(std::string_view commands, std::size_t count,
                                        const Deadline& deadline) {
    send(commands, deadline);
    std::vector<Reply> replies;
    replies.reserve(count);
    try {
        while (replies.size() < count) replies.push_back(next(deadline));
    } catch (Lost& lost) {
        lost.is_sent = true;
        throw;
    }
    return replies;
}

void Connection::send(std::string_view commands, const Deadline& deadline) {
    transport_.send(commands, deadline);
}

Reply Connection::next(const Deadline& deadline) {
    for (;;) {
        if (std::optional<Reply> reply = reader_.next()) return std::move(*reply);
        std::array<char, 16384> bytes;
        const std::size_t count = transport_.receive(bytes, deadline);
        reader_.feed({bytes.data(), count});
    }
}

std::optional<Reply> Connection::receive(const Deadline& deadline) {
    try {
        return next(deadline);
    } catch (const Lost& lost) {
        if (lost.why != Lost::Why::silent) throw;
        return std::nullopt;
    }
}

}  // namespace orvo::store
