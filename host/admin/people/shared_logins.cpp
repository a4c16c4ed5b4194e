#include "host/admin/people/shared_logins.h"

#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "suite/store/store_settings.h"

namespace orvo::admin {

std::optional<int> try_end_shared_logins(const std::string& account) {
    if (!store::settings_of_site().is_shared()) return std::nullopt;
    const Object logins = create_object(u"TavikAuthFilter.Logins");
    return late::call(logins, u"EndAllOf", {from_utf8(account)}).to<std::int32_t>();
}

}  // namespace orvo::admin
