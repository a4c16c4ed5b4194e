#pragma once

// How a host gives its thread a context.

#include <map>

#include "platform/objects/context/context_contract.h"

namespace orvo {

// The named items of a context; names are compared without regard to case.
using ContextItems = std::map<Text, Object>;

// While it lives, the calling thread runs in an object context with these items: the length of one
// request or one script. It owns the items until it ends. Scopes nest; each is ended by the thread
// that began it. Raises 429 where the application-server object cannot be created.
class ContextScope {
public:
    explicit ContextScope(ContextItems items);
    ~ContextScope();
    ContextScope(const ContextScope&) = delete;
    ContextScope& operator=(const ContextScope&) = delete;

private:
    Ref<ContextHost> host_;
    Ref<ObjectContext> before_;
};

}  // namespace orvo
