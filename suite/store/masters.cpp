#include "suite/store/masters.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "suite/store/lost.h"

namespace orvo::store {
namespace {

// What there is against each of several addresses.
class Objections {
public:
    void add(const Address& address, const Lost& lost) {
        reasons_ += (reasons_.empty() ? "" : "; ") + written(address) + ": " + lost.what();
        last_ = lost.what();
        is_silent_ = is_silent_ || lost.why == Lost::Why::silent;
        ++count_;
    }
    // An address need not be named where there is no other.
    [[noreturn]] void raise() const {
        throw Lost(count_ == 1 ? last_ : reasons_,
                   is_silent_ ? Lost::Why::silent : Lost::Why::broken);
    }

private:
    std::string reasons_;
    std::string last_;
    bool is_silent_ = false;
    int count_ = 0;
};

// An equal share of the time, for one of so many.
Deadline share(const Deadline& deadline, std::size_t left) {
    return Deadline(deadline.left() / static_cast<long>(left));
}

}  // namespace

Masters::Masters(const Settings& settings)
    : settings_(settings), tls_(settings.is_encrypted ? tls_context(settings.ca_file) : nullptr) {}

std::unique_ptr<Connection> Masters::connect(const Deadline& deadline) {
    // The master of a moment ago first, then what else there may be.
    std::vector<Address> candidates;
    const std::optional<Address> current = current_master();
    if (current) candidates.push_back(*current);
    for (const Address& address : settings_.addresses)
        if (address != current) candidates.push_back(address);

    Objections objections;
    for (std::size_t i = 0; i < candidates.size(); ++i) try {
            const Deadline limit = share(deadline, candidates.size() - i);
            const bool is_sentinel = !settings_.sentinel.empty() && !(current && i == 0);
            const Address master = is_sentinel ? ask_sentinel(candidates[i], limit) : candidates[i];
            auto connection = connect_to(master, limit);
            note(master);
            return connection;
        } catch (const Lost& lost) {
            objections.add(candidates[i], lost);
        }
    objections.raise();
}

std::unique_ptr<Connection> Masters::connect_to(const Address& master,
                                                const Deadline& deadline) const {
    auto connection = std::make_unique<Connection>(
        master, tls_, Connection::Login{settings_.user, settings_.password, settings_.database},
        deadline);
    if (!connection->is_master()) throw Lost("it is no master", Lost::Why::refused);
    return connection;
}

Address Masters::ask_sentinel(const Address& sentinel, const Deadline& deadline) const {
    Connection connection(sentinel, tls_, {{}, settings_.sentinel_password}, deadline);
    const std::string_view words[] = {"SENTINEL", "GET-MASTER-ADDR-BY-NAME", settings_.sentinel};
    const Reply reply = connection.exchange(wire_form(words), 1, deadline).front();
    if (const Reply::Error* error = reply.error()) throw Lost(error->reason(), Lost::Why::refused);
    if (reply.is_null())
        throw Lost("it knows no master \"" + settings_.sentinel + "\"", Lost::Why::refused);
    const Reply::List* const parts = reply.try_list();
    const std::string* const host =
        parts && parts->size() == 2 ? parts->front().try_text() : nullptr;
    const std::string* const port =
        parts && parts->size() == 2 ? parts->back().try_text() : nullptr;
    Address master;
    if (!host || !port ||
        std::from_chars(port->data(), port->data() + port->size(), master.port).ec != std::errc())
        throw Lost("it does not tell where the master is", Lost::Why::refused);
    master.host = *host;
    return master;
}

std::optional<Address> Masters::current_master() const {
    const std::lock_guard lock(mutex_);
    return current_;
}

void Masters::note(const Address& master) {
    const std::lock_guard lock(mutex_);
    if (current_ && *current_ != master) ++failovers_;
    current_ = master;
}

std::uint64_t Masters::failovers() const {
    const std::lock_guard lock(mutex_);
    return failovers_;
}

}  // namespace orvo::store
