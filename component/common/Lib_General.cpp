#include "component/common/Lib_General.h"

#include "component/common/Lib_ErrorHandling.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/module/per_thread.h"
#include "platform/objects/context/context_contract.h"

namespace orvo {
namespace {

// The thread's application-server object; empty on a system that has none.
const Ref<AppServer>& app_server() {
    static PerThread<Ref<AppServer>> servers;
    Ref<AppServer>& server = servers.get();
    if (server) return server;
    try {
        server = Ref<AppServer>::from(create_object(app_server_progid));
    } catch (const Failure& failure) {
        // No transaction server at all means that no caller runs in a context.
        if (failure.number != runtime_error::cannot_create_object) throw;
    }
    return server;
}

Ref<ObjectContext> object_context() {
    const Ref<AppServer>& server = app_server();
    return server ? call<&AppServer::GetObjectContext>(server) : nullptr;
}

bool runs_in_context() {
    // Asked while a failure is being told; not being able to tell must not take its place.
    try {
        return static_cast<bool>(object_context());
    } catch (const Failure&) {
        return false;
    }
}

Variant creation_info(const Text& progID) {
    if (!runs_in_context()) return u"CreateObject(" + progID + u") failed";
    return u"CreateInstance(" + progID +
           u") failed.\r\nNote: Objects having 'Instancing=PublicNotCreatable' may only be "
           u"instantiated with 'New', not with Gen_GetComponent()";
}

}  // namespace

Object Gen_GetComponent(const Text& progID) {
    return trapped_with_info(
        u"Lib_General.Gen_GetComponent", [&] { return creation_info(progID); },
        [&]() -> Object {
            const Ref<ObjectContext> context = object_context();
            if (!context) return create_object(progID);
            Object made = call<&ObjectContext::CreateInstance>(context, progID).to<Object>();
            if (!made) raise_runtime_error(runtime_error::cannot_create_object);
            return made;
        });
}

std::int16_t Gen_GetIntrinsicState(const Text& name) {
    // The answer is the state: asking never raises.
    Ref<ObjectContext> context;
    try {
        context = object_context();
    } catch (const Failure&) {
    }
    if (!context) return -1;
    try {
        return call<&ObjectContext::Item>(context, name).to<Object>() ? 0 : -2;
    } catch (const Failure&) {
        return -2;
    }
}

Object context_item(const Text& name) {
    return call<&ObjectContext::Item>(object_context(), name).to<Object>();
}

Text Gen_EscapeQuotes(const Text& text) { return replaced(text, u"'", u"''"); }

}  // namespace orvo
