#include "host/settings/settings_page.h"

#include <vector>

#include "component/auth/login_settings.h"
#include "component/config/ServerInfo.h"
#include "host/web/site/site.h"
#include "suite/audit/audit_settings.h"
#include "suite/directory/map/map_reader.h"
#include "suite/directory/settings/cache_settings.h"
#include "suite/directory/settings/pool_settings.h"
#include "suite/log/log_target.h"
#include "suite/store/store_settings.h"
#include "suite/throttle/throttle_settings.h"

namespace orvo {
namespace {

std::string code(const std::string& text) { return text.empty() ? "" : "`" + text + "`"; }

std::string table(const std::vector<DescribedSetting>& settings) {
    std::string text = "| Key | Values | Without it | |\n|---|---|---|---|\n";
    for (const DescribedSetting& setting : settings)
        text += "| " + code(setting.name) + " | " + setting.values + " | " + setting.otherwise +
                " | " + setting.about + " |\n";
    return text + "\n";
}

template <class T>
DescribedSetting told(const LoginSetting<T>& setting) {
    return {to_utf8(setting.key), setting.values, std::to_string(setting.otherwise), setting.about};
}

struct Variable {
    const char* name;
    const char* about;
};
constexpr Variable variables[] = {
    {"ORVO_COMPONENTS",
     "Folders of manifests, with `:` between, in front of the user's and the system's; "
     "`orvo-register` writes into the first. Read on Linux."},
    {"XDG_DATA_HOME",
     "Where the user's own manifests lie, in `orvo/components`; an absolute path."},
    {"HOME",
     "Without `XDG_DATA_HOME` the user's manifests lie in `.local/share/orvo/components` below it, "
     "without `XDG_STATE_HOME` the log in `.local/state/orvo`."},
    {"ORVO_SITE_CONFIG",
     "The site's configuration file, which must be there; without it `/etc/orvo/site.ini`, on "
     "Windows `%ProgramData%\\orvo\\site.ini`, which need not."},
    {"ORVO_SITE_BY_DEFAULT",
     "`1`: objects that nobody gives a configuration take the site's when they first need it. "
     "`orvo-script` sets it where it is not set."},
    {"ProgramData", "Windows' folder for the settings of all users."},
    {"CREDENTIALS_DIRECTORY", "Where `@credential:NAME` is looked for; systemd sets it."},
    {"NOTIFY_SOCKET", "Where `orvo-web` tells that it serves, reloads and ends; systemd sets it."},
    {"RUNTIME_DIRECTORY",
     "The folder in which `orvo-web` makes its administration socket where the site names none; "
     "systemd sets it."},
    {"WATCHDOG_USEC",
     "Microseconds after which systemd takes a service for hung; `orvo-web` tells twice as often "
     "that "
     "it is not."},
    {"WATCHDOG_PID", "Whose watchdog that is; `orvo-web` passes over another process's."},
    {"ORVO_LOG_FILE", "The log's file."},
    {"ORVO_LOG_STDERR",
     "`1`: the log is written to the standard error; without `ORVO_LOG_FILE` to that alone."},
    {"ORVO_LOG_LEVEL", "`error`: errors alone. Any other text, and none: notes, too."},
    {"XDG_STATE_HOME",
     "Where the log lies without the variables above: `orvo/orvo.log`; an absolute path. Without "
     "any "
     "folder the log is the standard error."},
    {"LOCALAPPDATA", "The same on Windows."},
    {"TERM", "`dumb`, or nothing: `orvo` writes no colours."},
    {"NO_COLOR", "Anything: `orvo` writes no colours."},
};

}  // namespace

std::string settings_page() {
    const LogTarget log;
    std::string page =
        "# Settings\n\n"
        "Written from the tables of those who read them by `orvo-settings`; not edited by hand.\n\n"
        "Names of sections and keys have no case. A value is everything behind the first `=` or "
        "`:` "
        "of its line, without the blanks around it: it knows neither quotes nor escapes, and no "
        "comment stands behind it. Comments are lines of their own that begin with `;` or `#`. A "
        "value may stand elsewhere: `@file:PATH` is the one line of a file, counted from the "
        "folder of the settings, `@credential:NAME` a "
        "file of systemd's, `@env:NAME` a variable.\n\n"
        "## The site's configuration\n\n"
        "The file that `ORVO_SITE_CONFIG` names, or that a program gives to `setServerInfo` or "
        "`SetConfiguration`. The component asks for the keys that it needs; it passes over "
        "sections "
        "and keys that are not listed here, which may belong to other programs.\n\n"
        "### [MEMBERSHIP]\n\n" +
        table(ServerInfo::described_settings()) +
        "`LDAPServer` of the LDAP provider: [provider.md](../provider.md); of the embedded "
        "directory: "
        "[embedded.md](../embedded.md).\n\n"
        "### [GLOBAL]\n\n" +
        table({told(multi_login), told(multi_login_timeout)}) +
        "### [AUDIT]\n\n"
        "Who logs in and who changes what: [audit.md](../audit.md). Read from the site's own file; "
        "a "
        "key that is not listed here keeps everybody out.\n\n" +
        table(audit::described_settings()) +
        "### [STORE]\n\n"
        "What several machines of a site share: [store.md](../store.md). Read from the site's own "
        "file, once per process; a key that is not listed here keeps everybody out.\n\n" +
        table(store::described_settings()) +
        "### [THROTTLE]\n\n"
        "Who tries many passwords is slowed down and refused: "
        "[login.md](../login.md#too-many-attempts). Read from the site's own file; without the "
        "section there is no throttle, a key that is not listed here keeps everybody out.\n\n" +
        table(throttle::described_settings()) +
        "### [DIRECTORY.MAP]\n\n"
        "A directory that does not know the product's schema: "
        "[directory-map.md](../directory-map.md). Any other key is the name of one of the "
        "product's attributes, its value those of the directory, with `|` between. What is not "
        "known here is refused (0x8007203F).\n\n" +
        table(directory::described_map_settings()) +
        "`[DIRECTORY.MAP.DEFAULTS]` has values of users who have none, "
        "`[DIRECTORY.MAP.VALUES.attribute]` values and what they are there, "
        "`[DIRECTORY.MAP.CLASSES]` names of classes, `[DIRECTORY.MAP.ACCOUNTS]` the accounts for "
        "types of users (`1.User`, `1.Password`), `[DIRECTORY.MAP.GROUPS.attribute]` values and "
        "the groups whose members have them.\n\n"
        "### [DIRECTORY.MAP.GROUPS]\n\n" +
        table(directory::described_group_settings()) +
        "## The directory's configuration\n\n"
        "The file that `ConfigFileName` names, in the folder `Config` beside the site's "
        "configuration. `LdapAccess.BindToConfig` reads it.\n\n"
        "### [ConfigDN]\n\n" +
        table({{"dn", "distinguished name", "BindToConfig fails (0x80072030)",
                "The entry that keeps the settings of the whole site, its full name."}}) +
        "### [Attributes]\n\n"
        "Every key is a name that programs use, its value the directory's attribute "
        "(`Company=CompanyName`); `LdapAccess.GetAttributeName` looks it up.\n\n"
        "## A web site: site.ini, [SITE]\n\n"
        "The file `site.ini` in the folder of the site that `orvo-web` serves, or the one that "
        "`--config` names. Keys and sections that are not listed here keep the site from "
        "starting.\n\n" +
        table(web::described_site_settings()) +
        "## The directory provider\n\n"
        "Given to `OrvoMembership.Initialize` as two arrays, of names and of values, or to a web "
        "site as `DirectoryPool` and `DirectoryCache`. A name that is not listed here and a number "
        "out of its range are refused (0x8007203F).\n\n"
        "### Pool\n\n" +
        table(directory::described_pool_settings()) + "### Cache\n\n" +
        table(directory::described_cache_settings()) +
        "## The environment\n\n| Variable | |\n|---|---|\n";
    for (const Variable& variable : variables)
        page += "| " + code(variable.name) + " | " + variable.about + " |\n";
    return page + "\nThe log's file is renamed before it would be larger than " +
           std::to_string(log.largest_file >> 20) +
           " MiB (`orvo.log` becomes `orvo.1.log`, that becomes `orvo.2.log`); together there are "
           "never more than " +
           std::to_string(log.file_count) + " files.\n";
}

}  // namespace orvo
