#pragma once

// The suite's classes that programs create, and those of the objects that these hand out.

#include <tuple>

#include "suite/audit/suite_audit.h"
#include "suite/authfilter/filter_user.h"
#include "suite/authfilter/live_logins.h"
#include "suite/configuration/suite_configuration.h"
#include "suite/counters/suite_counters.h"
#include "suite/directory/ldap/provider/LdapServers.h"
#include "suite/log/suite_log.h"
#include "suite/throttle/suite_throttle.h"

namespace orvo {

using SuiteClasses =
    std::tuple<SuiteConfiguration, SuiteLog, audit::SuiteAudit, counters::SuiteCounters,
               throttle::SuiteThrottle, directory::ldap::LdapServers,
               authfilter::FilterConnectorObject, authfilter::FilterUserObject,
               authfilter::LiveLogins, authfilter::LiveLogin>;

}  // namespace orvo
