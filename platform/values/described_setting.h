#pragma once

#include <string>

namespace orvo {

// A setting as people are told of it (docs/reference/settings.md).
struct DescribedSetting {
    std::string name;
    std::string values;     // what it may be: "seconds, 1 to 3600"
    std::string otherwise;  // what holds without it; empty: nothing
    std::string about;      // sentences
};

}  // namespace orvo
