#pragma once

// What RedisStore asks of the shared store: a script for each operation, which the store runs as
// one step.
//
// Keys, behind the site's prefix; G is the name of a GUID (Keyring::name_of), U that of a user
// (Keyring::names_of), of which there are two while the site's keys are changed, with a blank
// between them in a field:
//
//     record:G      a record: sealed, account (U of its path, or empty), user (U), person (which
//                   name and path it is of), is_named, ends
//     login:G       a login: sealed, user (U), name (U of its name), timeout, began, ends, number
//     records-of:U  the Gs of a user's records and
//     logins-of:U   logins, ended ones perhaps among them
//     login-number  how many logins have begun
//
// Times are milliseconds of the store's clock, so that machines need not agree on theirs. Every key
// goes by itself, not before what it holds has ended.
//
// Every script has the site's prefix as its first argument, and as its second how far ahead of the
// store's clock its time is, which tests use. Those that change something answer what they are
// asked and the Gs of all records and logins that are others now, or gone; each of these is
// published on the channel "ended-logins" as well.
//
// A store that is full (maxmemory) refuses create, save and begin, unless they end something first:
// then there is room for what comes in its place.

#include "suite/store/command.h"

namespace orvo::authfilter::scripts {

using store::Script;

// G, lifetime: the sealed record, or nothing; its lifetime begins anew.
const Script& find();
// G, lifetime: what a live login's sealed form is, and its record's or nothing; both live on from
// now. Nothing where there is no live login.
const Script& ask();
// G: the same, and nothing lives on.
const Script& user_of();
// G, lifetime, sealed, most, the sealed record that counts for nothing or "": whether there was no
// other.
const Script& create();
// G, lifetime, sealed, most, account, user, person, is_named (1 or 0), name (U of its name)
const Script& save();
// G, lifetime, sealed, most, user by the name, name, is_only_one (1 or 0), timeout
const Script& begin();
// G
const Script& forget();
// G: a row for each login of its user, the times in milliseconds: number, age, idle time, whether
// it is G's (1 or 0).
const Script& logins_of();
// G, number: whether it was there (1 or 0)
const Script& end();
// G: how many
const Script& end_others();
// U, G that is spared or "": how many
const Script& end_all_of();

}  // namespace orvo::authfilter::scripts
