#include "host/admin/diagnosis/mapped_view.h"

#include "host/admin/diagnosis/ldap_server.h"
#include "suite/directory/ldap/provider/mapped_groups.h"
#include "suite/directory/ldap/provider/mapped_search.h"
#include "suite/directory/policy/result_codes.h"

namespace orvo::admin {

using namespace directory;
using namespace directory::ldap;

std::optional<EntryData> MappedView::find(const std::string& name) {
    if (directory_.map().account_of(name)) return EntryData{name, {}};
    const std::optional<std::string> real = directory_.find(name);
    if (!real) return std::nullopt;
    std::optional<EntryData> theirs = read_whole(session_, *real);
    if (!theirs) return std::nullopt;
    MappedGroups groups(directory_);
    static const std::vector<std::string> all{"*"};
    EntryData ours = directory_.translation().ours(
        *std::move(theirs), all, [&](const MappedAttribute& attribute, const EntryData& entry) {
            return groups.values_of(attribute, entry);
        });
    ours.name = *real;
    return ours;
}

std::vector<EntryData> MappedView::search(const std::string& base, const std::string& filter,
                                          std::size_t most) {
    constexpr int page_size = 1000;
    const MappedSearch search(directory_, base, Filter::parse(from_utf8(filter)), {});
    SearchRequest request;
    request.base = base;
    request.scope = Scope::subtree;
    request.filter = search.filter();
    request.attributes = search.attributes();
    request.page_size = page_size;
    std::vector<EntryData> entries;
    SearchResult result;
    do {
        result = session_.search(request, [&](EntryData&& theirs) {
            const std::string name = theirs.name;
            if (entries.size() < most && search.ours(std::move(theirs)))
                entries.push_back({name, {}});
        });
        request.page = result.next_page;
    } while (result.ok() && entries.size() < most && !result.next_page.empty());
    if (result.code != result_code::no_such_object) check(result);
    return entries;
}

}  // namespace orvo::admin
