#include "suite/directory/ldap/LdapSearch.h"

#include <algorithm>
#include <utility>

#include "platform/recordset/builder.h"
#include "suite/directory/common/distinguished_name.h"
#include "suite/directory/common/filter.h"
#include "suite/directory/ldap/entry_order.h"
#include "suite/directory/ldap/failures.h"
#include "suite/directory/ldap/paged_results.h"
#include "suite/directory/ldap/row_decoder.h"

namespace orvo::directory::ldap {
namespace {

// A server that wants to send less at a time does so, or says so (collect_pages).
constexpr int page_size = 10'000;

}  // namespace

void LdapSearch::Connect(Text& server, Text& container, Text& user, Text& password) {
    login_.reset();
    session_.reset();
    facts_.reset();
    ServerLogin login(server, user, password, limits_);
    base_ = to_utf8(container_name(container));
    session_ = login.connect();
    login_ = std::move(login);
}

// Runs an operation, once more where the server has closed the connection.
template <class Operation>
auto LdapSearch::on_session(Operation operation) {
    if (!session_) session_ = login_->connect();
    auto result = operation(*session_);
    if (result.code == result_code::server_down) {
        session_ = login_->connect();
        result = operation(*session_);
    }
    if (result.connection_failed()) session_.reset();
    return result;
}

void LdapSearch::learn_types_of(const std::vector<std::string>& attributes) {
    const auto learn = [&](auto read) {
        FactsResult result =
            on_session([&](Session& session) { return read(session, login_->server_key()); });
        check(result);
        facts_ = std::move(result.facts);
    };
    if (!facts_) learn(facts_of);
    const AttributeTypes& types = facts_->types;
    if (types.empty()) return;  // this user may not read the schema
    if (std::any_of(attributes.begin(), attributes.end(),
                    [&](const std::string& name) { return !types.find(name); }))
        learn(refreshed_facts_of);
}

Object LdapSearch::Execute(Text& filter, Variant& attributes, std::int32_t maximum) {
    if (!login_) raise_runtime_error(runtime_error::object_not_set);
    const std::vector<Text> columns = column_names(attributes);
    SearchRequest request;
    request.base = base_;
    request.scope = Scope::subtree;
    request.filter = Filter::parse(filter, provider_name).text();
    for (const Text& column : columns) request.attributes.push_back(to_utf8(column));
    learn_types_of(request.attributes);

    RowDecoder decoder(request.attributes, facts_->types);
    FirstRows rows(maximum > 0 ? static_cast<std::size_t>(maximum) : FirstRows::all,
                   [&](const EntryData& entry) { return decoder.row(entry); });
    request.wanted = [&](const std::string& name) { return rows.wants(name); };
    check(on_session([&](Session& session) {
        rows.clear();
        return collect_pages(session, request, page_size,
                             [&](EntryData&& entry) { rows.add(std::move(entry)); });
    }));

    RecordSetBuilder builder(columns);
    builder.reserve(rows.size());
    rows.take_each([&](FirstRows::Row&& row) { builder.add(std::move(row)); });
    return builder.open().object();
}

}  // namespace orvo::directory::ldap
