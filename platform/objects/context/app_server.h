#pragma once

// Called on the thread that made the object. A context is held, by a reference for each thread,
// until its host ends it or the thread ends.

#include "platform/interfaces/hosted.h"
#include "platform/objects/context/context_contract.h"
#include "platform/objects/context/memory_account.h"

namespace orvo {

// The application-server object. Each thread has a context of its own, or none; all objects of the
// class answer the same one.
class AppServerObject : public AppServer, public ContextHost {
public:
    Ref<ObjectContext> GetObjectContext() override;
    Variant SafeRef(const Variant& object) override { return object; }
    Ref<ObjectContext> Establish(const Ref<ObjectContext>& context) override;
};

// For an object that is made now: what it holds is counted in the calling thread's context.
HeldMemory counted_memory();

extern template struct detail::callee<AppServer>;
extern template struct detail::callee<ContextHost>;

template <>
inline constexpr auto class_of<AppServerObject> = describe_class<AppServer, ContextHost>(
    "MTxAS.AppServer", "71e38f91-7e88-11cf-9ede-0080c78b7f89");

}  // namespace orvo
