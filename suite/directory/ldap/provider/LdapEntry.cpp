#include "suite/directory/ldap/provider/LdapEntry.h"

#include <algorithm>
#include <utility>

#include "suite/directory/entries/ended_logins.h"
#include "suite/directory/entries/proven_password.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/policy/result_codes.h"
#include "suite/directory/schema/attribute_values.h"

namespace orvo::directory::ldap {
namespace {

constexpr const char* all_user_attributes = "*";

std::vector<std::string> names_in(const Variant& attributes) {
    std::vector<std::string> names;
    if (!attributes.is_array()) return names;
    for (const Variant& name : attributes.to<Values>()) {
        const Text text = name.to<Text>();
        if (!text.empty()) names.push_back(to_utf8(text));
    }
    return names;
}

}  // namespace

void LdapEntry::Bind(Text& server, Text& container, Text& common_name, Text& user, Secret& password,
                     Variant& attributes) {
    audited_bind(server, user,
                 [&] { bind(server, container, common_name, user, password, attributes); });
}

void LdapEntry::bind(TextView server, TextView container, TextView common_name, TextView user,
                     const Secret& password, const Variant& attributes) {
    ProvenPassword::forget();
    login_.reset();
    facts_.reset();
    known_ = {};
    lists_read_.clear();
    name_.clear();
    account_ = nullptr;
    mapped_ = MappedDirectory::try_open(client_, server, container, limits_);
    ServerLogin login = mapped_ ? mapped_->login(user, password)
                                : ServerLogin(client_.pool(), server, user, password, limits_);
    server_ = server;
    find_entry(container, common_name);
    key_ = name_ == login.user() ? login.user_key() : EntryKey(name_);
    if (account_ && !(login.user_key() == EntryKey(mapped_->map().service_user.name)))
        raise_code(result_code::insufficient_access,
                   "The accounts of the directory's map are the service account's alone.");
    if (mapped_) {
        facts_ = login.facts();
        mapped_->learn(facts_);
    }

    const std::vector<std::string> asked = names_in(attributes);
    if (account_) {
        login.authenticate();
        login_ = std::move(login);
        return;
    }
    known_ = client_.cache().find(cache_key(login));
    // An entry that is known is there.
    if (known_.entry && (known_.entry->is_whole || asked.empty()))
        login.authenticate();
    else
        known_ = remember(login, read(login, asked, true));
    login_ = std::move(login);
}

void LdapEntry::find_entry(TextView container, TextView common_name) {
    const Text name = entry_name(common_name, container_name(container));
    require_whole(name);
    name_ = to_utf8(name);
    if (!mapped_) return;
    account_ = mapped_->map().account_of(name_);
    if (!account_) name_ = mapped_->require(name_);
}

CacheKey LdapEntry::cache_key(const ServerLogin& login) const {
    return {login.server_key(), login.user(), name_, key_};
}

LdapEntry::Reading LdapEntry::read(ServerLogin& login, std::vector<std::string> asked,
                                   bool is_whole) const {
    std::vector<std::string> wanted = asked;
    if (is_whole) wanted.push_back(all_user_attributes);
    const std::vector<std::string> ours = wanted;
    if (mapped_) wanted = mapped_->translation().asked(ours);
    Reading reading;
    ReadResult result = login.read(name_, [&](Session& session) {
        reading.write_mark = client_.writes().mark(key_);
        reading.at = client_.pool().clock().now();
        return session.read(name_, wanted);
    });
    check(result);
    if (mapped_) {
        result.entry = mapped_->translation().ours(std::move(result.entry), ours);
        for (std::string& name : wanted)
            if (name != all_user_attributes) asked.push_back(std::move(name));
    }
    reading.entry = {std::move(result.entry.attributes), std::move(asked), is_whole};
    return reading;
}

Remembered LdapEntry::remember(const ServerLogin& login, Reading reading) const {
    return client_.cache().add(cache_key(login), std::move(reading.entry), reading.at,
                               reading.write_mark);
}

const ServerFacts& LdapEntry::facts() {
    if (!facts_) facts_ = login_->facts();
    return *facts_;
}

const AttributeType* LdapEntry::type_of(const std::string& name) {
    const AttributeTypes& known_types = types();
    if (const auto* known = known_types.find(name)) return known;
    if (facts_->types.empty()) return nullptr;  // this user may not read the schema
    facts_ = login_->refreshed_facts();
    if (mapped_) mapped_->learn(facts_);
    return types().find(name);
}

bool LdapEntry::is_first_reading(const std::string& list) {
    const auto is_it = [&](const std::string& other) {
        return types_in(*facts_).same(other, list);
    };
    if (std::ranges::any_of(lists_read_, is_it)) return false;
    lists_read_.push_back(list);
    return true;
}

std::optional<std::vector<std::string>> LdapEntry::try_known(const std::string& name,
                                                             const AttributeType* type) {
    EntryCache& cache = client_.cache();
    const bool is_list = !type || !type->single_value;
    if (is_list && !is_first_reading(name) && !cache.is_on()) return std::nullopt;
    if (!cache.is_current(known_, key_)) known_ = cache.find(cache_key(*login_));
    return known_.entry ? known_.entry->try_values(name, types_in(*facts_)) : std::nullopt;
}

Variant LdapEntry::GetValues(Text& name) {
    require_bound();
    if (name.empty()) raise_runtime_error(runtime_error::invalid_call);
    require_whole(name);
    const std::string attribute = to_utf8(name);
    const std::vector<std::string> values = current_values(attribute);
    return decode_values(type_of(attribute), values);
}

std::vector<std::string> LdapEntry::current_values(const std::string& attribute) {
    if (account_) return account_values(attribute);
    if (const auto* of_groups = attribute_of_groups(attribute)) return values_of_groups(*of_groups);
    if (auto known = try_known(attribute, type_of(attribute))) return std::move(*known);
    Reading fresh = read(*login_, {attribute}, false);
    auto values = fresh.entry.try_values(attribute, types_in(*facts_));
    // Without room in the cache only what a bind fetches is kept.
    if (client_.cache().is_on()) known_ = remember(*login_, std::move(fresh));
    return std::move(*values);
}

void LdapEntry::SetValues(Text& name, Variant& value) {
    require_bound();
    require_whole(name);
    const std::string attribute = to_utf8(name);
    audited_account_change(change_of(attribute), [&](EndedLogins& ended) {
        if (is_password(attribute)) {
            ended = {.accounts = accounts_of(name_), .spares_own = true};
            return set_password(value, ended.may_be_done);
        }
        std::vector<std::string> values = encode_values(type_of(attribute), value);
        if (disables_account(attribute, values)) ended.accounts = accounts_of(name_);
        replace(attribute, std::move(values), ended.may_be_done);
    });
}

void LdapEntry::ClearValues(Text& name) {
    require_bound();
    require_whole(name);
    const std::string attribute = to_utf8(name);
    audited_account_change(change_of(attribute), [&](EndedLogins& ended) {
        if (!is_password(attribute)) return replace(attribute, {}, ended.may_be_done);
        ended = {.accounts = accounts_of(name_), .spares_own = true};
        clear_password(attribute, ended.may_be_done);
    });
}

std::vector<std::string> LdapEntry::accounts_of(const std::string& name) {
    return mapped_ ? mapped_->login_names(name) : std::vector{name};
}

AuditedChange LdapEntry::change_of(const std::string& attribute) const {
    return {event_of_change(attribute), server_, name_, login_->user(), attribute};
}

void LdapEntry::replace(const std::string& name, std::vector<std::string> values,
                        bool& may_be_done) {
    if (name.empty()) raise_runtime_error(runtime_error::invalid_call);
    if (account_)
        raise_code(result_code::unwilling_to_perform,
                   "This account is the configuration's ([DIRECTORY.MAP.ACCOUNTS]).");
    if (const auto* of_groups = attribute_of_groups(name)) return assign_groups(*of_groups, values);
    std::vector<Replacement> changes;
    if (mapped_) {
        changes = mapped_->translation().changes(name, values);
        if (changes.empty()) return;
    } else {
        changes.push_back({name, std::move(values)});
    }
    const bool is_unlocking = changes.size() == 1 && changes.front().values.empty() &&
                              is_account_lock(changes.front().attribute);
    if (is_unlocking) changes.front().kind = Change::remove;
    const NotedWrite noted(client_.writes(), key_);
    const Result result = login_->write(name_, [&](Session& session) {
        Result modified = session.modify(name_, changes);
        may_be_done |= modified.may_be_done();
        return modified;
    });
    if (is_unlocking && result.code == result_code::no_such_attribute) return;
    check(result);
}

void LdapEntry::require_bound() const {
    if (!login_) raise_runtime_error(runtime_error::object_not_set);
}

Boolean LdapEntry::InitializeConnectionPool(Variant& names, Variant& values) {
    client_.pool().configure(names, values);
    return true;
}

Boolean LdapEntry::InitializeCache(Variant& names, Variant& values) {
    client_.cache().configure(names, values);
    return true;
}

}  // namespace orvo::directory::ldap
