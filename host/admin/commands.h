#pragma once

#include "host/admin/common/program.h"

namespace orvo::admin {

// The program orvo, with the commands of all rooms.
class Commands : public Program {
public:
    Commands();
};

}  // namespace orvo::admin
