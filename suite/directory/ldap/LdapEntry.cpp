#include "suite/directory/ldap/LdapEntry.h"

#include <algorithm>
#include <utility>

#include "suite/directory/common/attribute_values.h"
#include "suite/directory/common/distinguished_name.h"
#include "suite/directory/common/password_hash.h"
#include "suite/directory/ldap/attribute_lookup.h"
#include "suite/directory/ldap/failures.h"
#include "suite/directory/ldap/password_value.h"
#include "suite/directory/ldap/write_marks.h"

namespace orvo::directory::ldap {
namespace {

using std::chrono::steady_clock;

// Asked for alone, it stands for "no attributes".
constexpr const char* no_attributes = "1.1";
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
    ServerLogin login(server, user, password, limits_);
    const Text name = entry_name(common_name, container_name(container));
    require_whole(name);
    name_ = to_utf8(name);
    const auto parsed = DistinguishedName::try_parse(name);
    key_ = parsed ? parsed->key() : name_;

    const std::vector<std::string> asked = names_in(attributes);
    if (is_cached(login, asked)) {
        login.authenticate();
    } else {
        fetched_ = read(login, asked, asked.empty() ? no_attributes : all_user_attributes);
        std::erase_if(fetched_.asked, is_password);
        std::erase_if(fetched_.entry.attributes,
                      [](const Attribute& attribute) { return is_password(attribute.name); });
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

// What is asked for by name and, where it is not null, `more`.
LdapEntry::Fetched LdapEntry::read(ServerLogin& login, const std::vector<std::string>& asked,
                                   const char* more) const {
    std::vector<std::string> wanted = asked;
    if (more) wanted.push_back(more);
    Fetched fetched;
    fetched.asked = asked;
    ReadResult result = login.run([&](Session& session) {
        fetched.write_mark = write_mark(key_);
        fetched.at = steady_clock::now();
        return session.read(name_, wanted);
    });
    check(result);
    fetched.entry = std::move(result.entry);
    if (EntryCache& cache = EntryCache::of_process(); cache.is_on())
        cache.add(cache_key(login), {fetched.entry.attributes, asked, more == all_user_attributes},
                  fetched.at, fetched.write_mark);
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

// Nothing for what was not fetched, or is a list that was read before. An attribute that the entry
// seems to lack may be one that the server sends only when asked by name.
std::optional<std::vector<std::string>> LdapEntry::take_fetched(const std::string& name,
                                                                const AttributeType* type) {
    if (steady_clock::now() - fetched_.at > fetched_lasts ||
        write_mark(key_) != fetched_.write_mark) {
        fetched_ = {};
        return std::nullopt;
    }
    const auto is_it = [&](const std::string& asked) { return facts_->types.same(asked, name); };
    auto& attributes = fetched_.entry.attributes;
    const auto found = find_attribute(attributes, name, facts_->types);
    if (found == attributes.end() && std::ranges::none_of(fetched_.asked, is_it))
        return std::nullopt;
    std::vector<std::string> values;
    if (found != attributes.end()) values = found->values;
    if (!type || !type->single_value) {
        std::erase_if(fetched_.asked, is_it);
        if (found != attributes.end()) attributes.erase(found);
    }
    return values;
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
    const Fetched fetched = read(*login_, {attribute}, nullptr);
    const auto& attributes = fetched.entry.attributes;
    const auto found = find_attribute(attributes, attribute, facts_->types);
    return decode_values(type,
                         found == attributes.end() ? std::vector<std::string>() : found->values);
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
    if (password.empty()) {
        replace(name, {});
        login_->password_changed(key_, password);
        return;
    }
    if (!facts().changes_passwords) {
        replace(name, {hashed_password(password)});
    } else {
        const NotedWrite noted(key_);
        check(login_->run(
            [&](Session& session) { return session.change_password(name_, password); }));
    }
    login_->password_changed(key_, password);
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
