#pragma once

#include <vector>

#include "platform/values/object.h"
#include "platform/values/variant.h"

namespace orvo::web {

// What a record set holds, read from where it stands to its end. Raises what it does.
struct RecordRows {
    std::vector<Text> columns;
    std::vector<std::vector<Variant>> rows;  // in the order of the columns

    static RecordRows read(const Object& record_set);
};

}  // namespace orvo::web
