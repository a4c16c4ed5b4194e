#include "suite/throttle/throttle_call.h"

#include "platform/interfaces/call.h"
#include "platform/interfaces/optional_class.h"

namespace orvo::throttle {

Ref<Throttle> try_throttle() {
    const Object object = create_object_if_known(throttle_progid);
    if (!object) return {};
    auto throttle = Ref<Throttle>::from(object);
    return call<&Throttle::IsOn>(throttle) ? throttle : Ref<Throttle>();
}

}  // namespace orvo::throttle
