#include "suite/directory/ldap/pool/server_facts.h"

#include <algorithm>
#include <utility>

#include "suite/directory/ldap/wire/password_modify.h"
#include "suite/directory/names/ascii.h"

namespace orvo::directory::ldap {
namespace {

// The capability of every Active Directory, Samba's among them.
constexpr std::string_view active_directory = "1.2.840.113556.1.4.800";

const std::vector<std::string>& values_of(const EntryData& entry, std::string_view name) {
    static const std::vector<std::string> none;
    for (const Attribute& attribute : entry.attributes)
        if (ascii::equal_ignoring_case(attribute.name, name)) return attribute.values;
    return none;
}

bool has_value(const EntryData& entry, std::string_view name, std::string_view value) {
    return std::ranges::count(values_of(entry, name), value) != 0;
}

// What a server shows of its make in its root entry.
void judge(const EntryData& root, ServerFacts& facts) {
    if (has_value(root, "supportedCapabilities", active_directory)) {
        facts.password_writing = PasswordWriting::unicode_attribute;
        facts.has_chain_rule = true;
        facts.tells_own_change_from_reset = true;
    } else if (has_value(root, "supportedExtension", password_modify_oid)) {
        facts.tells_own_change_from_reset = has_value(root, "vendorName", "389 Project");
    } else if (has_value(root, "objectClass", "OpenLDAProotDSE")) {
        facts.password_writing = PasswordWriting::hashed_here;
    } else if (!root.attributes.empty()) {
        facts.password_writing = PasswordWriting::unknown;
    }
}

}  // namespace

FactsResult read_facts(Session& session) {
    FactsResult result;
    const ReadResult root =
        session.read("", {"objectClass", "subschemaSubentry", "supportedCapabilities",
                          "supportedExtension", "vendorName"});
    static_cast<Result&>(result) = root;
    if (root.connection_failed()) return result;

    auto facts = std::make_shared<ServerFacts>();
    judge(root.entry, *facts);
    // It takes no time without a fraction.
    const TimeForm times = facts->password_writing == PasswordWriting::unicode_attribute
                               ? TimeForm::with_fraction
                               : TimeForm::whole_seconds;

    const auto& subschema = values_of(root.entry, "subschemaSubentry");
    SearchRequest request;
    request.base = subschema.empty() ? "cn=Subschema" : subschema.front();
    request.filter = "(objectClass=subschema)";
    request.attributes = {"attributeTypes", "objectClasses"};
    const Result read = session.search(request, [&](EntryData&& entry) {
        facts->types = AttributeTypes::from_descriptions(values_of(entry, "attributeTypes"), times);
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
