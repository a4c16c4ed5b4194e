#include "host/admin/process/host_throttle.h"

#include "host/admin/process/running_host.h"
#include "suite/configuration/ini_files.h"
#include "suite/throttle/throttle_settings.h"

namespace orvo::admin {

bool has_throttle(const std::filesystem::path& site) {
    return throttle::read_settings(*load_ini_file(site), site).is_on;
}

std::optional<std::vector<ThrottleBudget>> throttle_of(const ThrottledUser& who,
                                                       const std::string& address) {
    const auto table = try_ask_host(who.socket, "throttle " + who.user + "\t" + address);
    if (!table) return std::nullopt;
    std::vector<ThrottleBudget> budgets;
    for (const std::vector<std::string>& row : table->rows)
        budgets.push_back({row.at(0), std::stoi(row.at(1)), std::stoi(row.at(2)),
                           std::stoi(row.at(3)), row.at(4) == "True"});
    return budgets;
}

bool clear_throttle(const ThrottledUser& who) {
    const auto table = try_ask_host(who.socket, "clear throttle " + who.user);
    return table && table->rows.at(0).at(0) != "0";
}

}  // namespace orvo::admin
