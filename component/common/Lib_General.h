#pragma once

#include "platform/interfaces/ref.h"
#include "platform/values/object.h"
#include "platform/values/text.h"

namespace orvo {

// All work on the calling thread, whose application-server object is kept for the thread's life.

// Creates a component by ProgID: inside the caller's object context where there is one, by plain
// creation otherwise. Never answers an empty reference: a failure (the platform's number, 429 for
// a class that is not known) is logged and raised through HandleError.
Object Gen_GetComponent(const Text& progID);

// The same, as one of its interfaces. Raises 13 (type mismatch) when the component lacks it.
template <class I>
Ref<I> Gen_GetComponent(const Text& progID) {
    return Ref<I>::from(Gen_GetComponent(progID));
}

// Whether an item of that name ("Session", "Application") can be reached: 0 it can; -1 the thread
// runs in no object context; -2 the context lacks it, or asking failed. Never raises.
std::int16_t Gen_GetIntrinsicState(const Text& name);

// An item of the thread's object context, after Gen_GetIntrinsicState found it there. Raises 91
// (object not set) where the thread runs in no context.
Object context_item(const Text& name);

// Doubles every apostrophe.
Text Gen_EscapeQuotes(const Text& text);

}  // namespace orvo
