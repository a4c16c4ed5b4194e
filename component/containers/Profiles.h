#pragma once

#include "component/entries/Profile.h"

namespace orvo {

// The container that holds every profile. In a web page it binds itself with the session's account;
// elsewhere BindAs comes first, but for CreateProfile and AsRecordset.
//
// Used by the thread that made it. Profiles and record sets that it answers are the caller's own.
// What fails is logged and raised again by each member that it passes through.
class Profiles final : public ObjectControl {
public:
    Profiles() { IObjectControl_Activate(); }
    ~Profiles() { IObjectControl_Deactivate(); }

    // All profiles, at most 1000: a record set with the column "cn", in the provider's order. Needs
    // credentials, but no binding.
    Object AsRecordset();
    // Whether the profile was deleted: one that still has users is not. Raises
    // emErrNotBoundToProfiles on an unbound object.
    bool DeleteProfile(Text& iCommonName);
    // An unbound object binds as the membership script account, and stays bound so. Raises
    // entry_already_exists for a name that is taken.
    Ref<Profile> CreateProfile(Text& iCommonName);
    // The credentials are kept also when the bind is refused. The object then counts as bound: what
    // needs a binding goes on and fails at the directory. An empty name is passed on to it, too.
    void BindAs(Text& iUsername, Secret& iPwd);

    void IObjectControl_Activate() override;
    void IObjectControl_Deactivate() override {}
    bool IObjectControl_CanBePooled() override { return false; }

private:
    Ref<Profile> bound_profile(Text& name);

    std::optional<PMMCreator> mPMMCreator;  // in front of what it made, which is released first
    Ref<DirectoryEntry> mContainer;
    DirectoryAccount mAccount;
};

// clang-format off
template <>
inline constexpr auto table_of<Profiles> = describe<Profiles>(
    "IProfiles", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e719",
    about("The container of all profiles."),
    method<&Profiles::AsRecordset>("AsRecordset")
        .help("All profiles, at most 1000, as a record set with the column cn."),
    method<&Profiles::DeleteProfile>("DeleteProfile", "iCommonName")
        .help("Deletes a profile that has no users; answers whether it did."),
    method<&Profiles::CreateProfile>("CreateProfile", "iCommonName")
        .help("Creates a profile and answers it bound. An unbound object binds with the "
              "membership script account."),
    method<&Profiles::BindAs>("BindAs", "iUsername", "iPwd")
        .help("Binds to the profiles' container with a directory account."));
// clang-format on

extern template struct detail::callee<Profiles>;

template <>
inline constexpr auto class_of<Profiles> = describe_class<Profiles, ObjectControl>(
    "OrvoMembership.Profiles", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e709");

}  // namespace orvo
