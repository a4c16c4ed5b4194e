#include "host/admin/setup/init_site.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "host/admin/common/random_texts.h"
#include "host/admin/common/site_settings.h"
#include "host/admin/directory/directory_admin.h"
#include "suite/configuration/suite_configuration.h"
#include "suite/configuration/value_reference.h"
#include "suite/directory/embedded/directory/directory.h"
#include "suite/directory/embedded/transfer/loader.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/password_hash.h"

namespace orvo::admin {
namespace {

using namespace directory;
using namespace directory::embedded;
namespace fs = std::filesystem;

constexpr int number_of_user_types = 5;
constexpr const char* policy_name = "cn=default,ou=Policies";

// What was made, to be taken away again unless everything was.
class Made {
public:
    ~Made() {
        std::error_code ignored;  // what cannot be removed stays
        if (!is_kept_)
            for (auto file = files_.rbegin(); file != files_.rend(); ++file)
                fs::remove(*file, ignored);
    }
    void add(fs::path file) { files_.push_back(std::move(file)); }
    void keep() { is_kept_ = true; }
    const std::vector<fs::path>& files() const { return files_; }

private:
    std::vector<fs::path> files_;
    bool is_kept_ = false;
};

void make_folder(const fs::path& folder, Made& made) {
    if (folder.empty() || fs::exists(folder)) return;
    make_folder(folder.parent_path(), made);
    fs::create_directory(folder);
    made.add(folder);
}

void make_file(const fs::path& file, const std::string& content, fs::perms mode, Made& made) {
    make_folder(file.parent_path(), made);
    std::ofstream out(file, std::ios::binary | std::ios::app);
    if (!out) throw std::runtime_error(file.string() + " cannot be written");
    made.add(file);
    fs::permissions(file, mode);
    if (!(out << content).flush()) throw std::runtime_error(file.string() + " cannot be written");
}

// Where the first part of a name ends.
std::size_t end_of_first(const std::string& name) {
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (name[at] == ',') return at;
        if (name[at] == '\\') ++at;
    }
    return std::string::npos;
}

class Entries {
public:
    Entries(Loader& loader, const SiteSettings& site) : loader_(loader), site_(site) {}

