#include "host/admin/diagnosis/why.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "host/admin/common/output.h"
#include "host/admin/common/password_input.h"
#include "host/admin/diagnosis/account_source.h"
#include "host/admin/diagnosis/content_steps.h"
#include "host/admin/diagnosis/report.h"
#include "host/admin/process/host_throttle.h"
#include "suite/directory/entries/audited.h"
#include "suite/directory/map/directory_map.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/names/name_parts.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"
#include "suite/throttle/attempt.h"

namespace orvo::admin {
namespace {

using namespace directory;

// As the commands for users take it: "jsmith" of "cn=jsmith", which a login takes, too.
std::string plain_name(const SiteSettings& site, const std::string& typed) {
    const auto parts = try_name_parts(to_utf8(escaped_name(from_utf8(typed))));
    if (!parts || parts->size() != 1 || parts->front().size() != 1) return typed;
    const NamePart& part = parts->front().front();
    return ascii::equal_ignoring_case(part.attribute, site.naming_attribute) ? part.value : typed;
}

// Who wants to log in, and what the steps so far have found.
struct Login {
    const WhyRequest& request;
    const SiteSettings& site;
    AccountSource& source;
    const std::string user;  // for the commands that are advised
    std::optional<Secret> password = {};

    std::string written = {};  // the name as the component completes what was typed
    std::string name = {};     // of the entry
    Account account = {};
    std::optional<EntryData> profile = {};

