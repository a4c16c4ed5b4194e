#pragma once

#include "host/web/metrics/exposition.h"

namespace orvo::web {

// What the process takes of its machine, under the names that are usual for it (process_…), and of
// the engine's memory. A figure that the system does not tell is left out.
void write_process_metrics(Exposition& out);

}  // namespace orvo::web
