#include "host/web/sessions/memory_sessions.h"

#include "host/web/messages/http_message.h"
#include "host/web/messages/random_token.h"

namespace orvo::web {

struct MemorySessions::Session {
    std::string id;
    SessionData data;
    SessionClock::time_point made;
    SessionClock::time_point last_used;
    // As the last request left them.
    SessionLogin login;
    std::size_t bytes = 0;
    SessionTurns turns{.is_taken = true};
    bool is_dropped = false;
    Order* order = nullptr;
    Order::iterator place;
};

class MemorySessions::Lease final : public SessionLease {
public:
    Lease(MemorySessions& store, std::shared_ptr<Session> session)
        : store_(store), session_(std::move(session)) {}
    ~Lease() override { close(); }

    const std::string& id() const override { return session_->id; }
    SessionData& data() override { return session_->data; }
    void renew_id() override {
        std::string id = random_token();
        const std::lock_guard guard(store_.lock_);
        if (session_->is_dropped) return;
        store_.sessions_.erase(session_->id);
        session_->id = std::move(id);
        store_.sessions_.emplace(session_->id, session_);
    }
    void abandon() override { is_abandoned_ = true; }
    void save() override {}
    void close() override {
        if (std::exchange(is_closed_, true)) return;
        if (is_abandoned_) {
            const std::lock_guard guard(store_.lock_);
            store_.drop(session_, SessionEnd::abandoned);
        }
        store_.give_back(session_);
    }

private:
    MemorySessions& store_;
    const std::shared_ptr<Session> session_;
    bool is_abandoned_ = false;
    bool is_closed_ = false;
};

MemorySessions::MemorySessions(SessionLimits limits, std::function<SessionClock::time_point()> now)
    : limits_(limits), now_(std::move(now)) {}

MemorySessions::~MemorySessions() = default;

std::unique_ptr<SessionLease> MemorySessions::open(const std::string& id,
                                                   std::chrono::milliseconds patience,
                                                   const std::function<bool()>& try_wait) {
    std::unique_lock guard(lock_);
    const auto found = sessions_.find(id);
    if (found == sessions_.end()) return nullptr;
    const std::shared_ptr<Session> session = found->second;
    if (session->turns.is_taken) {
        ++counts_.waited;
        SessionPatience request(patience, try_wait);
        try {
            wait_for_turn(session->turns, guard, given_back_, limits_.most_waiting, request);
        } catch (const Refusal&) {
            ++counts_.refused;
            throw;
        }
    }
    // Whoever had it may have ended it or given it another identifier.
    if (session->is_dropped || session->id != id) return nullptr;
    if (const auto why = ended(*session)) {
        drop(session, *why);
        return nullptr;
    }
    session->turns.is_taken = true;
    return std::make_unique<Lease>(*this, session);
}

std::unique_ptr<SessionLease> MemorySessions::create() {
    auto session = std::make_shared<Session>();
    session->id = random_token();
    session->data.form_token = random_token();
    const std::lock_guard guard(lock_);
    session->data.timeout = limits_.timeout;
    drop_ended();
    if (sessions_.size() >= limits_.most) {
        const auto victim = oldest();
        if (!victim) throw Refusal(503, "There are too many sessions.");
        drop(victim, SessionEnd::room);
    }
    session->made = session->last_used = now_();
    session->data.public_id = decimal(static_cast<long long>(++counts_.created));
    session->order = &orders_.front();
    session->place = session->order->insert(session->order->end(), session);
    sessions_.emplace(session->id, session);
    return std::make_unique<Lease>(*this, session);
}

SessionLogin MemorySessions::login_of(const std::string& id) {
    const std::lock_guard guard(lock_);
    const auto found = sessions_.find(id);
    if (found == sessions_.end()) return {};
    Session& session = *found->second;
    if (!session.turns.is_taken && ended(session)) return {};
    session.last_used = now_();
    session.order->splice(session.order->end(), *session.order, session.place);
    return session.login;
}

std::chrono::minutes MemorySessions::timeout() const {
    const std::lock_guard guard(lock_);
    return limits_.timeout;
}

void MemorySessions::set_limits(const SessionLimits& limits) {
    const std::lock_guard guard(lock_);
    limits_ = limits;
}

SessionCounts MemorySessions::counts() const {
    const std::lock_guard guard(lock_);
    SessionCounts counts = counts_;
    counts.live = sessions_.size();
    counts.bytes = bytes_;
    return counts;
}

std::optional<SessionEnd> MemorySessions::ended(const Session& session) const {
    const auto now = now_();
    if (now - session.last_used >= session.data.timeout) return SessionEnd::idle;
    if (now - session.made >= limits_.absolute) return SessionEnd::lifetime;
    return std::nullopt;
}

void MemorySessions::give_back(const std::shared_ptr<Session>& session) {
    {
        const std::lock_guard guard(lock_);
        session->turns.is_taken = false;
        if (!session->is_dropped) {
            session->last_used = now_();
            place(*session);
            while (bytes_ > limits_.most_bytes) {
                const auto victim = oldest();
                if (!victim) break;
                drop(victim, SessionEnd::room);
            }
        }
    }
    given_back_.notify_all();
}

void MemorySessions::place(Session& session) {
    const NamedValues& values = session.data.values;
    session.login = login_in(values);
    bytes_ += values.size() - session.bytes;
    session.bytes = values.size();
    Order& order = orders_[rank_of(session.data)];
    order.splice(order.end(), *session.order, session.place);
    session.order = &order;
}

void MemorySessions::drop(const std::shared_ptr<Session>& session, SessionEnd why) {
    if (std::exchange(session->is_dropped, true)) return;
    ++counts_.ended[static_cast<std::size_t>(why)];
    bytes_ -= session->bytes;
    sessions_.erase(session->id);
    session->order->erase(session->place);
    if (take_ended_) take_ended_(std::move(session->data));
}

void MemorySessions::on_end(std::function<void(SessionData)> take) {
    const std::lock_guard guard(lock_);
    take_ended_ = std::move(take);
}

template <class Why>
void MemorySessions::end_where(Why why) {
    const std::lock_guard guard(lock_);
    std::vector<std::pair<std::shared_ptr<Session>, SessionEnd>> all;
    for (const auto& [id, session] : sessions_) {
        if (session->turns.is_taken) continue;
        if (const std::optional<SessionEnd> reason = why(*session))
            all.emplace_back(session, *reason);
    }
    for (const auto& [session, reason] : all) drop(session, reason);
}

void MemorySessions::end_idle() {
    end_where([this](const Session& session) { return ended(session); });
}

void MemorySessions::end_all() {
    end_where([](const Session&) { return std::optional(SessionEnd::closing); });
}

// A few of those that were used longest ago, so that what has ended goes away in time.
void MemorySessions::drop_ended() {
    for (Order& order : orders_)
        for (int i = 0; i < 4 && !order.empty(); ++i) {
            const auto oldest = order.front();
            const auto why = oldest->turns.is_taken ? std::nullopt : ended(*oldest);
            if (!why) break;
            drop(oldest, *why);
        }
}

std::shared_ptr<MemorySessions::Session> MemorySessions::oldest() const {
    for (const Order& order : orders_)
        for (const auto& session : order)
            if (!session->turns.is_taken) return session;
    return nullptr;
}

}  // namespace orvo::web
