#pragma once

#include "component/auth/filter_contract.h"
#include "platform/interfaces/hosted.h"
#include "suite/authfilter/process_store.h"

namespace orvo::authfilter {

// The filter's connector; any thread. A GUID is a text of 1 to 256 characters; another one has
// neither record nor login, and raises 5 where something would be kept under it.
class FilterConnectorObject final : public FilterConnector {
public:
    explicit FilterConnectorObject(Store& store = process_store()) : store_(store) {}

    Ref<FilterUser> FindUserByGUID(const Text& guid) override;
    Ref<FilterUser> CreateUserWithGUID(const Text& guid) override;
    // Applications: an array whose elements convert to 32-bit integers. Raises 13 where it is none,
    // 5 for a user without a name, 7 where the store is full. multi_login: any number but 0 means
    // many. timeout: below 1 the default of ten minutes (there is no login without an end), at most
    // a year. Always true. A login that the audit cannot record although it has to is none: that
    // raises.
    bool RegisterLogin(const Text& user, const Variant& applications, const Text& guid,
                       std::int16_t multi_login, std::int32_t timeout) override;
    bool IsLoggedIn(const Text& guid, std::int32_t application) override;
    void Logout(const Text& guid) override;

private:
    Store& store_;
};

}  // namespace orvo::authfilter

namespace orvo {

template <>
inline constexpr auto class_of<authfilter::FilterConnectorObject> =
    describe_class<FilterConnector>("TavikAuthFilter.Connector",
                                    "8e5a3c1d-7b64-4f5e-9a0c-2d1f6b7c8e11")
        .shared();

}  // namespace orvo
