#include <algorithm>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "host/admin/common/exit_codes.h"
#include "host/admin/common/output.h"
#include "host/admin/common/site.h"
#include "host/admin/people/attribute_table.h"
#include "host/admin/people/catalogue.h"
#include "host/admin/people/user_rows.h"
#include "host/admin/transfer/transfer.h"
#include "suite/directory/embedded/store/new_file.h"

namespace orvo::admin {
namespace {

std::vector<std::string> all_attributes(const Site& site) {
    const std::string naming_attribute = site.info().GetUserNamingAttribute().to<std::string>();
    std::vector<std::string> names{naming_attribute, "OrvoGUID"};
    for (std::vector<std::string> more : {user_attributes(), {"OrvoApps", "DefaultURL"}})
        for (std::string& name : more)
            if (std::ranges::find(names, name) == names.end()) names.push_back(std::move(name));
    return names;
}

std::size_t write_users(const Site& site, const ExportUsersRequest& request, std::ostream& out) {
    const std::vector<std::string> attributes =
        request.rows.columns.empty() ? all_attributes(site) : request.rows.columns;
    std::size_t count = 0;
    const auto writer = make_row_writer(request.rows.format, out, columns_of(attributes), {});
    visit_users(site, {}, attributes, [&](const OutputRow& row) {
        writer->write(row);
        ++count;
        return true;
    });
    writer->finish();
    return count;
}

}  // namespace

int export_users(const ExportUsersRequest& request) {
    const Site site(request.common.site);
    if (request.file == "-") {
        write_users(site, request, std::cout);
        return done;
    }
    if (std::filesystem::exists(request.file))
        throw std::runtime_error(request.file.string() + " is there already");
    directory::embedded::NewFile made(request.file);
    std::ofstream out(made.path(), std::ios::binary);
    const std::size_t count = write_users(site, request, out);
    out.close();
    if (!out) throw std::runtime_error(request.file.string() + " cannot be written");
    made.publish();
    if (!request.common.is_quiet)
        put(std::cout, request.file.string() + ": " + std::to_string(count) + " users written.\n");
    return done;
}

}  // namespace orvo::admin
