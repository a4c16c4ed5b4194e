#include "component/entries/UserPrivileges.h"

namespace orvo {

UserPrivileges user_privileges(const Text&) { return {}; }

}  // namespace orvo
