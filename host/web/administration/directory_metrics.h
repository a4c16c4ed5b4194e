#pragma once

#include "host/web/metrics/exposition.h"

namespace orvo::web {

// How the directory's servers and the connections to them are doing, what was asked of them
// (OrvoDirectory.LdapServers), password checks by their outcome and what the authorization filter
// did, and how the shared store is doing (OrvoSuite.Counters), and what the throttle did
// (OrvoSuite.Throttle). Of more than 50 servers the first are told. Waits for no server. Raises
// Failure where there are no such components; what is written by then stays.
void write_directory_metrics(Exposition& out);

}  // namespace orvo::web
