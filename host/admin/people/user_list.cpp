#include <iostream>

#include "host/admin/common/exit_codes.h"
#include "host/admin/people/attribute_table.h"
#include "host/admin/people/catalogue.h"
#include "host/admin/people/each_name.h"
#include "host/admin/people/user_admin.h"
#include "host/admin/people/user_rows.h"

namespace orvo::admin {

int list_users(const UserListRequest& request) {
    const Site site(request.common.site);
    std::vector<std::string> attributes = request.rows.columns;
    if (attributes.empty())
        attributes = {site.info().GetUserNamingAttribute().to<std::string>(),
                      "givenName",
                      "sn",
                      "mail",
                      "OrvoUserType",
                      "ProfileCN",
                      "OrvoRole"};
    const auto writer = make_row_writer(request.rows.format, std::cout, columns_of(attributes),
                                        Terminal::of_output());
    std::size_t count = 0;
    const auto is_enough = [&] { return request.limit != 0 && count == request.limit; };
    visit_users(site, request.filter, attributes, [&](const OutputRow& row) {
        writer->write(row);
        ++count;
        return !is_enough();
    });
    writer->finish();
    return done;
}

int show_users(const NamesRequest& request) {
    const Site site(request.common.site);
    std::vector<std::string> attributes = request.rows.columns;
    if (attributes.empty()) {
        attributes = {"cn", "OrvoGUID"};
        for (std::string& name : user_attributes()) attributes.push_back(std::move(name));
        attributes.insert(attributes.end(), {"OrvoApps", "DefaultURL", "description",
                                             "pwdChangedTime", "pwdReset", "pwdAccountLockedTime"});
    }
    AttributeTable table(request.rows.format, attributes);
    const int code = for_each_name(request.names, [&](const std::string& name) {
        const User user = site.user(name);
        OutputRow row{site.user_entry(name), {}};
        for (const std::string& attribute : attributes)
            row.values.push_back(texts_of(user.GetAttribValue(attribute)));
        table.write(row);
    });
    table.finish();
    return code;
}

}  // namespace orvo::admin
