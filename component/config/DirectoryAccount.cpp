#include "component/config/DirectoryAccount.h"

#include "component/common/web_page.h"
#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"

namespace orvo {

Ref<DirectorySearch> DirectoryAccount::connected_search(PMMCreator& provider,
                                                        Text container) const {
    auto search = provider.GetPMMSearch();
    Text server = shared_server_info()->server_name();
    DirectoryAccount given = copy();
    call<&DirectorySearch::Connect>(search, server, container, given.name, given.secret);
    return search;
}

DirectoryAccount script_account() {
    ServerInfo& info = *shared_server_info();
    return {info.script_user(), info.script_code().clone()};
}

DirectoryAccount account_of(const Object& session) {
    return {session_text(session, session_account), session_secret(session)};
}

void bind_entry(const Ref<DirectoryEntry>& entry, Text container, Text name, Text& user,
                Secret& password, Variant attributes) {
    Text server = shared_server_info()->server_name();
    call<&DirectoryEntry::Bind>(entry, server, container, name, user, password, attributes);
}

}  // namespace orvo
