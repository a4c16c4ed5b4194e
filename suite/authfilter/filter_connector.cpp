#include "suite/authfilter/filter_connector.h"

#include <algorithm>

#include "platform/values/failure.h"
#include "platform/values/values.h"
#include "suite/authfilter/audited_logins.h"
#include "suite/authfilter/filter_user.h"

namespace orvo::authfilter {
namespace {

constexpr std::chrono::minutes default_timeout{10};
constexpr std::chrono::minutes longest_timeout = std::chrono::days{365};

bool is_guid(const Text& guid) { return !guid.empty() && guid.size() <= longest_login_guid; }

void require_guid(const Text& guid) {
    if (!is_guid(guid))
        throw Failure(runtime_error::invalid_call, {},
                      u"A GUID has 1 to 256 characters, this one has " +
                          decimal(static_cast<long long>(guid.size())));
}

std::chrono::minutes timeout_of(std::int32_t minutes) {
    if (minutes < 1) return default_timeout;
    return std::min(std::chrono::minutes(minutes), longest_timeout);
}

std::vector<std::int32_t> numbers_in(const Variant& array) {
    std::vector<std::int32_t> numbers;
    for (const Variant& element : array.to<Values>()) numbers.push_back(element.to<std::int32_t>());
    return numbers;
}

Ref<FilterUser> record_object(Store& store, const Text& guid, Record record) {
    return make<FilterUserObject>(store, guid, std::move(record));
}

}  // namespace

Ref<FilterUser> FilterConnectorObject::FindUserByGUID(const Text& guid) {
    if (!is_guid(guid)) return {};
    auto record = store_.find(guid);
    if (!record) return {};
    return record_object(store_, guid, std::move(*record));
}

Ref<FilterUser> FilterConnectorObject::CreateUserWithGUID(const Text& guid) {
    require_guid(guid);
    if (!store_.try_create(guid)) return {};
    return record_object(store_, guid, {});
}

bool FilterConnectorObject::RegisterLogin(const Text& user, const Variant& applications,
                                          const Text& guid, std::int16_t multi_login,
                                          std::int32_t timeout) {
    require_guid(guid);
    if (user.empty())
        throw Failure(runtime_error::invalid_call, {}, u"A login needs the name of its user");
    const std::vector<std::int32_t> numbers = numbers_in(applications);
    store_.begin({guid, user, numbers, multi_login == 0, timeout_of(timeout)});
    try {
        record_login(store_.user_of(guid), numbers);
    } catch (const Failure&) {
        store_.forget(guid);
        throw;
    }
    return true;
}

bool FilterConnectorObject::IsLoggedIn(const Text& guid, std::int32_t application) {
    if (!is_guid(guid)) return false;
    if (store_.ask(guid, application)) return true;
    if (const Text user = store_.user_of(guid); !user.empty()) record_refusal(user, application);
    return false;
}

void FilterConnectorObject::Logout(const Text& guid) {
    if (!is_guid(guid)) return;
    const Text user = store_.user_of(guid);
    store_.forget(guid);
    if (!user.empty()) record_logout(user);
}

}  // namespace orvo::authfilter
