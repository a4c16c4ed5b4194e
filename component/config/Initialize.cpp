#include "component/config/Initialize.h"

#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"

namespace orvo {

Initialize::Initialize() { load_site_configuration(); }

Boolean Initialize::InitializeConnectionPool(Variant& i_aPoolParameterNames,
                                             Variant& i_aPoolParameterValues) {
    PMMCreator factory;
    return call<&DirectoryEntry::InitializeConnectionPool>(
        factory.GetPMMObject(), i_aPoolParameterNames, i_aPoolParameterValues);
}

Boolean Initialize::InitializeCache(Variant& i_aCacheParameterNames,
                                    Variant& i_aCacheParameterValues) {
    PMMCreator factory;
    return call<&DirectoryEntry::InitializeCache>(factory.GetPMMObject(), i_aCacheParameterNames,
                                                  i_aCacheParameterValues);
}

template struct detail::callee<Initialize>;

}  // namespace orvo
