#include "component/config/DirectoryAccount.h"

#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"

namespace orvo {

Ref<DirectorySearch> DirectoryAccount::connected_search(PMMCreator& provider,
                                                        Text container) const {
    auto search = provider.GetPMMSearch();
    Text server = shared_server_info()->server_name();
    Text user = name;
    Text password = password_text();
    call<&DirectorySearch::Connect>(search, server, container, user, password);
    return search;
}

void bind_entry(const Ref<DirectoryEntry>& entry, Text container, Text name, Text& user,
                Text& password, Variant attributes) {
    Text server = shared_server_info()->server_name();
    call<&DirectoryEntry::Bind>(entry, server, container, name, user, password, attributes);
}

}  // namespace orvo
