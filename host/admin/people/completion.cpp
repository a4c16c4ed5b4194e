#include "host/admin/people/completion.h"

#include <iostream>

#include "host/admin/common/exit_codes.h"
#include "host/admin/common/names.h"
#include "host/admin/common/output.h"
#include "host/admin/common/texts.h"
#include "host/admin/people/catalogue.h"
#include "host/admin/people/user_rows.h"
#include "suite/directory/names/ascii.h"

namespace orvo::admin {
namespace {

std::vector<std::string> names_of(const CompletionRequest& request) {
    if (request.kind == "ROLE") return role_names();
    const Site site(request.common.site);
    if (request.kind == "PROFILE") return profile_names(site);
    constexpr std::int16_t most = 100;
    const std::string attribute = site.info().GetUserNamingAttribute().to<std::string>();
    std::vector<std::string> names;
    for (const Row& row : site.members().GetOrvoUsersEx(
             std::vector{attribute + "=" + as_filter_value(request.begin) + "*"},
             std::vector{attribute}, {}, most))
        names.push_back(row[std::size_t{0}].to<std::vector<std::string>>().front());
    return names;
}

}  // namespace

int print_names(const CompletionRequest& request) {
    const std::string begin = directory::ascii::lower(request.begin);
    for (const std::string& name : names_of(request))
        if (directory::ascii::lower(name).starts_with(begin))
            put(std::cout, printable(name) + "\n");
    return done;
}

}  // namespace orvo::admin
