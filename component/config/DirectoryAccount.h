#pragma once

#include "component/config/PMMCreator.h"
#include "platform/values/secret.h"
#include "platform/values/values.h"

namespace orvo {

// Who works in the directory: the full name of an entry, and its password. Used by one thread.
//
// Objects that take credentials keep them in one of these and work with it from then on. Nothing is
// checked here: what is wrong with them the directory says, at the bind or the search. Providers
// take both in-out and get copies: what one writes there changes no account.
struct DirectoryAccount {
    Text name = {};
    Secret secret = {};

    DirectoryAccount copy() const { return {name, secret.clone()}; }
    // A search of the configured server below `container` (a full name), ready for Execute. Raises
    // what the provider raises, and 91 where none is configured.
    Ref<DirectorySearch> connected_search(PMMCreator& provider, Text container) const;
};

// The membership script account of the thread's settings.
DirectoryAccount script_account();
// The account of the login that a web session holds.
DirectoryAccount account_of(const Object& session);

// Binds `entry` to the entry `name` ("cn=jsmith"; empty: the container itself) below `container` of
// the configured server. `user` and `password` are in-out as the provider takes them;
// `attributes`: the names of those to fetch at once. Raises what the provider raises.
void bind_entry(const Ref<DirectoryEntry>& entry, Text container, Text name, Text& user,
                Secret& password, Variant attributes = Values());

}  // namespace orvo
