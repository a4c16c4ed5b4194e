#pragma once

#include "component/provider/directory_contract.h"
#include "platform/interfaces/hosted.h"

namespace orvo {

// The operating-system account under which work for one type of user is done. Its name and password
// stand in the account entry of that type, which is read as the configured script user. Values are
// as stored. Used by the thread that made it.
class Account {
public:
    // Binds to the entry named with the user type ("cn=2"); types are not checked against a list.
    void Init(std::int16_t& iUserType);
    // Both raise 91 before Init, 9 or 13 for an answer of the provider without a first value.
    Variant NTUser();
    Variant NTPassword();

private:
    Variant first_value(const char16_t* attribute);

    Ref<DirectoryEntry> entry_;
};

// clang-format off
template <>
inline constexpr auto table_of<Account> = describe<Account>(
    "IAccount", "022d2b72-1c79-4081-ae34-7690be8cb84d",
    about("The service account of a type of users."),
    method<&Account::Init>("Init", "iUserType")
        .help("Binds to the service account of a type of users."),
    get<&Account::NTUser>("NTUser").help("The account's name."),
    get<&Account::NTPassword>("NTPassword").help("The account's password."));
// clang-format on

extern template struct detail::callee<Account>;

template <>
inline constexpr auto class_of<Account> =
    describe_class<Account>("OrvoMembership.Account", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e703");

}  // namespace orvo
