#include "suite/directory/embedded/provider/EmbeddedSearch.h"

#include <utility>
#include <vector>

#include "platform/objects/recordset/builder.h"
#include "suite/directory/entries/row_decoder.h"
#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {

void EmbeddedSearch::Connect(Text& server, Text& container, Text& user, Secret& password) {
    login_.reset();
    base_.clear();
    Login login(server, user, password);
    require_whole(container);
    base_ = to_utf8(container_name(container));
    login.authenticate();
    login_ = std::move(login);
}

Object EmbeddedSearch::Execute(Text& filter, Variant& attributes, std::int32_t maximum) {
    if (!login_) raise_runtime_error(runtime_error::object_not_set);
    const std::vector<Text> columns = column_names(attributes);
    Login::Search search;
    search.base = base_;
    search.filter = Filter::parse(filter);
    for (const Text& column : columns) search.attributes.push_back(to_utf8(column));
    if (maximum > 0) search.wanted = static_cast<std::size_t>(maximum);
    RowDecoder decoder(search.attributes, login_->schema().types);
    RecordSetBuilder builder(columns);
    std::int32_t rows = 0;
    login_->search(search, [&](EntryData&& entry) {
        builder.add(decoder.row(entry));
        return ++rows != maximum;
    });
    return builder.open().object();
}

}  // namespace orvo::directory::embedded
