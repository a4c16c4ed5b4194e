#include "host/admin/people/each_name.h"

#include <orvo/text.h>

#include <iostream>

#include "host/admin/common/component_failure.h"
#include "host/admin/common/exit_codes.h"
#include "host/admin/common/output.h"
#include "host/admin/common/texts.h"

namespace orvo::admin {

int for_each_name(const std::vector<std::string>& names,
                  const std::function<void(const std::string& name)>& work) {
    std::size_t refused = 0;
    for (const std::string& name : names) {
        try {
            work(name);
        } catch (const std::exception& failure) {
            if (names.size() == 1 || is_of_whole_directory(failure)) throw;
            ++refused;
            flush_output();
            std::cerr << "orvo: " << printable(name) << ": " << told(failure) << '\n';
        }
    }
    return refused == 0 ? done : refused == names.size() ? not_done : partly_done;
}

}  // namespace orvo::admin
