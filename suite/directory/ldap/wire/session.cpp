#include "suite/directory/ldap/wire/session.h"

#include "suite/directory/policy/result_codes.h"

namespace orvo::directory::ldap {

ReadResult Session::read(const std::string& name, const std::vector<std::string>& attributes) {
    ReadResult result;
    SearchRequest request;
    request.base = name;
    request.attributes = attributes;
    bool found = false;
    static_cast<Result&>(result) = search(request, [&](EntryData&& entry) {
        result.entry = std::move(entry);
        found = true;
    });
    // An entry that may not be read is not there for its reader.
    if (result.ok() && !found) result.code = result_code::no_such_object;
    return result;
}

}  // namespace orvo::directory::ldap
