#pragma once

#include "component/provider/directory_contract.h"
#include "platform/interfaces/hosted.h"

namespace orvo {

// Makes the objects of the configured directory provider. The provider's module is created at
// first use and kept for the life of this object. A method that makes one of its own keeps it to
// its end; an entry or a record set that outlives the method has to hold its module itself.
//
// Which provider it is, is always told by the thread's shared settings, never by a ServerInfo that
// a calling object was given. Without one configured every call fails with 91 (object not set).
//
// Used by one thread, as what it makes is. What it answers is the caller's. A provider's failure is
// logged and raised again under the one name GetPMM.
class PMMCreator {
public:
    Ref<DirectorySchema> GetPMMSchema();
    // Not yet bound; a new one at each call.
    Ref<DirectoryEntry> GetPMMObject();
    Ref<DirectorySearch> GetPMMSearch();
    // Opened on the configured server and user container.
    Ref<DirectoryValidator> GetPMMValidator();

private:
    void LoadModule();

    Ref<DirectoryModule> module_;
};

// clang-format off
template <>
inline constexpr auto table_of<PMMCreator> = describe<PMMCreator>(
    "IPMMCreator", "b6c8f471-05d1-4dc5-8502-73bbfc1c5006",
    about("Makes the objects of the configured directory provider."),
    method<&PMMCreator::GetPMMSchema>("GetPMMSchema").help("The provider's object for the schema."),
    method<&PMMCreator::GetPMMObject>("GetPMMObject")
        .help("A provider's entry object, not yet bound."),
    method<&PMMCreator::GetPMMSearch>("GetPMMSearch").help("A provider's search object."),
    method<&PMMCreator::GetPMMValidator>("GetPMMValidator")
        .help("A provider's password check, opened for the users."));
// clang-format on

extern template struct detail::callee<PMMCreator>;

template <>
inline constexpr auto class_of<PMMCreator> =
    describe_class<PMMCreator>("OrvoMembership.PMMCreator", "6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e702");

}  // namespace orvo
