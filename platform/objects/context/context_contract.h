#pragma once

// The transaction server's application-server object and object context, as callers see them. Both
// speak of the calling thread's context, and are used by the thread that made them.

#include "platform/interfaces/interface.h"
#include "platform/values/variant.h"

namespace orvo {

// The context in which a call runs: makes components that share it, and holds named items (a web
// page's "Request", "Response", "Server", "Session", "Application").
class ObjectContext {
public:
    virtual Variant CreateInstance(const Text& progid) = 0;
    virtual void SetComplete() = 0;
    virtual void SetAbort() = 0;
    virtual void EnableCommit() = 0;
    virtual void DisableCommit() = 0;
    virtual bool IsInTransaction() = 0;
    virtual bool IsSecurityEnabled() = 0;
    // Everybody is in every role where security is not enabled.
    virtual bool IsCallerInRole(const Text& role) = 0;
    virtual std::int32_t Count() = 0;
    // By name, without regard to case. Raises E_INVALIDARG for an item that is not there.
    virtual Variant Item(const Text& name) = 0;

protected:
    ~ObjectContext() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<ObjectContext> = describe<ObjectContext>(
    "ObjectContext", "74c08646-cedb-11cf-8b49-00aa00b8a790",
    method<&ObjectContext::CreateInstance>("CreateInstance", "progID").id(0x60020000),
    method<&ObjectContext::SetComplete>("SetComplete").id(0x60020001),
    method<&ObjectContext::SetAbort>("SetAbort").id(0x60020002),
    method<&ObjectContext::EnableCommit>("EnableCommit").id(0x60020003),
    method<&ObjectContext::DisableCommit>("DisableCommit").id(0x60020004),
    method<&ObjectContext::IsInTransaction>("IsInTransaction").id(0x60020005),
    method<&ObjectContext::IsSecurityEnabled>("IsSecurityEnabled").id(0x60020006),
    method<&ObjectContext::IsCallerInRole>("IsCallerInRole", "role").id(0x60020007),
    get<&ObjectContext::Count>("Count").id(0x60020020),
    get<&ObjectContext::Item>("Item", "name").as_default(),
    reserved(11, 13));
// clang-format on

// The way to the context of the calling thread.
class AppServer {
public:
    // Nothing where the thread runs in no context.
    virtual Ref<ObjectContext> GetObjectContext() = 0;
    // Gives back what it gets: objects here may be handed on as they are.
    virtual Variant SafeRef(const Variant& object) = 0;

protected:
    ~AppServer() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<AppServer> = describe<AppServer>(
    "IMTxAS", "74c08641-cedb-11cf-8b49-00aa00b8a790",
    method<&AppServer::GetObjectContext>("GetObjectContext").id(0x60020000),
    method<&AppServer::SafeRef>("SafeRef", "object").id(0x60020001));
// clang-format on

// How a host establishes the context of its thread; on the application-server object beside the
// interface above. An empty reference ends it. Answers the context that was established before.
class ContextHost {
public:
    virtual Ref<ObjectContext> Establish(const Ref<ObjectContext>& context) = 0;

protected:
    ~ContextHost() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<ContextHost> = describe_unknown<ContextHost>(
    "IContextHost", "5d4b3c53-6f0e-4a61-9d0c-1f6f4f6a2c11",
    method<&ContextHost::Establish>("Establish", "context"));
// clang-format on

inline constexpr const char16_t* app_server_progid = u"MTxAS.AppServer.1";

}  // namespace orvo
