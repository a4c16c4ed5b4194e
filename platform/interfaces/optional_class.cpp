#include "platform/interfaces/optional_class.h"

#include "platform/interfaces/create.h"
#include "platform/values/failure.h"

namespace orvo {

Object create_object_if_known(const Text& progid) {
    try {
        return create_object(progid);
    } catch (const Failure& failure) {
        if (failure.number != runtime_error::cannot_create_object) throw;
        return {};
    }
}

}  // namespace orvo
