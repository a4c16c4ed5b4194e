#include "component/config/Initialize.h"

#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"

namespace orvo {

Initialize::Initialize() { load_site_configuration(); }

bool Initialize::InitializeConnectionPool(Variant& i_aPoolParameterNames,
                                          Variant& i_aPoolParameterValues) {
    return call<&DirectoryEntry::InitializeConnectionPool>(
        PMMCreator().GetPMMObject(), i_aPoolParameterNames, i_aPoolParameterValues);
}

bool Initialize::InitializeCache(Variant& i_aCacheParameterNames,
                                 Variant& i_aCacheParameterValues) {
    return call<&DirectoryEntry::InitializeCache>(PMMCreator().GetPMMObject(),
                                                  i_aCacheParameterNames, i_aCacheParameterValues);
}

template struct detail::callee<Initialize>;

}  // namespace orvo
