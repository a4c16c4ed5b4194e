#include "platform/objects/context/app_server.h"

#include "platform/module/per_thread.h"

namespace orvo {
namespace {

Ref<ObjectContext>& current_context() {
    static PerThread<Ref<ObjectContext>> context;
    return context.get();
}

}  // namespace

Ref<ObjectContext> AppServerObject::GetObjectContext() { return current_context(); }

Ref<ObjectContext> AppServerObject::Establish(const Ref<ObjectContext>& context) {
    return std::exchange(current_context(), context);
}

HeldMemory counted_memory() {
    const Ref<ObjectContext>& context = current_context();
    if (!context) return {};
    const auto host = Ref<MemoryHost>::try_from(context.object());
    if (!host) return {};
    const Variant account = call<&MemoryHost::Account>(host);
    if (!account.is_object()) return {};
    return HeldMemory(Ref<MemoryAccount>::from(account.to<Object>()));
}

template struct detail::callee<AppServer>;
template struct detail::callee<ContextHost>;

}  // namespace orvo
