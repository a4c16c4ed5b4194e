#pragma once

#include <string>

namespace orvo::directory {

// Why a directory refuses something: a result code and a server's sentence. Code 0: it does not.
struct Refusal {
    int code = 0;
    std::string message = {};

    explicit operator bool() const { return code != 0; }
};

}  // namespace orvo::directory
