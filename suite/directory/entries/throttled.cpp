#include "suite/directory/entries/throttled.h"

#include "platform/interfaces/call.h"
#include "suite/directory/policy/password_check.h"
#include "suite/throttle/throttle_call.h"

namespace orvo::directory {

CheckAnswer throttled_check(std::string_view user, const std::function<std::int32_t()>& check) {
    const Ref<Throttle> throttle = throttle::try_throttle();
    if (!throttle) return {check()};
    if (!call<&Throttle::Admit>(throttle, from_utf8(user)))
        return {password_check::too_many_failures, true};
    const std::int32_t number = check();
    call<&Throttle::Settle>(throttle, number);
    return {number};
}

}  // namespace orvo::directory
