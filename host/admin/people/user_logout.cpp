#include <stdexcept>

#include "host/admin/common/output.h"
#include "host/admin/common/site.h"
#include "host/admin/people/each_name.h"
#include "host/admin/people/shared_logins.h"
#include "host/admin/people/user_admin.h"
#include "host/admin/process/running_host.h"

namespace orvo::admin {
namespace {

// How many they were.
std::string end_logins_of(const std::string& account, const LogoutRequest& request) {
    if (const auto ended = try_end_shared_logins(account)) return std::to_string(*ended);
    if (account.find_first_of("\r\n") != std::string::npos)
        throw std::runtime_error("nobody logs in by a name with a line end");
    const HostTable answer = ask_host(request.socket, "logout " + account);
    if (answer.rows.empty()) throw std::runtime_error("the host does not say what it has done");
    return answer.rows.front().front();
}

}  // namespace

int log_out_users(const LogoutRequest& request) {
    const Site site(request.users.common.site);
    return for_each_name(request.users.names, [&](const std::string& name) {
        const std::string ended = end_logins_of(site.info().FullUserPath(name), request);
        say(request.users.common, name,
            ended == "0"   ? "not logged in"
            : ended == "1" ? "logged out"
                           : "logged out, " + ended + " logins");
    });
}

}  // namespace orvo::admin
