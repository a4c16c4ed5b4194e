#include "suite/store/subscription.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/interfaces/face.h"
#include "suite/store/lost.h"
#include "suite/store/pool.h"

namespace orvo::store {
namespace {

constexpr std::chrono::milliseconds try_interval{200};
// How long nothing comes before the server is asked whether it is there.
constexpr std::chrono::seconds quiet_interval{1};

std::string command(std::string_view name) { return wire_form({&name, 1}); }

}  // namespace

class Subscription::Listener {
public:
    Listener(std::shared_ptr<Redis> redis, std::string channel,
             std::function<void(std::string_view)> on_message, std::function<void()> on_gap)
        : redis_(std::move(redis)),
          channel_(std::move(channel)),
          on_message_(std::move(on_message)),
          on_gap_(std::move(on_gap)),
          thread_([this] { work(); }) {
        ++detail::live_objects();
    }
    ~Listener() {
        {
            const std::lock_guard lock(mutex_);
            is_ending_ = true;
            if (connection_) connection_->interrupt();
        }
        changed_.notify_all();
        thread_.join();
        --detail::live_objects();
    }

    bool is_listening() const { return is_listening_; }

private:
    void work() {
        std::unique_lock lock(mutex_);
        while (!is_ending_) {
            const auto begin = std::chrono::steady_clock::now();
            lock.unlock();
            try {
                listen();
            } catch (const Lost&) {
                // Whoever asks for the store itself is told why.
            }
            lock.lock();
            connection_.reset();
            if (is_listening_.exchange(false) && !is_ending_) {
                lock.unlock();
                on_gap_();
                lock.lock();
            }
            changed_.wait_until(lock, begin + try_interval, [this] { return is_ending_; });
        }
    }

    // Until the connection is lost.
    void listen() {
        Connection& connection = connect();
        const auto limit = redis_->settings().time_limit;
        const std::string_view words[] = {"SUBSCRIBE", channel_};
        const std::vector<Reply> confirmed =
            connection.exchange(wire_form(words), 1, Deadline(limit));
        if (const Reply::Error* error = confirmed.front().error())
            throw Lost(error->reason(), Lost::Why::refused);
        on_gap_();
        is_listening_ = true;
        for (;;) {
            std::optional<Reply> message = connection.receive(Deadline(quiet_interval));
            if (!message) {
                connection.send(command("PING"), Deadline(limit));
                message = connection.receive(Deadline(limit));
                if (!message) throw Lost("it does not answer", Lost::Why::silent);
            }
            hear(*message);
        }
    }

    Connection& connect() {
        auto connection = redis_->pool_->masters().connect(Deadline(redis_->settings().time_limit));
        const std::lock_guard lock(mutex_);
        connection_ = std::move(connection);
        if (is_ending_) throw Lost("it is not needed any more");
        return *connection_;
    }

    // "message", the channel, the text; anything else is an answer to PING.
    void hear(const Reply& reply) {
        const Reply::List* const parts = reply.try_list();
        if (!parts || parts->size() != 3) return;
        const std::string* const kind = parts->front().try_text();
        const std::string* const text = parts->back().try_text();
        if (kind && text && *kind == "message") on_message_(*text);
    }

    const std::shared_ptr<Redis> redis_;
    const std::string channel_;
    const std::function<void(std::string_view)> on_message_;
    const std::function<void()> on_gap_;
    std::atomic<bool> is_listening_ = false;
    std::mutex mutex_;  // for the rest
    std::condition_variable changed_;
    bool is_ending_ = false;
    std::unique_ptr<Connection> connection_;

    std::thread thread_;  // begins last
};

Subscription::Subscription(std::shared_ptr<Redis> redis, std::string channel,
                           std::function<void(std::string_view)> on_message,
                           std::function<void()> on_gap)
    : listener_(std::make_unique<Listener>(std::move(redis), std::move(channel),
                                           std::move(on_message), std::move(on_gap))) {}

Subscription::~Subscription() = default;

bool Subscription::is_listening() const { return listener_->is_listening(); }

}  // namespace orvo::store