    int type() const {
        const std::string value = value_of(account.entry, "OrvoUserType");
        return value.empty() ? 0 : std::atoi(value.c_str());
    }
};

Finding no_such_user(const Login& login) {
    return failed("There is no such user.",
                  "Correct the name, or make the user: orvo users add " + shell_word(login.user));
}

Finding examine_name(Login& login) {
    const std::string container = below_root(login.site, login.site.users);
    const auto parsed = DistinguishedName::try_parse(from_utf8(container));
    // As the component completes what was typed.
    const std::string relative = login.request.user.find('=') == std::string::npos
                                     ? login.site.naming_attribute + "=" + login.request.user
                                     : login.request.user;
    const auto name =
        parsed ? name_below(from_utf8(relative + "," + container), *parsed) : std::nullopt;
    if (login.request.user.empty() || !name)
        return failed(quoted_name(login.request.user) + " cannot be the name of a user.");
    login.written = to_utf8(*name);
    const std::vector<std::string> called = login.source.all_called(login.written);
    if (called.empty()) return no_such_user(login);
    if (called.size() > 1)
        return failed("More than one user is called so, so nobody is: " + called[0] + " and " +
                          called[1] + ".",
                      "Let each log in by a name that is the user's alone.");
    login.name = called.front();
    return found("is " + login.name);
}

Finding examine_entry(Login& login) {
    auto entry = login.source.view().find(login.name);
    if (!entry) return no_such_user(login);
    login.account = {
        login.user,
        *std::move(entry),
        {},
        std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now())};
    login.account.policy = login.source.policy_of(login.account.entry);
    return found("is there");
}

template <auto part>
Finding told_by_directory(Login& login) {
    return (login.source.reader().*part)(login.account);
}

// Recorded as any other check.
Finding tried(Login& login) {
    return finding_of_check(audited_check(
        from_utf8(login.site.server), from_utf8(login.written),
        [&] { return CheckAnswer{login.source.log_in(login.account.entry, *login.password)}; }));
}

Finding examine_given_password(Login& login) {
    if (!login.password) return {Outcome::skipped, "not asked for; --password does"};
    if (login.password->empty()) return failed("An empty one is always refused.");
    return login.request.is_tried ? tried(login)
                                  : login.source.compare(login.account.entry, *login.password);
}

Finding examine_profile(Login& login) {
    const std::string name = value_of(login.account.entry, "ProfileCN");
    if (name.empty()) return found("the user has none");
    login.profile = login.source.view().find(
        entry_below(login.site, login.site.profile_naming_attribute, name, login.site.profiles));
    if (login.profile) return found(name);
    return failed("There is no profile " + quoted_name(name) + ", which the user has (ProfileCN).",
                  "Make it, or give the user another: orvo users profile " +
                      shell_word(login.user) + " --set PROFILE");
}

Finding examine_account(Login& login) {
    const std::string type = std::to_string(login.type());
    const std::string name =
        entry_below(login.site, login.site.account_naming_attribute, type, login.site.accounts);
    if (login.site.map && login.site.map->account_of(name))
        return found("type " + type + ", from DIRECTORY.MAP.ACCOUNTS");
    if (login.source.view().find(name)) return found("type " + type + ", " + name);
    return failed("There is no " + name + " for users of type " + type + ".",
                  "Make it, or correct the user's OrvoUserType.");
}

Finding examine_applications(Login& login) {
    constexpr int local_administrator = 3, administrator = 4;
    std::vector<std::string> numbers = values_of(login.account.entry, "OrvoApps");
    if ((numbers.empty() || numbers.front() == "0") && login.profile)
        numbers = values_of(*login.profile, "OrvoApps");
    if (!numbers.empty() && numbers.front() == "0") numbers.clear();
    const int type = login.type();
    if (type == local_administrator || type == administrator) numbers.emplace_back("10");
    if (numbers.empty())
        return found("none: the login succeeds, but opens no guarded page",
                     "orvo users apps " + shell_word(login.user) + " --add N");
    std::string text;
    for (const std::string& number : numbers) text += (text.empty() ? "" : ", ") + number;
    return found(text);
}

std::string words_of(const ThrottleBudget& budget) {
    if (budget.name == "known address") return "an address of the user's";
    if (budget.name == "address") return "this address, for whatever user";
    return budget.name;
}

// "3 of 10 wrong passwords from unknown addresses"
std::string counted_by(const ThrottleBudget& budget) {
    return std::to_string(budget.wrong) + " of " + std::to_string(budget.most) +
           " wrong passwords " + (budget.is_of_all_names ? "by all the user's names " : "") +
           "from " + words_of(budget);
}

// Of the name that was typed, and of the user where that is not the user's only one; nothing where
// no host runs.
std::optional<std::vector<ThrottleBudget>> budgets_of(const Login& login) {
    const auto of = [&](const std::string& name) {
        return throttle_of({login.site.file, login.request.socket, name}, login.request.address);
    };
    auto budgets = of(login.written);
    const auto key = [](const std::string& name) { return throttle::user_key(from_utf8(name)); };
    if (!budgets || key(login.name) == key(login.written)) return budgets;
    const auto of_user = of(login.name);
    if (!of_user) return std::nullopt;
    for (ThrottleBudget budget : *of_user) {
        budget.is_of_all_names = true;
        if (budget.name != "address") budgets->push_back(std::move(budget));
    }
    return budgets;
}

Finding examine_throttle(Login& login) {
    const auto budgets = budgets_of(login);
    if (!budgets)
        return unknown("no host runs at " + login.request.socket.string(),
                       "Name its AdminSocket with --socket.");
    std::string counted, refusing, user, address;
    int seconds = 0;
    for (const ThrottleBudget& budget : *budgets) {
        // Without an address it may be any of a browser's.
        const bool is_asked =
            login.request.address.empty() ? budget.name != "programs" : budget.is_asked;
        if (!is_asked || budget.wrong == 0) continue;
        std::string& text = budget.seconds > 0 ? refusing : counted;
        text += (text.empty() ? "" : ", ") + counted_by(budget);
        seconds = std::max(seconds, budget.seconds);
        if (budget.seconds == 0) continue;
        if (budget.name == "address")
            address = " --address " + shell_word(login.request.address);
        else
            user = " " + shell_word(login.user);
    }
    if (refusing.empty())
        return found(counted.empty() ? "no wrong passwords are counted" : counted);
    return failed(refusing + ": refused for " + std::to_string(seconds) + " seconds.",
                  "orvo users unlock" + user + address);
}

constexpr Step<Login> throttle_step{"throttle", "name", examine_throttle};
constexpr Step<Login> login_steps[] = {
    {"name", nullptr, examine_name},
    {"entry", "name", examine_entry},
    {"enabled", "entry", told_by_directory<&AccountReader::enabled>},
    {"locked", "entry", told_by_directory<&AccountReader::locked>},
    {"password's age", "entry", told_by_directory<&AccountReader::age>},
    {"password", "entry", examine_given_password},
    {"profile", "entry", examine_profile},
    {"account", "entry", examine_account},
    {"applications", "entry", examine_applications},
};

void write_conclusion(const Examination& examination) {
    std::string refusing;
    for (const auto& [step, finding] : examination.steps)
        if (finding.outcome == Outcome::failed) refusing += (refusing.empty() ? "" : ", ") + step;
    put(std::cout, refusing.empty() ? "\nNothing that was looked at refuses the login.\n"
                                    : "\nThe login is refused: " + refusing + ".\n");
}

}  // namespace

bool explain_login(const WhyRequest& request) {
    const SiteSettings site = read_site_settings(site_file(request.site));
    // The audit is the site's, too.
    setenv("ORVO_SITE_CONFIG", site.file.c_str(), 1);
    const std::unique_ptr<AccountSource> source = open_accounts(site);
    Login login{request, site, *source, plain_name(site, request.user)};
    if (request.has_password || request.is_tried) {
        std::string typed = read_password("Password of " + request.user);
        login.password = Secret::of_bytes(typed);
        overwrite(typed.data(), typed.size());
    }
    std::vector<Step<Login>> steps(std::begin(login_steps), std::end(login_steps));
    if (has_throttle(site.file)) steps.insert(steps.begin() + 1, throttle_step);
    const Examination examination{request.user, examine<Login>(steps, login)};
    constexpr const char* refused = "refused";
    if (request.is_json) {
        write_json(std::cout, {examination}, refused);
    } else {
        write_text(std::cout, {examination}, refused, Terminal::of_output());
        write_conclusion(examination);
    }
    return !examination.has_failed();
}

}  // namespace orvo::admin
