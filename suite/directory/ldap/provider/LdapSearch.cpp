#include "suite/directory/ldap/provider/LdapSearch.h"

#include <algorithm>
#include <utility>

#include "platform/objects/recordset/builder.h"
#include "suite/directory/entries/entry_order.h"
#include "suite/directory/entries/row_decoder.h"
#include "suite/directory/entries/search_condition.h"
#include "suite/directory/filters/filter.h"
#include "suite/directory/ldap/provider/mapped_search.h"
#include "suite/directory/ldap/wire/paged_results.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::ldap {
namespace {

// A server that wants to send less at a time does so, or says so (collect_pages).
constexpr int page_size = 10'000;

}  // namespace

void LdapSearch::Connect(Text& server, Text& container, Text& user, Secret& password) {
    login_.reset();
    facts_.reset();
    base_.clear();
    mapped_ = MappedDirectory::try_open(client_, server, container, limits_);
    ServerLogin login = mapped_ ? mapped_->login(user, password)
                                : ServerLogin(client_.pool(), server, user, password, limits_);
    require_whole(container);
    base_ = to_utf8(container_name(container));
    login.authenticate();
    login_ = std::move(login);
}

void LdapSearch::learn_types_of(const std::vector<std::string>& attributes) {
    if (!facts_) facts_ = login_->facts();
    if (mapped_) mapped_->learn(facts_);
    if (facts_->types.empty()) return;  // this user may not read the schema
    if (std::any_of(attributes.begin(), attributes.end(),
                    [&](const std::string& name) { return !types().find(name); }))
        facts_ = login_->refreshed_facts();
    if (mapped_) mapped_->learn(facts_);
}

Object LdapSearch::Execute(Text& filter, Variant& attributes, std::int32_t maximum) {
    if (!login_) raise_runtime_error(runtime_error::object_not_set);
    const std::vector<Text> columns = column_names(attributes);
    SearchRequest request;
    request.base = base_;
    request.scope = Scope::subtree;
    const Filter wanted = Filter::parse(filter);
    std::vector<std::string> names;
    for (const Text& column : columns) names.push_back(to_utf8(column));
    learn_types_of(names);

    RowDecoder decoder(names, types());
    SearchCondition condition(wanted, types());
    // A server is asked for each attribute once, however often it is a column.
    const auto ask_for = [&](const std::vector<std::string>& attributes) {
        for (const std::string& name : attributes)
            if (std::none_of(request.attributes.begin(), request.attributes.end(),
                             [&](const std::string& one) { return types().same(one, name); }))
                request.attributes.push_back(name);
    };
    ask_for(names);
    ask_for(condition.attributes());
    std::optional<MappedSearch> mapped;
    if (mapped_) {
        mapped.emplace(*mapped_, base_, condition.sent(), std::move(request.attributes));
        request.attributes = mapped->attributes();
    }
    request.filter = mapped ? mapped->filter() : condition.sent().text();
    FirstRows rows(maximum > 0 ? static_cast<std::size_t>(maximum) : FirstRows::all,
                   [&](const EntryData& entry) { return decoder.row(entry); });
    // A mapped entry's place is not told by its name alone.
    if (!mapped)
        request.wanted = [&](const std::string& name) {
            return condition.may_be_true_of(name) && rows.wants(name);
        };
    check(login_->search([&](Session& session) {
        rows.clear();
        return collect_pages(session, request, page_size, [&](EntryData&& entry) {
            if (mapped) {
                std::optional<EntryData> ours = mapped->ours(std::move(entry));
                if (!ours) return;
                entry = std::move(*ours);
            }
            if (condition.is_true_of(entry)) rows.add(std::move(entry));
        });
    }));

    RecordSetBuilder builder(columns);
    builder.reserve(rows.size());
    rows.take_each([&](FirstRows::Row&& row) { builder.add(std::move(row)); });
    return builder.open().object();
}

}  // namespace orvo::directory::ldap
