#include "component/config/PMMAccessor.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"

namespace orvo {
namespace {

constexpr std::int32_t administrators_application = 10;
constexpr std::int32_t most_users = 1000;

Text application_filter(std::int32_t application) {
    if (application != administrators_application)
        return u"(orvoapps=" + decimal(application) + u")";
    // The second type has always been written with a 3 too many: no user is of type 33.
    return u"(|(orvousertype = 4)(orvousertype = 33))";
}

}  // namespace

void PMMAccessor::InitConfigFile(const Text& sSiteConfigFileName) {
    trapped(u"OrvoMembership.PMMAccessor.Init", [&] {
        factory_.emplace();
        const Object made = create_object(u"Quendra.Configuration");
        call<&SiteConfigurationLoader::LoadSiteConfigurationFile>(
            Ref<SiteConfigurationLoader>::from(made), sSiteConfigFileName);
        auto configuration = Ref<Configuration>::from(made);
        ServerInfo& info = *shared_server_info();
        info.LoadConfigFile(configuration);
        account_ = script_account();
    });
}

Object PMMAccessor::GetLDAPUsers(std::int32_t productID) {
    return trapped(u"OrvoMembership.PMMAccessor.GetLDAPUsers", [&] {
        if (!factory_) raise_runtime_error(runtime_error::object_not_set);
        ServerInfo& info = *shared_server_info();
        Text filter = u"(& (objectClass=" + info.first_user_class() + u")" +
                      application_filter(productID) + u")";
        const auto search = account_.connected_search(*factory_, info.user_container());
        Variant columns = Values{u"CN"};
        return call<&DirectorySearch::Execute>(search, filter, columns, most_users);
    });
}

template struct detail::callee<PMMAccessor>;

}  // namespace orvo
