#include <iostream>
#include <stdexcept>

#include "host/admin/common/component_failure.h"
#include "host/admin/common/exit_codes.h"
#include "host/admin/common/output.h"
#include "host/admin/common/password_input.h"
#include "host/admin/common/random_texts.h"
#include "host/admin/common/texts.h"
#include "host/admin/diagnosis/throttled_names.h"
#include "host/admin/people/account_change.h"
#include "host/admin/people/attribute_changes.h"
#include "host/admin/people/catalogue.h"
#include "host/admin/people/each_name.h"
#include "host/admin/people/user_admin.h"
#include "host/admin/process/host_throttle.h"

namespace orvo::admin {
namespace {

constexpr std::size_t length_of_generated = 16;

std::string password_for(const PasswordRequest& request) {
    return request.is_generated ? random_password(length_of_generated)
                                : read_new_password("'" + printable(request.name) + "'");
}

// Also where nothing else is said: nobody will know it otherwise.
void show_generated(const PasswordRequest& request, const std::string& password) {
    if (!request.is_generated) return;
    put(std::cout, request.common.is_quiet
                       ? password + "\n"
                       : "The password, which is shown only now:\n\n    " + password + "\n");
}

void make_temporary(const Site& site, const std::string& name) {
    change_account(site, name, AccountChange::expire);
}

std::vector<std::string> numbers(const std::vector<std::string>& written,
                                 int (*number)(const std::string&)) {
    std::vector<std::string> numbers;
    for (const std::string& one : written) numbers.push_back(std::to_string(number(one)));
    return numbers;
}

std::vector<AttributeChange> changes_of_new(const Site& site, const UserAddRequest& request) {
    std::vector<AttributeChange> changes = parse_assignments(request.assignments);
    changes.push_back({"OrvoUserType", {std::to_string(user_type_number(request.type))}});
    if (!request.profile.empty()) {
        site.profile(request.profile);
        changes.push_back({"ProfileCN", {request.profile}});
    }
    if (!request.roles.empty())
        changes.push_back({"OrvoRole", numbers(request.roles, role_number)});
    if (!request.applications.empty())
        changes.push_back({"OrvoApps", numbers(request.applications, application_number)});
    return changes;
}

// Has the site's throttle forget the wrong passwords of a user who is `unlocked`, or was not
// locked.
std::string told_of_throttle(const Site& site, const std::string& name, const std::string& unlocked,
                             const std::filesystem::path& socket) {
    try {
        bool had_any = false;
        for (const std::string& user : throttled_names(site.file(), site.user_entry(name)))
            had_any |= clear_throttle({site.file(), socket, user});
        return had_any ? ", and no wrong passwords are counted any more" : "";
    } catch (const std::exception& failure) {
        throw std::runtime_error(unlocked +
                                 ", but wrong passwords may still be counted: " + told(failure));
    }
}

}  // namespace

int add_user(const UserAddRequest& request) {
    const std::string& name = request.password.name;
    const Site site(request.password.common.site);
    const std::vector<AttributeChange> changes = changes_of_new(site, request);
    const Members members = site.members();
    const std::string password = password_for(request.password);
    const User user = [&] {
        try {
            return members.CreateUser(name, password);
        } catch (const Error& failure) {
            if (!is_existing_entry(failure)) throw;
            throw std::runtime_error("there is a user '" + name + "' already");
        }
    }();
    finish_new(
        [&] {
            change_attributes(user, changes);
            if (request.password.is_temporary) make_temporary(site, name);
        },
        [&] { members.DeleteUser(name); });
    say(request.password.common, name, "made");
    show_generated(request.password, password);
    return done;
}

int set_user(const AssignmentsRequest& request) { return set_attributes(request, &Site::user); }

int remove_users(const NamesRequest& request) {
    const Site site(request.common.site);
    const Members members = site.members();
    return for_each_name(request.names, [&](const std::string& name) {
        try {
            members.DeleteUser(name);
        } catch (const Error& failure) {
            if (!is_missing_entry(failure)) throw;
            throw std::runtime_error("there is no user '" + name + "'");
        }
        say(request.common, name, "removed");
    });
}

int set_password(const PasswordRequest& request) {
    const Site site(request.common.site);
    require_enabled(site, request.name);
    const std::string password = password_for(request);
    site.user_attributes(request.name).SetAttribValue("userPassword", Value(password));
    say(request.common, request.name, "has another password");
    show_generated(request, password);
    if (request.is_temporary) {
        try {
            make_temporary(site, request.name);
        } catch (const std::exception& failure) {
            throw std::runtime_error(
                "the password is set, but need not be changed at the next "
                "login: " +
                told(failure));
        }
    }
    return done;
}

int give_profile(const ProfileRequest& request) {
    constexpr const char* attribute = "ProfileCN";
    const Site site(request.common.site);
    const LdapAccess user = site.user_attributes(request.name);
    if (request.is_cleared) {
        user.ClearAttribValue(attribute);
        say(request.common, request.name, "has no profile");
    } else if (!request.profile.empty()) {
        site.profile(request.profile);
        user.SetAttribValue(attribute, Value(request.profile));
        say(request.common, request.name, "has the profile " + request.profile);
    } else {
        for (const std::string& profile : texts_of(user.GetAttribValue(attribute)))
            put(std::cout, printable(profile) + "\n");
    }
    return done;
}

int change_accounts(AccountChange change, const NamesRequest& request) {
    const Site site(request.common.site);
    return for_each_name(request.names, [&](const std::string& name) {
        say(request.common, name, change_account(site, name, change));
    });
}

int unlock(const UnlockRequest& request) {
    const CommonOptions& common = request.users.common;
    const Site site(common.site);
    const bool is_throttled = has_throttle(site.file());
    const auto unlock_user = [&](const std::string& name) {
        std::string what = change_account(site, name, AccountChange::unlock);
        if (is_throttled) what += told_of_throttle(site, name, what, request.socket);
        say(common, name, what);
    };
    const auto unlock_address = [&](const std::string& address) {
        if (!is_throttled) throw std::runtime_error("the site has no throttle");
        say(common, address,
            clear_address(site.file(), request.socket, address)
                ? "no wrong passwords are counted any more"
                : "no wrong passwords were counted");
    };
    std::vector<std::string> all = request.users.names;
    all.insert(all.end(), request.addresses.begin(), request.addresses.end());
    std::size_t users_left = request.users.names.size();
    return for_each_name(all, [&](const std::string& one) {
        if (users_left == 0) return unlock_address(one);
        --users_left;
        unlock_user(one);
    });
}

}  // namespace orvo::admin
