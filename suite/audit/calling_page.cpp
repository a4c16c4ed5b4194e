#include "suite/audit/calling_page.h"

#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/objects/context/context_contract.h"

namespace orvo::audit {
namespace {

// Empty where the item is not there, or does not know it: a host need not know addresses.
template <class Ask>
Text told_by(const Text& item, Ask ask) noexcept {
    try {
        const Object object = item_of_calling_page(item);
        return object ? ask(object).template to<Text>() : Text();
    } catch (const std::exception&) {
        return {};
    }
}

Text server_variable(const char16_t* name) noexcept {
    return told_by(u"Request", [name](const Object& request) {
        return late::get(request, u"ServerVariables", {name});
    });
}

}  // namespace

Object item_of_calling_page(const Text& name) noexcept {
    try {
        const auto server = Ref<AppServer>::from(create_object(app_server_progid));
        const auto context = call<&AppServer::GetObjectContext>(server);
        return context ? call<&ObjectContext::Item>(context, name).to<Object>() : Object();
    } catch (const std::exception&) {
        return {};
    }
}

Text address_of_calling_page() noexcept { return server_variable(u"REMOTE_ADDR"); }

Text request_of_calling_page() noexcept { return server_variable(u"REQUEST_ID"); }

Text login_of_calling_page() noexcept {
    return told_by(u"Session",
                   [](const Object& session) { return late::value_of(session, {u"QUENDRAID"}); });
}

}  // namespace orvo::audit
