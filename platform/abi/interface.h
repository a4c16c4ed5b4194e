#pragma once

// What a contract's header needs: tables and typed references.

#include "platform/abi/ref.h"
#include "platform/abi/table.h"
