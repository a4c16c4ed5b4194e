#include "component/entries/User_table.h"

namespace orvo {

template struct detail::callee<User>;

}  // namespace orvo
