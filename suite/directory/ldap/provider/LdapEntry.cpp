#include "suite/directory/ldap/provider/LdapEntry.h"

#include <algorithm>
#include <utility>

#include "suite/directory/entries/audited.h"
#include "suite/directory/entries/proven_password.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/password_attributes.h"
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
    ProvenPassword::forget();
    login_.reset();
    facts_.reset();
    known_ = {};
    lists_read_.clear();
    name_.clear();
    ServerLogin login(client_.pool(), server, user, password, limits_);
    server_ = server;
    const Text name = entry_name(common_name, container_name(container));
    require_whole(name);
    name_ = to_utf8(name);
    key_ = name_ == login.user() ? login.user_key() : EntryKey(name_);

    const std::vector<std::string> asked = names_in(attributes);
    known_ = client_.cache().find(cache_key(login));
    // An entry that is known is there.
    if (known_.entry && (known_.entry->is_whole || asked.empty()))
        login.authenticate();
    else
        known_ = remember(login, read(login, asked, true));
    login_ = std::move(login);
}

CacheKey LdapEntry::cache_key(const ServerLogin& login) const {
    return {login.server_key(), login.user(), name_, key_};
}

LdapEntry::Reading LdapEntry::read(ServerLogin& login, std::vector<std::string> asked,
                                   bool is_whole) const {
    std::vector<std::string> wanted = asked;
    if (is_whole) wanted.push_back(all_user_attributes);
    Reading reading;
    ReadResult result = login.read(name_, [&](Session& session) {
        reading.write_mark = client_.writes().mark(key_);
        reading.at = client_.pool().clock().now();
        return session.read(name_, wanted);
    });
    check(result);
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
    const AttributeTypes& types = facts().types;
    if (const auto* known = types.find(name)) return known;
    if (types.empty()) return nullptr;  // this user may not read the schema
    facts_ = login_->refreshed_facts();
    return facts_->types.find(name);
}

bool LdapEntry::is_first_reading(const std::string& list) {
    const auto is_it = [&](const std::string& other) { return facts_->types.same(other, list); };
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
    return known_.entry ? known_.entry->try_values(name, facts_->types) : std::nullopt;
}

Variant LdapEntry::GetValues(Text& name) {
    require_bound();
    if (name.empty()) raise_runtime_error(runtime_error::invalid_call);
    require_whole(name);
    const std::string attribute = to_utf8(name);
    const AttributeType* type = type_of(attribute);
    if (const auto known = try_known(attribute, type)) return decode_values(type, *known);
    Reading fresh = read(*login_, {attribute}, false);
    const auto values = fresh.entry.try_values(attribute, facts_->types);
    // Without room in the cache only what a bind fetches is kept.
    if (client_.cache().is_on()) known_ = remember(*login_, std::move(fresh));
    return decode_values(type, *values);
}

void LdapEntry::SetValues(Text& name, Variant& value) {
    require_bound();
    require_whole(name);
    const std::string attribute = to_utf8(name);
    audited_change(change_of(attribute), [&] {
        if (is_password(attribute)) return set_password(value);
        replace(attribute, encode_values(type_of(attribute), value));
    });
}

void LdapEntry::ClearValues(Text& name) {
    require_bound();
    require_whole(name);
    const std::string attribute = to_utf8(name);
    audited_change(change_of(attribute), [&] {
        if (is_password(attribute)) return clear_password(attribute);
        replace(attribute, {});
    });
}

AuditedChange LdapEntry::change_of(const std::string& attribute) const {
    return {event_of_change(attribute), server_, name_, login_->user(), attribute};
}

void LdapEntry::replace(const std::string& name, std::vector<std::string> values) {
    if (name.empty()) raise_runtime_error(runtime_error::invalid_call);
    const Replacement replacement{name, std::move(values)};
    const NotedWrite noted(client_.writes(), key_);
    check(login_->write(name_, [&](Session& session) {
        return session.modify(name_, {&replacement, 1});
    }));
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
