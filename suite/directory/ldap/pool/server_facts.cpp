#include "suite/directory/ldap/pool/server_facts.h"

#include <algorithm>
#include <utility>

#include "suite/directory/names/ascii.h"

namespace orvo::directory::ldap {
namespace {

constexpr std::string_view password_modify = "1.3.6.1.4.1.4203.1.11.1";

const std::vector<std::string>& values_of(const EntryData& entry, std::string_view name) {
    static const std::vector<std::string> none;
    for (const Attribute& attribute : entry.attributes)
        if (ascii::equal_ignoring_case(attribute.name, name)) return attribute.values;
    return none;
}

}  // namespace

FactsResult read_facts(Session& session) {
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
    result.is_whole = !root.entry.attributes.empty() && !result.facts->types.empty();
    return result;
}

}  // namespace orvo::directory::ldap
