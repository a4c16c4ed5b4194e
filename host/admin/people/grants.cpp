#include "host/admin/people/grants.h"

#include <algorithm>
#include <iostream>

#include "host/admin/common/output.h"
#include "host/admin/common/site.h"
#include "host/admin/people/catalogue.h"

namespace orvo::admin {
namespace {

std::vector<std::string> numbers(const Granted& granted, const std::vector<std::string>& written) {
    std::vector<std::string> numbers;
    for (const std::string& one : written) numbers.push_back(std::to_string(granted.number(one)));
    return numbers;
}

}  // namespace

const Granted granted_roles{"OrvoRole", "roles", role_number, shown_role};
const Granted granted_applications{"OrvoApps", "applications", application_number,
                                   [](const std::string& number) { return number; }};

std::vector<std::string> changed_grants(const Granted& granted, const GrantRequest& request,
                                        std::vector<std::string> list) {
    std::erase(list, "0");
    if (request.is_cleared || !request.set.empty()) list.clear();
    std::vector<std::string> added = numbers(granted, request.set);
    for (std::string& number : numbers(granted, request.add)) added.push_back(std::move(number));
    for (std::string& number : added)
        if (std::ranges::find(list, number) == list.end()) list.push_back(std::move(number));
    for (const std::string& number : numbers(granted, request.remove)) std::erase(list, number);
    return list;
}

void tell_grants(const Granted& granted, const GrantRequest& request,
                 const std::vector<std::string>& numbers) {
    std::string lines, list;
    for (const std::string& number : numbers) {
        lines += granted.shown(number) + "\n";
        list += (list.empty() ? "" : ", ") + granted.shown(number);
    }
    if (request.is_asked()) return put(std::cout, lines);
    const std::string what = granted.what;
    say(request.common, request.name,
        list.empty() ? "has no " + what : "has the " + what + " " + list);
}

int grant_user_roles(const GrantRequest& request) {
    return grant(granted_roles, request, Site(request.common.site).user(request.name));
}

int grant_user_applications(const GrantRequest& request) {
    return grant(granted_applications, request, Site(request.common.site).user(request.name));
}

}  // namespace orvo::admin
