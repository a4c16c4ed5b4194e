#include "suite/directory/ldap/provider/LdapEntry.h"

#include <algorithm>
#include <utility>

#include "suite/directory/ldap/memory/write_marks.h"
#include "suite/directory/ldap/provider/password_value.h"
#include "suite/directory/ldap/wire/failures.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/password_attributes.h"
#include "suite/directory/policy/password_hash.h"
#include "suite/directory/schema/attribute_values.h"

namespace orvo::directory::ldap {
namespace {

using std::chrono::steady_clock;

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

void LdapEntry::Bind(Text& server, Text& container, Text& common_name, Text& user, Text& password,
                     Variant& attributes) {
    login_.reset();
    facts_.reset();
    fetched_ = {};
    name_.clear();
    ServerLogin login(server, user, password, limits_);
    const Text name = entry_name(common_name, container_name(container));
    require_whole(name);
    name_ = to_utf8(name);
    key_ = name_ == login.user() ? login.user_key() : EntryKey(name_);

    const std::vector<std::string> asked = names_in(attributes);
    if (is_cached(login, asked)) {
        login.authenticate();
    } else {
        fetched_ = read(login, asked, true);
        fetched_.entry.forget_secrets();
    }
    login_ = std::move(login);
}

CacheKey LdapEntry::cache_key(const ServerLogin& login) const {
    return {login.server_key(), login.user(), name_, key_};
}

std::shared_ptr<const KnownEntry> LdapEntry::try_cached(const ServerLogin& login) const {
    EntryCache& cache = EntryCache::of_process();
    return cache.is_on() ? cache.find(cache_key(login)) : nullptr;
}

// Whether the cache knows what Bind would fetch. An entry that it knows is there.
bool LdapEntry::is_cached(const ServerLogin& login, const std::vector<std::string>& asked) const {
    const auto known = try_cached(login);
    return known && (known->is_whole || asked.empty());
}

LdapEntry::Fetched LdapEntry::read(ServerLogin& login, std::vector<std::string> asked,
                                   bool is_whole) const {
    std::vector<std::string> wanted = asked;
    if (is_whole) wanted.push_back(all_user_attributes);
    Fetched fetched;
    ReadResult result = login.run([&](Session& session) {
        fetched.write_mark = write_mark(key_);
        fetched.at = steady_clock::now();
        return session.read(name_, wanted);
    });
    check(result);
    fetched.entry = {std::move(result.entry.attributes), std::move(asked), is_whole};
    if (EntryCache& cache = EntryCache::of_process(); cache.is_on())
        cache.add(cache_key(login), fetched.entry, fetched.at, fetched.write_mark);
    return fetched;
}

Result LdapEntry::change(const std::function<Result(Session&)>& operation) {
    return login_->run(operation);
}

const ServerFacts& LdapEntry::facts() {
    if (!facts_) facts_ = stored_facts(login_->server_key());
    if (!facts_) {
        FactsResult result =
            login_->run([&](Session& session) { return facts_of(session, login_->server_key()); });
        check(result);
        facts_ = std::move(result.facts);
    }
    return *facts_;
}

const AttributeType* LdapEntry::type_of(const std::string& name) {
    const AttributeTypes& types = facts().types;
    if (const auto* known = types.find(name)) return known;
    if (types.empty()) return nullptr;  // this user may not read the schema
    FactsResult result = login_->run(
        [&](Session& session) { return refreshed_facts_of(session, login_->server_key()); });
    check(result);
    facts_ = std::move(result.facts);
    return facts_->types.find(name);
}

// Nothing for what was not fetched, and for a list that was read before.
std::optional<std::vector<std::string>> LdapEntry::take_fetched(const std::string& name,
                                                                const AttributeType* type) {
    if (steady_clock::now() - fetched_.at > fetched_lasts ||
        write_mark(key_) != fetched_.write_mark) {
        fetched_ = {};
        return std::nullopt;
    }
    if (!type || !type->single_value) {
        auto& lists = fetched_.lists_read;
        const auto is_it = [&](const std::string& list) { return facts_->types.same(list, name); };
        if (std::ranges::any_of(lists, is_it)) return std::nullopt;
        lists.push_back(name);
    }
    return fetched_.entry.try_values(name, facts_->types);
}

Variant LdapEntry::GetValues(Text& name) {
    require_bound();
    if (name.empty()) raise_runtime_error(runtime_error::invalid_call);
    require_whole(name);
    const std::string attribute = to_utf8(name);
    const AttributeType* type = type_of(attribute);
    if (const auto fetched = take_fetched(attribute, type)) return decode_values(type, *fetched);
    if (const auto known = try_cached(*login_))
        if (const auto cached = known->try_values(attribute, facts_->types))
            return decode_values(type, *cached);
    return decode_values(
        type, *read(*login_, {attribute}, false).entry.try_values(attribute, facts_->types));
}

void LdapEntry::SetValues(Text& name, Variant& value) {
    require_bound();
    require_whole(name);
    const std::string attribute = to_utf8(name);
    if (is_password(attribute)) return write_password(attribute, value);
    replace(attribute, encode_values(type_of(attribute), value));
}

void LdapEntry::ClearValues(Text& name) {
    require_bound();
    require_whole(name);
    const std::string attribute = to_utf8(name);
    if (is_password(attribute)) return write_password(attribute, Variant());
    replace(attribute, {});
}

void LdapEntry::write_password(const std::string& name, const Variant& value) {
    const Secret password = password_in(value);
    const bool server_hashes = !password.empty() && facts().changes_passwords;
    Replacement replacement{name, {}};
    if (!password.empty() && !server_hashes) replacement.values = {hashed_password(password)};
    const NotedWrite noted(key_);
    bool was_lost = false;
    try {
        check(login_->run_login_change(key_, password, [&](Session& session) {
            Result result = server_hashes ? session.change_password(name_, password)
                                          : session.modify(name_, {&replacement, 1});
            was_lost |= result.connection_failed();
            return result;
        }));
    } catch (const Failure& failure) {
        if (!was_lost) throw;
        throw Failure(failure.number, failure.source,
                      failure.description + u" The password may have been changed all the same.");
    }
}

void LdapEntry::replace(const std::string& name, std::vector<std::string> values) {
    if (name.empty()) raise_runtime_error(runtime_error::invalid_call);
    const Replacement replacement{name, std::move(values)};
    const NotedWrite noted(key_);
    check(login_->run([&](Session& session) { return session.modify(name_, {&replacement, 1}); }));
}

void LdapEntry::require_bound() const {
    if (!login_) raise_runtime_error(runtime_error::object_not_set);
}

bool LdapEntry::InitializeConnectionPool(Variant& names, Variant& values) {
    ConnectionPool::of_process().configure(names, values);
    return true;
}

bool LdapEntry::InitializeCache(Variant& names, Variant& values) {
    EntryCache::of_process().configure(names, values);
    return true;
}

}  // namespace orvo::directory::ldap
