#pragma once

#include <memory>

#include "host/admin/common/site_settings.h"
#include "host/admin/diagnosis/account.h"
#include "platform/values/secret.h"
#include "suite/directory/schema/attribute_types.h"

namespace orvo::admin {

// Where users are looked at. What goes wrong is raised as a Failure. Used by one thread.
class AccountSource {
public:
    virtual ~AccountSource() = default;

    virtual DirectoryView& view() = 0;
    // The real names of the users that are called so, two at most; of a directory without a map
    // just that, whether there is such a user or not.
    virtual std::vector<std::string> all_called(const std::string& name) { return {name}; }
    // All names by which this entry can log in, its own first.
    virtual std::vector<std::string> login_names(const std::string& real_name) {
        return {real_name};
    }
    // Of attributes, by the names that the component knows them by.
    virtual directory::AttributeTypes types() = 0;
    virtual const AccountReader& reader() const = 0;
    virtual Policy policy_of(const directory::EntryData& user) = 0;
    // Whether the password is the user's, found out in a way that counts nowhere, or not known.
    virtual Finding compare(const directory::EntryData& user, const Secret& password) = 0;
    // A login, which counts as one: the provider's number for it (password_check.h).
    virtual int log_in(const directory::EntryData& user, const Secret& password) = 0;
};

// Of the first server that lets the service account in, or of the file. `site` lives longer. Raises
// std::exception where there is none.
std::unique_ptr<AccountSource> open_accounts(const SiteSettings& site);

// What a login or a comparison came to.
Finding right_password();
Finding wrong_password();
// Of the provider's number for it (password_check.h).
Finding finding_of_check(int number);

}  // namespace orvo::admin
