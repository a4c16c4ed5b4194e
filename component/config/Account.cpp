#include "component/config/Account.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/config/DirectoryAccount.h"
#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"
#include "platform/values/wiped.h"

namespace orvo {

void Account::Init(std::int16_t& iUserType) {
    const auto info_line = [] {
        return u"Cannot bind with the administrator user, please check the administrator user in "
               u"LDAP";
    };
    trapped_with_info(u"OrvoMembership.Account.Init", info_line, [&] {
        ServerInfo& info = *shared_server_info();
        DirectoryAccount account = script_account();
        PMMCreator provider;
        entry_ = provider.GetPMMObject();
        bind_entry(entry_, info.account_container(),
                   info.account_naming_attribute() + u"=" + decimal(iUserType), account.name,
                   account.secret);
    });
}

Variant Account::first_value(const char16_t* attribute) {
    Text name = attribute;
    const Wiped all(call<&DirectoryEntry::GetValues>(entry_, name));
    return element(all.value, 0);
}

Variant Account::NTUser() {
    return trapped(u"OrvoMembership.Account.get_NTUser",
                   [&] { return first_value(u"OrvoNTUser"); });
}

Variant Account::NTPassword() {
    return trapped(u"OrvoMembership.Account.get_NTPassword",
                   [&] { return first_value(u"OrvoNTPassword"); });
}

template struct detail::callee<Account>;

}  // namespace orvo
