#pragma once

// What a contract's header needs: tables and typed references.

#include "platform/interfaces/ref.h"
#include "platform/interfaces/table.h"
