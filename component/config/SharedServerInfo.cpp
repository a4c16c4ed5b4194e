#include "component/config/SharedServerInfo.h"

#include "component/common/Lib_General.h"
#include "platform/interfaces/call.h"
#include "platform/module/per_thread.h"

namespace orvo {

ServerInfo* shared_server_info() {
    static PerThread<ServerInfo> info;
    return &info.get();
}

ServerInfo& settings_or_raise(std::int32_t number, const char16_t* source,
                              const char16_t* description) {
    ServerInfo* info = shared_server_info();
    if (info == nullptr) throw Failure(number, source, description);
    return *info;
}

void load_site_configuration() {
    auto configuration = Gen_GetComponent<Configuration>(u"Quendra.Configuration");
    Variant output;
    call<&Configuration::Initialize>(configuration, output);
    shared_server_info()->LoadConfigFile(configuration);
}

}  // namespace orvo