    // An entry with this relative name, and those above it that are not there yet.
    void add(const std::string& relative_name, std::vector<Attribute> attributes) {
        const auto comma = end_of_first(relative_name);
        if (comma != std::string::npos) require_unit(relative_name.substr(comma + 1));
        loader_.take({.entry = {relative_name + "," + site_.root, std::move(attributes)}});
    }
    void require_unit(const std::string& relative_name) {
        if (std::ranges::find(units_, relative_name) != units_.end()) return;
        units_.push_back(relative_name);
        const auto equals = relative_name.find('=');
        const auto comma = end_of_first(relative_name);
        if (relative_name.substr(0, equals) != "ou")
            throw std::runtime_error("the container '" + relative_name +
                                     "' is not named by ou: make the directory with "
                                     "\"orvo directory create\" and \"import\"");
        add(relative_name, {{"objectClass", {"organizationalUnit"}},
                            {"ou", {relative_name.substr(equals + 1, comma - equals - 1)}}});
    }

private:
    Loader& loader_;
    const SiteSettings& site_;
    std::vector<std::string> units_;
};

struct Passwords {
    std::string service;
    std::string administrator;
};

void fill(Store& store, const SiteSettings& site, const InitRequest& request,
          const Passwords& passwords) {
    Loader loader(store, time_of_day(), HashCost::usual);
    Entries entries(loader, site);
    for (const std::string& container : {site.users, site.profiles, site.accounts})
        entries.require_unit(container);
    const auto hash = [](const std::string& password) {
        return hashed_password(Secret::of_bytes(password));
    };
    entries.add(site.service, {{"objectClass", {"organizationalRole", "simpleSecurityObject"}},
                               {"description", {"The account that the component works with"}},
                               {"userPassword", {hash(passwords.service)}}});
    for (int type = 0; type < number_of_user_types; ++type)
        entries.add("cn=" + std::to_string(type) + "," + site.accounts,
                    {{"objectClass", {site.account_class}}});
    entries.add(policy_name, {{"objectClass", {"organizationalRole", "pwdPolicy"}},
                              {"pwdAttribute", {"userPassword"}},
                              {"pwdLockout", {"TRUE"}},
                              // Later than the throttle, which does not lock the owner out.
                              {"pwdMaxFailure", {"50"}},
                              {"pwdFailureCountInterval", {"900"}},
                              {"pwdLockoutDuration", {"900"}},
                              {"pwdMinLength", {"8"}},
                              {"pwdCheckQuality", {"1"}},
                              {"pwdMustChange", {"TRUE"}}});
    const std::string name = to_utf8(escaped_value(from_utf8(request.administrator)));
    entries.add(site.naming_attribute + "=" + name + "," + site.users,
                {{"objectClass", site.user_classes},
                 {"sn", {request.administrator}},
                 {"OrvoGUID", {random_guid()}},
                 {"OrvoUserType", {"4"}},
                 {"userPassword", {hash(passwords.administrator)}},
                 {"pwdReset", {"TRUE"}}});
    loader.set_setting(store_setting::policy, std::string(policy_name) + "," + site.root);
    loader.commit();
}

// The settings of a new site, in the component's own words.
std::string new_settings(const fs::path& data) {
    return "; The site's settings for the membership component. Containers and accounts are "
           "relative to\n"
           "; LDAPRoot.\n\n"
           "[MEMBERSHIP]\n"
           "PlugableModuleImplementation=OrvoDirectory.Embedded\n"
           "LDAPServer=" +
           (data / "shop.db").string() +
           "\n"
           "LDAPRoot=o=Shop\n"
           "UserContainer=ou=Users\n"
           "ProfileContainer=ou=Profiles\n"
           "AccountContainer=ou=Accounts\n"
           "; The first class alone selects users in searches; a new user gets all of them.\n"
           "UserClass=orvoPerson,top\n"
           "ProfileClass=orvoProfile\n"
           "AccountClass=orvoAccount\n"
           "UserNamingAttribute=cn\n"
           "ProfileNamingAttribute=cn\n"
           "AccountNamingAttribute=cn\n"
           "UserMandatoryAttributes=sn,OrvoUserType\n"
           "; The service account, and the file with its password.\n"
           "MemScriptUser=cn=orvo-service,ou=Services\n"
           "MemScriptCode=@file:" +
           (data / "service.code").string() +
           "\n"
           "CookieName=QUENDRAID\n\n"
           "[GLOBAL]\n"
           "; 1: a user may be logged in more than once at a time.\n"
           "MultiLogin=1\n"
           "MultiLoginTimeout=10\n\n"
           "[THROTTLE]\n"
           "; Who tries many passwords is slowed down and refused.\n"
           "On=yes\n";
}

// The service account's password: the one that the settings refer to, made where its file is not
// there.
std::string service_password(const SiteSettings& site, Made& made) {
    constexpr std::string_view in_file = "@file:";
    if (site.service_code.starts_with(in_file)) {
        const fs::path file = site.file.parent_path() / site.service_code.substr(in_file.size());
        if (!fs::exists(file)) {
            const std::string password = random_password(32);
            make_file(file, password + "\n", fs::perms::owner_read | fs::perms::owner_write, made);
            return password;
        }
    }
    return to_utf8(referred_value(from_utf8(site.service_code), site.file.parent_path()));
}

void make_directory(const SiteSettings& site, const InitRequest& request,
                    const Passwords& passwords, Made& made) {
    const fs::path file = site.server;
    make_folder(file.parent_path(), made);
    // Under its name it appears whole.
    fs::path making = file;
    making += ".making";
    for (const char* ending : {"", "-wal", "-shm"}) fs::remove(making.string() + ending);
    make_store({.store = making, .base = site.root});
    made.add(making);
    fill(*Store::open(making), site, request, passwords);
    fs::create_hard_link(making, file);
    made.add(file);
    fs::remove(making);
}

std::optional<passwd> user_of(const std::string& name) {
    const passwd* user = ::getpwnam(name.c_str());
    return user ? std::optional(*user) : std::nullopt;
}

// Root makes the files; who serves the site has to read them.
void hand_over(const std::string& owner, const Made& made) {
    const std::optional<passwd> user = user_of(owner.empty() ? "orvo" : owner);
    if (!user && !owner.empty()) throw std::runtime_error("there is no user '" + owner + "'");
    if (!user || ::geteuid() != 0) return;
    for (const fs::path& file : made.files())
        if (fs::exists(file) && ::chown(file.c_str(), user->pw_uid, user->pw_gid) != 0)
            throw std::system_error(errno, std::generic_category(), file.string());
}

}  // namespace

void init_site(const InitRequest& request) {
    const fs::path settings = fs::absolute(request.site.empty() ? usual_site_file() : request.site);
    Made made;
    const bool has_settings = fs::exists(settings);
    if (!has_settings)
        make_file(settings, new_settings(fs::absolute(request.data)),
                  fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read |
                      fs::perms::others_read,
                  made);
    const SiteSettings site = read_site_settings(settings);
    if (site.provider != "OrvoDirectory.Embedded")
        throw std::runtime_error(settings.string() + " names the provider " + site.provider +
                                 ": init makes embedded directories alone");
    if (fs::exists(site.server))
        throw std::runtime_error(site.server + ": there is a directory already");
    const Passwords passwords{service_password(site, made), random_password(16)};
    make_directory(site, request, passwords, made);
    hand_over(request.owner, made);
    std::cout << (has_settings ? "" : settings.string() + ": made.\n") << site.server
              << ": made, with the base " << site.root << ".\n\n"
              << "The first administrator is " << request.administrator
              << ". The password, which is shown only now and has to be changed\n"
              << "at the first login:\n\n    " << passwords.administrator << '\n';
    if (!std::cout.flush()) throw std::runtime_error("standard output cannot be written");
    made.keep();
}

}  // namespace orvo::admin
