#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/web/sessions/application_state.h"
#include "host/web/sessions/session_store.h"

namespace orvo::web {

class SharedStore;

// Where a site keeps its sessions and its application: in this process, or in the store that its
// machines share ([STORE] of the site's configuration).
class SiteState {
public:
    // trouble: as SharedStore's; told at once of a store that cannot be reached now. Raises what
    // store::site_store raises.
    SiteState(const SessionLimits& limits, std::function<void(const std::string&)> trouble);
    ~SiteState();

    SessionStore& sessions() { return *sessions_; }
    const std::shared_ptr<ApplicationState>& application() const { return application_; }
    // For sessions from now on.
    void set_limits(const SessionLimits& limits);

private:
    std::unique_ptr<SharedStore> shared_;
    std::unique_ptr<SessionStore> sessions_;
    std::shared_ptr<ApplicationState> application_;
};

}  // namespace orvo::web
