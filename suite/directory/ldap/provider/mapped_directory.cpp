#include "suite/directory/ldap/provider/mapped_directory.h"

#include <algorithm>
#include <utility>

#include "suite/configuration/value_reference.h"
#include "suite/directory/entries/login_name.h"
#include "suite/directory/filters/filter.h"
#include "suite/directory/ldap/wire/paged_results.h"
#include "suite/directory/names/name_parts.h"
#include "suite/directory/names/naming_types.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap {
namespace {

constexpr int page_size = 1000;
// One more than there may be.
constexpr std::size_t too_many_users = 2;

bool is_same_type(const std::string& one, const std::string& other) {
    return naming_type(ascii::lower(one)) == naming_type(ascii::lower(other));
}

}  // namespace

std::optional<MappedDirectory> MappedDirectory::try_open(Client& client, TextView server,
                                                         TextView container,
                                                         const std::optional<Limits>& limits) {
    auto map = client.maps().find(server, container);
    if (!map) return std::nullopt;
    return MappedDirectory(client, server, std::move(map), limits);
}

void MappedDirectory::learn(const std::shared_ptr<const ServerFacts>& facts) {
    if (facts == facts_) return;
    types_ = client_->maps().types_of(facts);
    facts_ = facts;
}

ServerLogin& MappedDirectory::service() {
    if (!service_) {
        const Secret code(referred_value(map_->service_code, map_->file.parent_path()));
        service_.emplace(client_->pool(), server_, from_utf8(map_->service_user.name), code,
                         limits_);
    }
    return *service_;
}

template <class Body>
auto MappedDirectory::as_service(Body body) {
    try {
        return body(service());
    } catch (const Failure& failure) {
        const bool is_refused = failure.number == number_of_code(result_code::invalid_credentials);
        throw Failure(
            is_refused ? number_of_code(result_code::insufficient_access) : failure.number,
            failure.source,
            u"The service account (MemScriptUser) cannot look into the directory: " +
                failure.description);
    }
}

std::vector<std::string> MappedDirectory::names_found(SearchRequest request, std::size_t most,
                                                      Known known) {
    // Any entry's writing may change what is found, so the key is any entry's.
    const CacheKey key{service().server_key(), service().user(),
                       "search " + std::to_string(static_cast<int>(request.scope)) + ' ' +
                           request.base + ' ' + request.filter,
                       EntryKey("")};
    if (known == Known::used) {
        const Remembered kept = client_->cache().find(key);
        if (kept.entry) return kept.entry->attributes.front().values;
    }
    request.attributes = {"1.1"};
    request.page_size = static_cast<int>(std::min<std::size_t>(most, page_size));
    std::vector<std::string> names;
    std::uint64_t mark = 0;
    Clock::time_point at;
    as_service([&](ServerLogin& service) {
        check(service.search([&](Session& session) {
            mark = client_->writes().mark(key.mark);
            at = client_->pool().clock().now();
            names.clear();
            const auto take = [&](EntryData&& entry) {
                if (names.size() < most) names.push_back(std::move(entry.name));
            };
            if (most <= page_size) return Result(session.search(request, take));
            return collect_pages(session, request, page_size, take);
        }));
    });
    // What was not found may be there the next moment.
    if (!names.empty())
        client_->cache().add(key, {.attributes = {{"names", names}}, .asked = {}}, at, mark);
    return names;
}

std::vector<EntryData> MappedDirectory::entries_found(const SearchRequest& request) {
    std::vector<EntryData> entries;
    as_service([&](ServerLogin& service) {
        check(service.search([&](Session& session) {
            entries.clear();
            return collect_pages(session, request, page_size,
                                 [&](EntryData&& entry) { entries.push_back(std::move(entry)); });
        }));
    });
    return entries;
}

// How a user of this name is searched for; nothing where the name says where it is.
std::optional<SearchRequest> MappedDirectory::user_search(const std::string& name) const {
    if (!map_->login) return std::nullopt;
    const auto parsed = DistinguishedName::try_parse(from_utf8(name));
    if (!parsed || parsed->depth() == 0 || !(parsed->parent() == map_->user_container.key) ||
        *parsed == map_->service_user.key)
        return std::nullopt;
    const auto parts = try_name_parts(name);
    if (!parts || parts->front().size() != 1) return std::nullopt;
    const NamePart& naming = parts->front().front();

    Filter any{.kind = Filter::Kind::any_of};
    const bool is_any = is_same_type(naming.attribute, map_->naming_attribute);
    for (const std::string& attribute : map_->login->attributes)
        if (is_any || is_same_type(attribute, naming.attribute))
            any.parts.push_back(
                {.kind = Filter::Kind::equality, .attribute = attribute, .value = naming.value});
    if (any.parts.empty()) return std::nullopt;
    Filter filter{.kind = Filter::Kind::all_of, .parts = {std::move(any)}};
    if (!map_->user_class.empty())
        filter.parts.insert(filter.parts.begin(), {.kind = Filter::Kind::equality,
                                                   .attribute = "objectClass",
                                                   .value = map_->their_class(map_->user_class)});
    SearchRequest request;
    request.base = map_->user_container.name;
    request.scope = map_->login->scope;
    request.filter = filter.text();
    return request;
}

std::vector<std::string> MappedDirectory::all_called(const std::string& name) {
    const std::optional<SearchRequest> request = user_search(name);
    if (request) return names_found(*request, too_many_users);
    return {map_->login ? name : map_->their_name(name)};
}

std::optional<std::string> MappedDirectory::find(const std::string& name) {
    std::vector<std::string> found = all_called(name);
    if (found.size() != 1) return std::nullopt;
    return std::move(found.front());
}

std::string MappedDirectory::require(const std::string& name) {
    std::vector<std::string> found = all_called(name);
    if (found.size() == 1) return std::move(found.front());
    raise_code(result_code::no_such_object,
               (found.empty() ? "No user is called " : "More than one user is called ") +
                   quoted_name(name) + ".");
}

std::vector<std::string> MappedDirectory::login_names(const std::string& real_name) {
    std::vector<std::string> names{real_name};
    const auto parts = try_name_parts(real_name);
    const auto container = try_name_parts(map_->user_container.name);
    if (!parts || !container || !map_->is_user(real_name)) return names;
    const auto add = [&](const std::string& value) {
        std::vector<RelativeName> name{{{map_->naming_attribute, value}}};
        name.insert(name.end(), container->begin(), container->end());
        std::string joined = joined_name(name);
        if (std::ranges::find(names, joined) == names.end()) names.push_back(std::move(joined));
    };
    if (!map_->login) {
        add(parts->front().front().value);
        return names;
    }
    SearchRequest request;
    request.base = real_name;
    request.attributes = map_->login->attributes;
    for (const EntryData& entry : entries_found(request))
        for (const Attribute& attribute : entry.attributes)
            for (const std::string& value : attribute.values) add(value);
    return names;
}

ServerLogin MappedDirectory::login(TextView user, const Secret& password) {
    const std::string written = login_name(user, password);
    if (written.empty()) return {client_->pool(), server_, user, password, limits_};
    const std::optional<std::string> name = find(written);
    if (!name)
        raise_code(result_code::invalid_credentials,
                   "No user, or more than one, is called " + quoted_name(written) + ".");
    return {client_->pool(), server_, from_utf8(*name), password, limits_};
}

}  // namespace orvo::directory::ldap
