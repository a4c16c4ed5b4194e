#include "platform/objects/context/context_scope.h"

#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/hosted.h"
#include "platform/objects/context/memory_account.h"

namespace orvo {
namespace {

// A context without transactions and without security: votes on a transaction have no effect, and
// everybody is in every role.
class HostContext : public ObjectContext, public MemoryHost {
public:
    explicit HostContext(ContextItems items) {
        for (auto& [name, item] : items) items_.emplace(lower(name), item);
    }

    Variant CreateInstance(const Text& progid) override { return create_object(progid); }
    void SetComplete() override {}
    void SetAbort() override {}
    void EnableCommit() override {}
    void DisableCommit() override {}
    bool IsInTransaction() override { return false; }
    bool IsSecurityEnabled() override { return false; }
    bool IsCallerInRole(const Text&) override { return true; }
    std::int32_t Count() override { return static_cast<std::int32_t>(items_.size()); }
    Variant Item(const Text& name) override {
        const auto found = items_.find(lower(name));
        if (found == items_.end())
            throw Failure(abi::e_invalidarg, {}, u"The context has no item named " + name);
        return found->second;
    }
    Variant Account() override {
        const auto found = items_.find(lower(memory_account_item));
        return found == items_.end() ? Variant() : found->second;
    }

private:
    ContextItems items_;
};

}  // namespace

template <>
inline constexpr auto class_of<HostContext> =
    describe_class<ObjectContext, MemoryHost>("MTxAS.ObjectContext");

ContextScope::ContextScope(ContextItems items)
    : host_(Ref<ContextHost>::from(create_object(app_server_progid))),
      before_(call<&ContextHost::Establish>(host_, make<HostContext>(std::move(items)))) {}

ContextScope::~ContextScope() { call<&ContextHost::Establish>(host_, before_); }

}  // namespace orvo
