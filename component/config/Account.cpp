#include "component/config/Account.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/config/SharedServerInfo.h"
#include "component/provider/PMMCreator.h"
#include "platform/abi/call.h"
#include "platform/automation/values.h"

namespace orvo {

void Account::Init(std::int16_t& iUserType) {
    trapped(u"OrvoMembership.Account.Init",
            u"Cannot bind with the administrator user, please check the administrator user in LDAP",
            [&] {
                ServerInfo& info = *shared_server_info();
                Text user = info.script_user();
                Text password = info.script_code();
                entry_ = PMMCreator().GetPMMObject();
                Text server = info.server_name();
                Text container = info.account_container();
                Text name = info.account_naming_attribute() + u"=" + decimal(iUserType);
                Variant attributes = Values();
                call<&DirectoryEntry::Bind>(entry_, server, container, name, user, password,
                                            attributes);
            });
}

Variant Account::first_value(const char16_t* attribute) {
    Text name = attribute;
    return element(call<&DirectoryEntry::GetValues>(entry_, name), 0);
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
