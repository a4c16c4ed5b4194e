#include "host/web/sessions/memory_application.h"

namespace orvo::web {

NamedValues MemoryApplication::snapshot() {
    const auto guard = lock_.guard();
    return values_;
}

Variant MemoryApplication::get(TextView name) {
    const auto guard = lock_.guard();
    return values_.get(name);
}

void MemoryApplication::put_own(TextView name, const Variant& value) {
    const auto guard = lock_.guard();
    values_.put(name, value);
}

void MemoryApplication::put(const Holder& holder, TextView name, const Variant& value) {
    const auto guard = lock_.pass(holder);
    values_.put(name, value);
}

void MemoryApplication::remove(const Holder& holder, TextView name) {
    const auto guard = lock_.pass(holder);
    values_.remove(name);
}

void MemoryApplication::remove_all(const Holder& holder) {
    const auto guard = lock_.pass(holder);
    values_.remove_all();
}

}  // namespace orvo::web
