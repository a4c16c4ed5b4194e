#pragma once

#include <sys/types.h>

#include <vector>

namespace orvo::fleet {

// Processor time that processes have taken since they were started, in seconds; to a hundredth.
double processor_seconds(const std::vector<pid_t>& processes);

// Memory that a process holds, in bytes.
double resident_bytes(pid_t process);

}  // namespace orvo::fleet
