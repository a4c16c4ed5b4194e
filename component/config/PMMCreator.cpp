#include "component/config/PMMCreator.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"

namespace orvo {
namespace {

// All four operations report under this name.
constexpr const char16_t* source = u"OrvoMembership.PMMCreator.GetPMM";

}  // namespace

void PMMCreator::LoadModule() {
    if (module_) return;
    ServerInfo* info = shared_server_info();
    // Neither message is seen: no error is pending when they are handed over. Callers know a thread
    // without a provider by the 91 (object not set) of the call that follows.
    if (info == nullptr) {
        HandleError(source, u"Serverinfo is not set unable to read the configuration");
        return;
    }
    const Text implementation = trimmed(info->provider_implementation());
    if (!implementation.empty())
        module_ = Gen_GetComponent<DirectoryModule>(implementation);
    else
        HandleError(source, u"There is no implementation specified in the configuration files");
}

Ref<DirectorySchema> PMMCreator::GetPMMSchema() {
    return trapped(source, [&] {
        LoadModule();
        return call<&DirectoryModule::CreateSchema>(module_);
    });
}

Ref<DirectoryEntry> PMMCreator::GetPMMObject() {
    return trapped(source, [&] {
        LoadModule();
        return call<&DirectoryModule::CreateEntry>(module_);
    });
}

Ref<DirectorySearch> PMMCreator::GetPMMSearch() {
    return trapped(source, [&] {
        LoadModule();
        return call<&DirectoryModule::CreateSearch>(module_);
    });
}

Ref<DirectoryValidator> PMMCreator::GetPMMValidator() {
    return trapped(source, [&] {
        LoadModule();
        auto validator = call<&DirectoryModule::CreateValidator>(module_);
        Text server = shared_server_info()->server_name();
        Text container = shared_server_info()->user_container();
        call<&DirectoryValidator::Open>(validator, server, container);
        return validator;
    });
}

template struct detail::callee<PMMCreator>;

}  // namespace orvo
