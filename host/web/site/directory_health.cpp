#include "host/web/site/directory_health.h"

#include <algorithm>
#include <array>
#include <utility>

#include "component/config/configuration_contract.h"
#include "component/provider/directory_contract.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"

namespace orvo::web {
namespace {

constexpr std::chrono::milliseconds moment{200};

}  // namespace

void reach_directory() {
    const auto configuration = Ref<Configuration>::from(create_object(u"Quendra.Configuration"));
    call<&Configuration::LoadSiteConfig>(configuration, false);
    const Object settings = create_object(u"OrvoMembership.ServerInfo");
    std::array<Variant, 1> arguments{configuration.object()};
    late::call_by_reference(settings, u"LoadConfigFile", arguments);
    auto setting = [&](TextView name) { return late::get(settings, name).to<Text>(); };

    const auto provider =
        Ref<DirectoryModule>::from(create_object(trimmed(setting(u"GetPMMImplementation"))));
    const auto entry = call<&DirectoryModule::CreateEntry>(provider);
    Text server = setting(u"GetServerName");
    Text container = setting(u"GetUserContainer");
    Text name;
    Text user = setting(u"GetMemScriptUser");
    Secret password = late::get(settings, u"GetMemScriptCode").to<Secret>();
    Variant attributes = Values{};
    const auto bind = [&] {
        call<&DirectoryEntry::Bind>(entry, server, container, name, user, password, attributes);
    };
    try {
        bind();
    } catch (const Failure&) {
        // A bind is sent once, to one server; the next one goes to a server that is up.
        bind();
    }
}

DirectoryHealth::DirectoryHealth(std::function<void()> reach, std::chrono::milliseconds patience,
                                 std::chrono::milliseconds fresh_for)
    : reach_(std::move(reach)),
      patience_(patience),
      fresh_for_(fresh_for),
      thread_([this] { serve(); }) {}

DirectoryHealth::~DirectoryHealth() {
    {
        const std::lock_guard guard(lock_);
        is_ending_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

std::string DirectoryHealth::trouble() {
    std::unique_lock guard(lock_);
    const auto now = Clock::now();
    if (now < fresh_until_) return trouble_;
    const auto before = answers_;
    const bool has_asked = !std::exchange(is_wanted_, true);
    if (has_asked) {
        asked_ = now;
        changed_.notify_all();
    }
    const auto latest = asked_ + patience_;
    const auto until = before == 0 ? latest : std::min(latest, has_asked ? now + moment : now);
    changed_.wait_until(guard, until, [&] { return answers_ != before; });
    if (answers_ == before && Clock::now() >= latest) trouble_ = "The directory does not answer.";
    return trouble_;
}

void DirectoryHealth::serve() {
    std::unique_lock guard(lock_);
    while (true) {
        changed_.wait(guard, [&] { return is_wanted_ || is_ending_; });
        if (is_ending_) return;
        guard.unlock();
        std::string trouble;
        try {
            reach_();
        } catch (const Failure& failure) {
            trouble = to_utf8(failure.description);
            if (trouble.empty()) trouble = failure.what();
        } catch (const std::exception& failure) {
            trouble = failure.what();
        }
        guard.lock();
        is_wanted_ = false;
        trouble_ = trouble;
        fresh_until_ = Clock::now() + fresh_for_;
        ++answers_;
        changed_.notify_all();
    }
}

}  // namespace orvo::web
