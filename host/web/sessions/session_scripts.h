#pragma once

// What the shared store does with sessions, each in one step.
//
// A session is a hash, <prefix>:session:<name>: "v" its content, sealed; "t" and "u" its lock
// (shared_locks.h); "m" when it was made; "l" its timeout; "c" its rank. Sorted sets,
// <prefix>:sessions:<rank>, have the names by the time when they end, and <prefix>:sessions:size is
// what all of them take, in bytes. All times are in milliseconds. Every script's first argument is
// the time (lua_now); "lists" are the three sorted sets and the size.
//
// Sent once more, each does the same as once, but for `end` and `take`.

#include <chrono>

#include "suite/store/command.h"

namespace orvo::web::session_scripts {

// How long one that has ended is kept for whoever looks for those.
inline constexpr std::chrono::milliseconds afterlife = std::chrono::hours(1);

// What one counts beside its content, in bytes. With Redis 7 it takes 870 (used_memory, 20,000 of
// them).
inline constexpr std::size_t own_size = 1000;

// Keys: session, lists, and the locks of others that are released along the way. Arguments: token,
// the lock's life, absolute lifetime, name, the tokens of those others.
// Answers {0}: there is none; {1}: another request has it; {2, content}: it had ended, and is gone;
// {3, content}: it is locked, and used by that.
const store::Script& open();

// Keys: session, what it is to be (the same unless renewed), lists. Arguments: token, name, name to
// be, absolute lifetime, timeout, rank, content ("" as it was), how long it stays locked (0: not),
// whether it is a new one (1), how many there may be, how many bytes they may take, the names'
// prefix. Where there are too many, or too large ones, those go that were used longest ago, by
// their rank.
// Answers {0}: others have it; {1, ended, number}: done, and these have ended (names and contents),
// so many of them, the last ones, for room; {2, ended, number}: it is a new one, and there is no
// room.
const store::Script& store();

// Keys: session, lists. Arguments: token, name. Answers 0: others have it; 1: it is gone; 2: it was
// gone already.
const store::Script& end();

// Keys: session, lists. Arguments: absolute lifetime, name. Answers the content of one that has not
// ended, which is used by that; null otherwise.
const store::Script& look();

// Keys: lists. Arguments: how many at most, the names' prefix. Answers those that have ended, names
// and contents; they are gone.
const store::Script& take();

// Keys: lists. Answers how many there are, those that have ended and were not taken yet among them,
// and how many bytes they take.
const store::Script& count();

}  // namespace orvo::web::session_scripts
