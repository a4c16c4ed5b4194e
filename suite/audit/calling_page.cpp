#include "suite/audit/calling_page.h"

#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/objects/context/context_contract.h"

namespace orvo::audit {

Text address_of_calling_page() noexcept {
    try {
        const auto server = Ref<AppServer>::from(create_object(app_server_progid));
        const auto context = call<&AppServer::GetObjectContext>(server);
        if (!context) return {};
        const Variant request = call<&ObjectContext::Item>(context, Text(u"Request"));
        return late::get(request.to<Object>(), u"ServerVariables", {u"REMOTE_ADDR"}).to<Text>();
    } catch (const std::exception&) {
        return {};  // no page, or one of a host that knows no addresses
    }
}

}  // namespace orvo::audit
