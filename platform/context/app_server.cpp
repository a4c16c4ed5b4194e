#include "platform/context/app_server.h"

namespace orvo {
namespace {

Ref<ObjectContext>& current_context() {
    static thread_local Ref<ObjectContext> context;
    return context;
}

}  // namespace

Ref<ObjectContext> AppServerObject::GetObjectContext() { return current_context(); }

Ref<ObjectContext> AppServerObject::Establish(const Ref<ObjectContext>& context) {
    return std::exchange(current_context(), context);
}

}  // namespace orvo
