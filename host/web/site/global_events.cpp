#include "host/web/site/global_events.h"

#include "host/web/intrinsics/page_runner.h"
#include "host/web/pages/page_cache.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

constexpr const char* global_path = "/global.asa";

// A session that nobody can open any more.
class EndedSession : public SessionLease {
public:
    explicit EndedSession(SessionData data) : data_(std::move(data)) {}
    const std::string& id() const override { return id_; }
    SessionData& data() override { return data_; }
    void renew_id() override {}
    void abandon() override {}
    void save() override {}
    void close() override {}

private:
    const std::string id_;
    SessionData data_;
};

}  // namespace

GlobalEvents::GlobalEvents(std::filesystem::path root, ApplicationState& application,
                           SessionStore& sessions, WebLog& log, Options options)
    : root_(std::move(root)),
      application_(application),
      sessions_(sessions),
      log_(log),
      options_(options),
      time_limit_(options.time_limit) {}

GlobalEvents::~GlobalEvents() { stop(); }

const GlobalScript* GlobalEvents::start() {
    std::unique_lock guard(lock_);
    if (state_ == State::starting) {
        const int attempt = attempts_;
        changed_.wait(guard, [&] { return state_ != State::starting || attempts_ != attempt; });
        if (state_ != State::started && failure_) std::rethrow_exception(failure_);
    }
    if (state_ == State::idle) {
        state_ = State::starting;
        ++attempts_;
        guard.unlock();
        std::optional<GlobalScript> script;
        std::exception_ptr failure;
        try {
            script = begin();
            if (script && script->handles(GlobalEvent::session_end))
                sessions_.on_end([this](SessionData data) { queue(std::move(data)); });
        } catch (...) {
            failure = std::current_exception();
        }
        guard.lock();
        failure_ = failure;
        state_ = failure ? State::idle : State::started;
        script_ = std::move(script);
        if (script_ && script_->handles(GlobalEvent::session_end))
            thread_ = std::thread([this] { run_queue(); });
        changed_.notify_all();
        if (failure) std::rethrow_exception(failure);
    }
    return script_ ? &*script_ : nullptr;
}

std::optional<GlobalScript> GlobalEvents::begin() {
    const auto path = find_global(root_);
    if (!path) return {};
    PageSource source = compile_global(root_, *path);
    GlobalScript script{compile_source(source, *path)};
    const auto page = context();
    script.handlers = run_event(page, script.program, GlobalEvent::application_start);
    if (page->turned_away()) throw Refusal(*page->turned_away());
    return script;
}

void GlobalEvents::queue(SessionData ended) {
    {
        const std::lock_guard guard(lock_);
        ended_.push_back(std::move(ended));
    }
    changed_.notify_all();
}

void GlobalEvents::run_queue() {
    std::unique_lock guard(lock_);
    while (!is_stopping_) {
        if (!ended_.empty()) {
            end_session(guard);
            continue;
        }
        guard.unlock();
        try {
            sessions_.end_idle();
        } catch (const std::exception& failure) {
            log_.failure(global_path, failure.what());
        }
        guard.lock();
        changed_.wait_for(guard, options_.look_every,
                          [&] { return is_stopping_ || !ended_.empty(); });
    }
}

void GlobalEvents::end_session(std::unique_lock<std::mutex>& guard) {
    auto session = std::make_unique<EndedSession>(std::move(ended_.front()));
    ended_.pop_front();
    guard.unlock();
    const auto page = context();
    page->adopt_session(std::move(session));
    carry_out(GlobalEvent::session_end, page);
    guard.lock();
}

void GlobalEvents::stop() {
    {
        const std::lock_guard guard(lock_);
        is_stopping_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
        sessions_.end_all();
        sessions_.on_end({});
        std::unique_lock guard(lock_);
        const auto end = std::chrono::steady_clock::now() + options_.patience;
        while (!ended_.empty() && std::chrono::steady_clock::now() < end) end_session(guard);
        if (!ended_.empty())
            log_.failure(global_path, std::to_string(ended_.size()) +
                                          " sessions ended with the program, without their event");
    }
    {
        const std::lock_guard guard(lock_);
        if (std::exchange(state_, State::stopped) != State::started) return;
    }
    if (script_ && script_->handles(GlobalEvent::application_end))
        carry_out(GlobalEvent::application_end, context());
}

std::shared_ptr<PageContext> GlobalEvents::context() const {
    auto page = std::make_shared<PageContext>(HttpRequest{}, global_path, root_, application_,
                                              sessions_, options_.patience);
    page->time_limit = time_limit_;
    return page;
}

void GlobalEvents::carry_out(GlobalEvent event, const std::shared_ptr<PageContext>& page) {
    page->maps_paths = false;
    try {
        run_event(page, script_->program, event);
    } catch (const std::exception& failure) {
        log_.failure(global_path, failure.what());
    }
}

}  // namespace orvo::web
