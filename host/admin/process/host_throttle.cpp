#include "host/admin/process/host_throttle.h"

#include <memory>

#include "host/admin/process/running_host.h"
#include "suite/configuration/ini_files.h"
#include "suite/throttle/gate.h"
#include "suite/throttle/redis_counters.h"
#include "suite/throttle/throttle_settings.h"

namespace orvo::admin {
namespace {

// What the site's processes share; null where each counts for itself.
std::unique_ptr<throttle::Counters> shared_counters(const std::filesystem::path& site) {
    store::Settings settings = store::read_settings(*load_ini_file(site), site);
    if (!settings.is_shared()) return nullptr;
    store::Keyring keyring = store::Keyring::read(settings.key_file);
    return std::make_unique<throttle::RedisCounters>(std::make_shared<store::SiteStore>(
        store::SiteStore{std::make_shared<store::Redis>(std::move(settings)), std::move(keyring)}));
}

// Also where there is a shared store: while that was away a host has counted in its memory.
bool has_host_cleared(const std::filesystem::path& socket, const std::string& request) {
    const auto table = try_ask_host(socket, request);
    return table && table->rows.at(0).at(0) != "0";
}

ThrottleBudget told(const throttle::CountedBudget& budget) {
    return {to_utf8(budget.name()), budget.wrong, budget.most,
            static_cast<int>(std::chrono::ceil<std::chrono::seconds>(budget.free_in).count()),
            budget.is_asked};
}

}  // namespace

bool has_throttle(const std::filesystem::path& site) {
    return throttle::read_settings(*load_ini_file(site), site).is_on;
}

std::optional<std::vector<ThrottleBudget>> throttle_of(const ThrottledUser& who,
                                                       const std::string& address) {
    std::vector<ThrottleBudget> budgets;
    if (const auto shared = shared_counters(who.site)) {
        const auto limits =
            throttle::limits_of(throttle::read_settings(*load_ini_file(who.site), who.site));
        for (const auto& budget : shared->state({throttle::user_key(from_utf8(who.user)),
                                                 throttle::address_key(from_utf8(address))},
                                                limits))
            budgets.push_back(told(budget));
        return budgets;
    }
    const auto table = try_ask_host(who.socket, "throttle " + who.user + "\t" + address);
    if (!table) return std::nullopt;
    for (const std::vector<std::string>& row : table->rows)
        budgets.push_back({row.at(0), std::stoi(row.at(1)), std::stoi(row.at(2)),
                           std::stoi(row.at(3)), row.at(4) == "True"});
    return budgets;
}

bool clear_throttle(const ThrottledUser& who) {
    const auto shared = shared_counters(who.site);
    const bool had_any = shared && shared->clear(throttle::user_key(from_utf8(who.user)));
    return has_host_cleared(who.socket, "clear throttle " + who.user) || had_any;
}

bool clear_address(const std::filesystem::path& site, const std::filesystem::path& socket,
                   const std::string& address) {
    const auto shared = shared_counters(site);
    const bool had_any = shared && shared->clear_address(throttle::address_key(from_utf8(address)));
    return has_host_cleared(socket, "clear throttled address " + address) || had_any;
}

}  // namespace orvo::admin
