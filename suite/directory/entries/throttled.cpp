#include "suite/directory/entries/throttled.h"

#include "platform/interfaces/call.h"
#include "suite/directory/policy/password_check.h"
#include "suite/throttle/throttle_call.h"

namespace orvo::directory {

CheckAnswer throttled_check(std::string_view user, const std::function<std::int32_t()>& check) {
    return throttled_check(
        user, [&] { return std::string(user); }, [&](const std::string&) { return check(); });
}

CheckAnswer throttled_check(std::string_view user,
                            const std::function<std::optional<std::string>()>& find,
                            const std::function<std::int32_t(const std::string& entry)>& check) {
    const Ref<Throttle> throttle = throttle::try_throttle();
    if (throttle && !call<&Throttle::Admit>(throttle, from_utf8(user)))
        return {password_check::too_many_failures, true};
    const std::optional<std::string> entry = find();
    const bool has_room = !throttle || !entry || *entry == user ||
                          call<&Throttle::AdmitFound>(throttle, from_utf8(*entry));
    const std::int32_t number = entry && has_room ? check(*entry) : password_check::wrong;
    if (throttle) call<&Throttle::Settle>(throttle, number);
    return {number, !has_room};
}

}  // namespace orvo::directory
