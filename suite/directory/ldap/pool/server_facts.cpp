#include "suite/directory/ldap/pool/server_facts.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <unordered_map>

#include "suite/directory/names/ascii.h"

namespace orvo::directory::ldap {
namespace {

using std::chrono::steady_clock;

constexpr auto shortest_refresh = std::chrono::minutes(1);
constexpr std::string_view password_modify = "1.3.6.1.4.1.4203.1.11.1";

struct Stored {
    std::shared_ptr<const ServerFacts> facts;
    steady_clock::time_point read_at;
};

class Store {
public:
    Stored find(const std::string& key) {
        const std::lock_guard lock(mutex_);
        const auto found = by_server_.find(key);
        return found == by_server_.end() ? Stored{} : found->second;
    }
    void keep(const std::string& key, std::shared_ptr<const ServerFacts> facts) {
        const std::lock_guard lock(mutex_);
        by_server_.insert_or_assign(key, Stored{std::move(facts), steady_clock::now()});
    }

private:
    std::mutex mutex_;
    std::unordered_map<std::string, Stored> by_server_;
};

Store& store() {
    static Store made;
    return made;
}

const std::vector<std::string>& values_of(const EntryData& entry, std::string_view name) {
    static const std::vector<std::string> none;
    for (const Attribute& attribute : entry.attributes)
        if (ascii::equal_ignoring_case(attribute.name, name)) return attribute.values;
    return none;
}

FactsResult read_facts(Session& session, const std::string& key) {
    FactsResult result;
    const ReadResult root = session.read("", {"subschemaSubentry", "supportedExtension"});
    static_cast<Result&>(result) = root;
    if (root.connection_failed()) return result;

    auto facts = std::make_shared<ServerFacts>();
    const auto& extensions = values_of(root.entry, "supportedExtension");
    facts->changes_passwords =
        std::find(extensions.begin(), extensions.end(), password_modify) != extensions.end();

    const auto& subschema = values_of(root.entry, "subschemaSubentry");
    SearchRequest request;
    request.base = subschema.empty() ? "cn=Subschema" : subschema.front();
    request.filter = "(objectClass=subschema)";
    request.attributes = {"attributeTypes", "objectClasses"};
    const Result read = session.search(request, [&](EntryData&& entry) {
        facts->types = AttributeTypes::from_descriptions(values_of(entry, "attributeTypes"));
        facts->classes = ObjectClasses::from_descriptions(values_of(entry, "objectClasses"));
    });
    static_cast<Result&>(result) = read;
    if (read.connection_failed()) return result;

    // Any other refusal means that this user may not see the schema.
    static_cast<Result&>(result) = Result{};
    result.facts = std::move(facts);
    const bool is_whole = !root.entry.attributes.empty() && !result.facts->types.empty();
    if (is_whole) store().keep(key, result.facts);
    return result;
}

}  // namespace

std::shared_ptr<const ServerFacts> stored_facts(const std::string& key) {
    return store().find(key).facts;
}

FactsResult facts_of(Session& session, const std::string& key) {
    FactsResult result;
    result.facts = store().find(key).facts;
    return result.facts ? result : read_facts(session, key);
}

FactsResult refreshed_facts_of(Session& session, const std::string& key) {
    const Stored stored = store().find(key);
    if (!stored.facts || steady_clock::now() - stored.read_at >= shortest_refresh)
        return read_facts(session, key);
    FactsResult result;
    result.facts = stored.facts;
    return result;
}

}  // namespace orvo::directory::ldap
