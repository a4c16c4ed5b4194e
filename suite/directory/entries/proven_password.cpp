#include "suite/directory/entries/proven_password.h"

#include <utility>

#include "platform/module/per_thread.h"

namespace orvo::directory {
namespace {

constexpr std::chrono::seconds lasts{5};

struct Proof {
    std::string server_key;
    std::string user;
    Secret password;
    Clock::time_point at;
};

std::optional<Proof>& last_proof() {
    static PerThread<std::optional<Proof>> proofs;
    return proofs.get();
}

}  // namespace

void ProvenPassword::note(const std::string& server_key, const std::string& user,
                          const Secret& password, Clock::time_point now) {
    last_proof().emplace(Proof{server_key, user, password.clone(), now});
}

void ProvenPassword::forget() { last_proof().reset(); }

std::optional<Secret> ProvenPassword::take(const std::string& server_key, const EntryKey& user,
                                           Clock::time_point now) {
    std::optional<Proof> last = std::exchange(last_proof(), std::nullopt);
    if (!last || last->server_key != server_key || !(EntryKey(last->user) == user) ||
        now - last->at > lasts)
        return std::nullopt;
    return std::move(last->password);
}

}  // namespace orvo::directory
