#include "component/config/SharedServerInfo.h"

#include "component/common/Lib_General.h"
#include "platform/abi/call.h"
#include "platform/abi/per_thread.h"

namespace orvo {

ServerInfo* shared_server_info() {
    static PerThread<ServerInfo> info;
    return &info.get();
}

void load_site_configuration() {
    auto configuration = Gen_GetComponent<Configuration>(u"Quendra.Configuration");
    Variant output;
    call<&Configuration::Initialize>(configuration, output);
    shared_server_info()->LoadConfigFile(configuration);
}

}  // namespace orvo
