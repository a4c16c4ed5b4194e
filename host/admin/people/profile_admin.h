#pragma once

// `orvo profiles`: as user_admin.h has it for users.

#include "host/admin/people/user_admin.h"

namespace orvo::admin {

struct ProfileListRequest {
    CommonOptions common;
    RowOptions rows;
};
int list_profiles(const ProfileListRequest& request);
int show_profiles(const NamesRequest& request);
// With these attributes; removed again where one is refused.
int add_profile(const AssignmentsRequest& request);
int set_profile(const AssignmentsRequest& request);
// Profiles that users have are left alone.
int remove_profiles(const NamesRequest& request);
int grant_profile_roles(const GrantRequest& request);
int grant_profile_applications(const GrantRequest& request);

}  // namespace orvo::admin
