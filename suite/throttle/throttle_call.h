#pragma once

// How the suite's other parts reach the throttle, whatever module they are in.

#include "platform/interfaces/ref.h"
#include "suite/throttle/throttle_contract.h"

namespace orvo::throttle {

// For one attempt; nothing where the site asks for no throttle, and where there is no such
// component. Raises what Throttle::IsOn does. Belongs to the calling thread.
Ref<Throttle> try_throttle();

}  // namespace orvo::throttle
