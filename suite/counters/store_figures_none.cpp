#include "suite/counters/store_figures.h"

namespace orvo::counters {

std::optional<StoreFigures> store_figures() { return std::nullopt; }

}  // namespace orvo::counters
