#include "host/admin/people/user_rows.h"

#include "host/admin/common/names.h"
#include "host/admin/people/catalogue.h"
#include "host/admin/people/entry_values.h"
#include "host/admin/people/filter_check.h"

namespace orvo::admin {
namespace {

// Each page costs the directory as much as the first, so it is a large one: 10,000 users are three.
constexpr std::int16_t page_size = 5000;

std::string equals(const std::string& attribute, const std::string& value) {
    return "(" + attribute + "=" + as_filter_value(value) + ")";
}

// The profiles for which `has` is true, as one condition; false of everybody where there are none.
template <class Has>
std::string users_of_profiles(const Site& site, Has has) {
    std::string items;
    for (const std::string& name : profile_names(site))
        if (has(site.profile(name))) items += equals("ProfileCN", name);
    return items.empty() ? "(!(objectClass=*))" : "(|" + items + ")";
}

bool has_number(const Value& list, int number) {
    for (const std::string& text : texts_of(list))
        if (text == std::to_string(number)) return true;
    return false;
}

// As the component finds them: a user's own count, and the profile's where there are none.
std::string having(const Site& site, const std::string& attribute, int number) {
    const std::string profiles = users_of_profiles(site, [&](const orvo::Profile& profile) {
        return has_number(profile.GetAttribValue(attribute), number);
    });
    return "|" + equals(attribute, std::to_string(number)) + "(&(|(!(" + attribute + "=*))" +
           equals(attribute, "0") + ")" + profiles + ")";
}

std::string pattern(const std::string& written) {
    std::string text;
    for (std::size_t at = 0;;) {
        const std::size_t star = written.find('*', at);
        text += as_filter_value(std::string_view(written).substr(at, star - at));
        if (star == std::string::npos) return text;
        text += '*';
        at = star + 1;
    }
}

std::string named(const std::string& naming_attribute, const std::string& written) {
    std::string item = "|";
    for (const std::string& attribute :
         {naming_attribute, std::string("sn"), std::string("givenName"), std::string("mail")})
        item += "(" + attribute + "=" + pattern(written) + ")";
    return item;
}

// A filter may be written with its outer parentheses, which the component adds.
std::string without_parentheses(const std::string& item) {
    return item.starts_with('(') && item.ends_with(')') ? item.substr(1, item.size() - 2) : item;
}

std::vector<std::string> criteria(const Site& site, const UserFilter& filter,
                                  const std::string& naming_attribute) {
    std::vector<std::string> items;
    if (!filter.role.empty()) items.push_back(having(site, "OrvoRole", role_number(filter.role)));
    if (!filter.application.empty())
        items.push_back(having(site, "OrvoApps", application_number(filter.application)));
    if (!filter.profile.empty()) {
        site.profile(filter.profile);
        items.push_back("ProfileCN=" + as_filter_value(filter.profile));
    }
    if (!filter.type.empty())
        items.push_back("OrvoUserType=" + std::to_string(user_type_number(filter.type)));
    if (!filter.name.empty()) items.push_back(named(naming_attribute, filter.name));
    for (const std::string& item : filter.items) {
        require_filter(item);
        items.push_back(without_parentheses(item));
    }
    return items;
}

}  // namespace

void visit_users(const Site& site, const UserFilter& filter,
                 const std::vector<std::string>& attributes,
                 const std::function<bool(const OutputRow& row)>& visit) {
    const std::string naming_attribute = site.info().GetUserNamingAttribute().to<std::string>();
    std::vector<std::string> columns{naming_attribute};
    columns.insert(columns.end(), attributes.begin(), attributes.end());
    const std::vector<std::string> always = criteria(site, filter, naming_attribute);
    const Members members = site.members();
    std::string after = filter.after;
    for (;;) {
        std::vector<std::string> items = always;
        // "!" is behind the name itself, in front of every other one.
        if (!after.empty()) items.push_back(naming_attribute + ">=" + as_filter_value(after) + "!");
        const RecordSet page = members.GetOrvoUsersEx(items, columns, {}, page_size);
        for (const Row& row : page) {
            after = row[std::size_t{0}].to<std::vector<std::string>>().front();
            OutputRow written{site.user_entry(after), {}};
            for (std::size_t i = 1; i < columns.size(); ++i)
                written.values.push_back(texts_of(row[i]));
            if (!visit(written)) return;
        }
        if (page.size() < page_size) return;
    }
}

std::vector<std::string> profile_names(const Site& site) {
    std::vector<std::string> names;
    for (const Row& row : site.profiles().AsRecordset())
        names.push_back(row["cn"].to<std::vector<std::string>>().front());
    return names;
}

}  // namespace orvo::admin
