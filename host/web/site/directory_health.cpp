#include "host/web/site/directory_health.h"

#include <array>

#include "component/config/configuration_contract.h"
#include "component/provider/directory_contract.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"

namespace orvo::web {
namespace {

constexpr std::chrono::seconds fresh_for{2};

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
    call<&DirectoryEntry::Bind>(entry, server, container, name, user, password, attributes);
}

DirectoryHealth::DirectoryHealth(std::function<void()> reach, std::chrono::milliseconds patience)
    : reach_(std::move(reach)), patience_(patience), thread_([this] { serve(); }) {}

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
    if (Clock::now() < fresh_until_) return trouble_;
    const auto before = answers_;
    is_wanted_ = true;
    changed_.notify_all();
    if (!changed_.wait_for(guard, patience_, [&] { return answers_ != before; })) {
        trouble_ = "The directory does not answer.";
        fresh_until_ = Clock::now() + fresh_for;
    }
    return trouble_;
}

void DirectoryHealth::serve() {
    std::unique_lock guard(lock_);
    while (true) {
        changed_.wait(guard, [&] { return is_wanted_ || is_ending_; });
        if (is_ending_) return;
        is_wanted_ = false;
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
        trouble_ = trouble;
        fresh_until_ = Clock::now() + fresh_for;
        ++answers_;
        changed_.notify_all();
    }
}

}  // namespace orvo::web
