#include "host/web/sessions/memory_sessions.h"

#include <algorithm>

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
    bool is_leased = true;
    std::size_t waiting = 0;  // requests
    bool is_dropped = false;
    Order* order = nullptr;
    Order::iterator place;
};

class MemorySessions::Lease : public SessionLease {
public:
    Lease(MemorySessions& store, std::shared_ptr<Session> session)
        : store_(store), session_(std::move(session)) {}
    ~Lease() override {
        {
            const std::lock_guard guard(store_.lock_);
            if (is_abandoned_) store_.drop(session_, SessionEnd::abandoned);
        }
        store_.give_back(session_);
    }

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

private:
    MemorySessions& store_;
    const std::shared_ptr<Session> session_;
    bool is_abandoned_ = false;
};

SessionLogin login_in(const NamedValues& values) {
    const auto text = [&](TextView name) {
        const Variant value = values.get(name);
        return value.is_text() ? Text(value.text_view()) : Text();
    };
    return {text(u"QUENDRAID"), text(u"REMOTE_ACCOUNT")};
}

int usual_requests_of_one_session(int directory_workers) {
    constexpr int of_a_browser = 6, left_to_others = 2, least = 2;
    return std::max(
        {least, directory_workers / 2, std::min(of_a_browser, directory_workers - left_to_others)});
}

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
    if (session->is_leased) wait_for(*session, guard, patience, try_wait);
    // Whoever had it may have ended it or given it another identifier.
    if (session->is_dropped || session->id != id) return nullptr;
    if (const auto why = ended(*session)) {
        drop(session, *why);
        return nullptr;
    }
    session->is_leased = true;
    return std::make_unique<Lease>(*this, session);
}

void MemorySessions::wait_for(Session& session, std::unique_lock<std::mutex>& guard,
                              std::chrono::milliseconds patience,
                              const std::function<bool()>& try_wait) {
    if (session.waiting >= limits_.most_waiting)
        throw Refusal(503, "Too many requests of this session wait.");
    ++session.waiting;
    guard.unlock();
    const bool may_wait = !try_wait || try_wait();
    guard.lock();
    const bool is_free =
        may_wait && given_back_.wait_for(guard, patience, [&] { return !session.is_leased; });
    --session.waiting;
    if (!may_wait)
        throw Refusal(503, "Another request of this session runs, and too many requests wait.");
    if (!is_free) throw Refusal(503, "Another request of this session takes too long.");
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
    session->data.public_id = decimal(static_cast<long long>(++made_));
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
    if (!session.is_leased && ended(session)) return {};
    session.last_used = now_();
    session.order->splice(session.order->end(), *session.order, session.place);
    return session.login;
}

void MemorySessions::set_limits(const SessionLimits& limits) {
    const std::lock_guard guard(lock_);
    limits_ = limits;
}

std::size_t MemorySessions::count() const {
    const std::lock_guard guard(lock_);
    return sessions_.size();
}

std::size_t MemorySessions::bytes() const {
    const std::lock_guard guard(lock_);
    return bytes_;
}

SessionCounts MemorySessions::counts() const {
    const std::lock_guard guard(lock_);
    return {sessions_.size(), bytes_, made_, ended_};
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
        session->is_leased = false;
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
    Order& order = orders_[values.count() == 0 ? 0 : session.login.guid.empty() ? 1 : 2];
    order.splice(order.end(), *session.order, session.place);
    session.order = &order;
}

void MemorySessions::drop(const std::shared_ptr<Session>& session, SessionEnd why) {
    if (std::exchange(session->is_dropped, true)) return;
    ++ended_[static_cast<std::size_t>(why)];
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
        if (session->is_leased) continue;
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
            const auto why = oldest->is_leased ? std::nullopt : ended(*oldest);
            if (!why) break;
            drop(oldest, *why);
        }
}

std::shared_ptr<MemorySessions::Session> MemorySessions::oldest() const {
    for (const Order& order : orders_)
        for (const auto& session : order)
            if (!session->is_leased) return session;
    return nullptr;
}

}  // namespace orvo::web
