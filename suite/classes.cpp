#include "platform/module/module.h"
#include "suite/audit/suite_audit.h"
#include "suite/authfilter/filter_connector.h"
#include "suite/authfilter/live_logins.h"
#include "suite/configuration/suite_configuration.h"
#include "suite/counters/suite_counters.h"
#include "suite/directory/ldap/provider/LdapDirectory.h"
#include "suite/directory/ldap/provider/LdapServers.h"
#include "suite/log/suite_log.h"
#include "suite/throttle/suite_throttle.h"

namespace orvo {

const ModuleDescription& this_module() {
    static constexpr ModuleClass classes[] = {
        module_class<SuiteConfiguration>(),
        module_class<SuiteLog>(),
        module_class<audit::SuiteAudit>(),
        module_class<counters::SuiteCounters>(),
        module_class<throttle::SuiteThrottle>(),
        module_class<directory::ldap::LdapDirectory>(),
        module_class<directory::ldap::LdapServers>(),
        module_class<authfilter::FilterConnectorObject>(),
        module_class<authfilter::LiveLogins>(),
    };
    static constexpr ModuleDescription description{"OrvoSuite", classes};
    return description;
}

}  // namespace orvo
