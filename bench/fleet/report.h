#pragma once

#include <ostream>

#include "bench/fleet/verdict.h"

namespace orvo::fleet {

void print(const ChaosOutcome& outcome, const Verdict& verdict, std::ostream& out);

}  // namespace orvo::fleet
