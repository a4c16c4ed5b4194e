#include "suite/authfilter/redis_store.h"

#include <algorithm>

#include "suite/authfilter/redis_scripts.h"
#include "suite/authfilter/user_key.h"

namespace orvo::authfilter {
namespace {

using std::chrono::milliseconds;
using store::Keyring;
using store::Reply;

std::string in_milliseconds(std::chrono::minutes time) {
    return std::to_string(milliseconds(time).count());
}

std::chrono::seconds seconds_of(const Reply& time) {
    return std::chrono::floor<std::chrono::seconds>(milliseconds(time.integer()));
}

// With all keys of the site, a blank between them.
std::string names(const Keyring& keyring, const std::string& guessable) {
    std::string all;
    for (const std::string& name : keyring.names_of(guessable))
        all += (all.empty() ? "" : " ") + name;
    return all;
}

// Empty for nobody.
std::string names_of_user(const Keyring& keyring, const Text& account_path, const Text& name) {
    const Text key = user_key_of(account_path, name);
    return key.empty() ? std::string() : names(keyring, to_utf8_with_halves(key));
}

std::string folded_names(const Keyring& keyring, const Text& name) {
    return names(keyring, to_utf8_with_halves(lower(name)));
}

// Which name and path a record is of, letter by letter.
std::string person(const Keyring& keyring, const Record& record) {
    const std::string name = to_utf8_with_halves(record.user_name);
    return names(keyring, std::to_string(name.size()) + ':' + name +
                              to_utf8_with_halves(record.account_path));
}

}  // namespace

std::string stored_name(const Text& guid) { return Keyring::name_of(to_utf8_with_halves(guid)); }

bool RedisStore::Live::has(std::int32_t application) const {
    return std::ranges::find(login.applications, application) != login.applications.end();
}

Text RedisStore::Live::user() const {
    return record && !record->account_path.empty() ? record->account_path : login.user;
}

RedisStore::RedisStore(std::shared_ptr<const store::SiteStore> site, Options options)
    : site_(std::move(site)), options_(std::move(options)), most_of_user_(options_.most_of_user) {}

std::optional<Record> RedisStore::find(const Text& guid) {
    const std::string name = stored_name(guid);
    const Reply reply = run_repeatable(scripts::find(), {name, lifetime()});
    if (reply.is_null()) return std::nullopt;
    return try_unseal_record(reply.text(), site_->keyring, record_key(name));
}

bool RedisStore::try_create(const Text& guid) {
    const std::string name = stored_name(guid);
    const auto try_create_for = [&](const std::string& unreadable) {
        return changed(run(scripts::create(),
                           {name, lifetime(), sealed_record({}, site_->keyring, record_key(name)),
                            most(), unreadable})) != 0;
    };
    if (try_create_for({})) return true;
    // What none of the keys has sealed is not there for `find`, nor may it be in the way here.
    const Reply held = run_repeatable(scripts::find(), {name, lifetime()});
    if (held.is_null() || try_unseal_record(held.text(), site_->keyring, record_key(name)))
        return false;
    return try_create_for(held.text());
}

void RedisStore::save(const Text& guid, const Record& record) {
    const std::string name = stored_name(guid);
    const Keyring& keyring = site_->keyring;
    changed(
        run(scripts::save(),
            {name, lifetime(), sealed_record(record, keyring, record_key(name)), most(),
             names_of_user(keyring, record.account_path, {}),
             names_of_user(keyring, record.account_path, record.user_name), person(keyring, record),
             record.user_name.empty() ? "0" : "1", folded_names(keyring, record.user_name)}));
}

void RedisStore::begin(const Login& login) {
    const std::string name = stored_name(login.guid);
    const Keyring& keyring = site_->keyring;
    changed(run(
        scripts::begin(),
        {name, lifetime(), sealed_login({login.user, login.applications}, keyring, login_key(name)),
         most(), names_of_user(keyring, {}, login.user), folded_names(keyring, login.user),
         login.is_only_one ? "1" : "0", in_milliseconds(login.timeout)}));
}

bool RedisStore::ask(const Text& guid, std::int32_t application) {
    const auto live = ask_all(guid);
    return live && live->has(application);
}

std::optional<RedisStore::Live> RedisStore::ask_all(const Text& guid) {
    const std::string name = stored_name(guid);
    return unsealed(run_repeatable(scripts::ask(), {name, lifetime()}), name);
}

Text RedisStore::user_of(const Text& guid) {
    const std::string name = stored_name(guid);
    const auto live = unsealed(run_repeatable(scripts::user_of(), {name}), name);
    return live ? live->user() : Text();
}

void RedisStore::forget(const Text& guid) {
    changed(run_repeatable(scripts::forget(), {stored_name(guid)}));
}

std::vector<LiveLoginFacts> RedisStore::logins_of(const Text& guid) {
    std::vector<LiveLoginFacts> facts;
    const Reply rows = run_repeatable(scripts::logins_of(), {stored_name(guid)});
    for (const Reply& row : rows.list()) {
        const Reply::List& cells = row.list();
        facts.push_back({static_cast<std::uint64_t>(cells.at(0).integer()), seconds_of(cells.at(1)),
                         seconds_of(cells.at(2)), cells.at(3).integer() != 0});
    }
    std::ranges::sort(facts, std::greater(), &LiveLoginFacts::number);
    return facts;
}

bool RedisStore::try_end(const Text& guid, std::uint64_t number) {
    return changed(run(scripts::end(), {stored_name(guid), std::to_string(number)})) != 0;
}

std::size_t RedisStore::end_others(const Text& guid) {
    return static_cast<std::size_t>(changed(run(scripts::end_others(), {stored_name(guid)})));
}

std::size_t RedisStore::end_all_of(const Text& account, const Text& except) {
    return static_cast<std::size_t>(changed(
        run_repeatable(scripts::end_all_of(), {names_of_user(site_->keyring, account, account),
                                               except.empty() ? "" : stored_name(except)})));
}

store::Reply RedisStore::run(const store::Script& script, Arguments arguments) {
    return site_->redis->run(script, {}, completed(std::move(arguments)));
}

store::Reply RedisStore::run_repeatable(const store::Script& script, Arguments arguments) {
    return site_->redis->run_repeatable(script, {}, completed(std::move(arguments)));
}

RedisStore::Arguments RedisStore::completed(Arguments arguments) const {
    const auto ahead = options_.ahead ? options_.ahead() : milliseconds(0);
    arguments.insert(arguments.begin(),
                     {site_->redis->settings().prefix, std::to_string(ahead.count())});
    return arguments;
}

// The answer, after telling whose records and logins are others now.
std::int64_t RedisStore::changed(const Reply& reply) const {
    if (options_.on_change)
        for (const Reply& name : reply.list().at(1).list()) options_.on_change(name.text());
    return reply.list().at(0).integer();
}

std::optional<RedisStore::Live> RedisStore::unsealed(const Reply& reply,
                                                     const std::string& name) const {
    if (reply.is_null()) return std::nullopt;
    const Reply::List& sealed = reply.list();
    auto login = try_unseal_login(sealed.at(0).text(), site_->keyring, login_key(name));
    if (!login) return std::nullopt;
    Live live{std::move(*login), {}};
    if (!sealed.at(1).is_null())
        live.record = try_unseal_record(sealed.at(1).text(), site_->keyring, record_key(name));
    return live;
}

std::string RedisStore::lifetime() const { return in_milliseconds(options_.record_lifetime); }

std::string RedisStore::record_key(const std::string& name) const {
    return site_->redis->key("record", name);
}

std::string RedisStore::login_key(const std::string& name) const {
    return site_->redis->key("login", name);
}

}  // namespace orvo::authfilter
