#include "tests/support/recording/recording_context.h"

#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/objects/context/app_server.h"

namespace orvo {

class ContextRecorder final : public ObjectContext {
public:
    explicit ContextRecorder(RecordingContext& owner) : owner_(owner) {}

    Variant CreateInstance(const Text& progid) override {
        owner_.journal().call("CreateInstance", {progid});
        const auto instance = owner_.instances.find(progid);
        if (instance != owner_.instances.end()) return instance->second;
        return create_object(progid);
    }
    void SetComplete() override {}
    void SetAbort() override {}
    void EnableCommit() override {}
    void DisableCommit() override {}
    bool IsInTransaction() override { return false; }
    bool IsSecurityEnabled() override { return false; }
    bool IsCallerInRole(const Text&) override { return true; }
    std::int32_t Count() override { return static_cast<std::int32_t>(owner_.items.size()); }
    Variant Item(const Text& name) override {
        owner_.journal().call("Item", {name});
        const auto item = owner_.items.find(name);
        return item == owner_.items.end() ? Variant() : item->second;
    }

private:
    RecordingContext& owner_;
};

template <>
inline constexpr auto class_of<ContextRecorder> = describe_class<ObjectContext>("Test.Context");

RecordingContext::RecordingContext(Journal& journal)
    : journal_(journal),
      app_server_(local_class<AppServerObject>()),
      host_(Ref<ContextHost>::from(create_object(app_server_progid))) {
    call<&ContextHost::Establish>(host_, make<ContextRecorder>(*this));
}

RecordingContext::~RecordingContext() {
    call<&ContextHost::Establish>(host_, Ref<ObjectContext>());
}

}  // namespace orvo
