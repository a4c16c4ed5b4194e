#include "component/common/password_value.h"

namespace orvo {

Variant password_value(const Secret& secret) {
    return secret.reveal([](TextView text) { return Variant(text); });
}

}  // namespace orvo
