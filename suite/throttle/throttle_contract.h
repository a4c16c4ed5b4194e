#pragma once

// The suite's throttle of password checks ("OrvoSuite.Throttle"), as those see it who check
// passwords.

#include "platform/interfaces/interface.h"
#include "platform/values/boolean.h"
#include "platform/values/object.h"
#include "platform/values/text.h"

namespace orvo {

inline constexpr const char16_t* throttle_progid = u"OrvoSuite.Throttle";

// An object is made for each attempt, on the thread that checks the password. From which address it
// comes is found by the throttle: that of the browser whose page the thread runs; programs have
// none. A user is a distinguished name in any spelling: names that a directory might take for one
// are one here, whether there is such a user or not.
class Throttle {
public:
    // Whether the site asks for a throttle. Raises what is wrong with the settings.
    virtual Boolean IsOn() = 0;
    // Whether this password may be checked now. Where it may, that counts as a wrong attempt which
    // is under way, until Settle says what it came to or the object goes. Waits where the latest
    // attempts were wrong. False: there were too many, and the directory is not to be asked.
    // Where the site asks for no throttle: true, and nothing is counted.
    virtual Boolean Admit(const Text& user) = 0;
    // What the check came to that was admitted, as a provider's number: 0 and above, and -4, are
    // right, all others wrong. An object that goes without it counts nothing: that was a failure of
    // the directory, not of the user.
    virtual void Settle(std::int32_t result) = 0;
    // Forgets the user's wrong attempts; whether there were any. The addresses from which the user
    // has logged in stay known.
    virtual Boolean Clear(const Text& user) = 0;
    // A record set of what is counted for this user, and for an address, which may be empty. The
    // columns:
    //   Budget   "unknown addresses", "programs", "known address" (a row for each), "address"
    //   Wrong    how many wrong attempts count now
    //   Most     with how many it is refused
    //   Seconds  until one is admitted again; 0 where one is admitted now
    //   IsAsked  whether this is the one that an attempt of this user from this address uses
    virtual Object State(const Text& user, const Text& address) = 0;
    // A record set of one row: what this process has counted since its start, as doubles. The
    // columns:
    //   Admitted  attempts that were let through to the directory
    //   Delayed   of these, after a wait
    //   Refused   attempts that were not, and those that AdmitFound has refused
    //   Wrong     attempts that came to a wrong password
    //   Waiting   how many wait now
    virtual Object Figures() = 0;
    // Where a directory finds one user by several names (a user's name, a mail address): Admit is
    // asked with the name that was given, and this, before Settle, with that of the entry that was
    // found. Under that one attempts by all names count together. False: there were too many; the
    // password is not to be checked, and the attempt came to a wrong one (Settle(-1), and -1 to
    // whoever asked), as it does where a name is nobody's: so nobody learns which names are one
    // user's.
    virtual Boolean AdmitFound(const Text& user) = 0;
    // Forgets the wrong attempts of an address, for all users; whether there were any.
    virtual Boolean ClearAddress(const Text& address) = 0;

protected:
    ~Throttle() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<Throttle> = describe<Throttle>(
    "IOrvoThrottle", "1b7f5ff0-c7b0-46ee-9216-db4f7a2134ca",
    about("Keeps passwords from being guessed: slows down and refuses who tries many. An object is "
          "for one attempt."),
    method<&Throttle::IsOn>("IsOn")
        .help("Whether the site asks for a throttle."),
    method<&Throttle::Admit>("Admit", "user")
        .help("Whether a password of this user (a distinguished name) may be checked now. Waits "
              "where the latest attempts were wrong."),
    method<&Throttle::Settle>("Settle", "result")
        .help("What the check came to that was admitted: 0 and above, and -4, are right."),
    method<&Throttle::Clear>("Clear", "user")
        .help("Forgets the user's wrong attempts, and says whether there were any."),
    method<&Throttle::State>("State", "user", "address")
        .help("What is counted for this user and this address, which may be empty: a record set "
              "with the columns Budget, Wrong, Most, Seconds (until one is admitted again) and "
              "IsAsked."),
    method<&Throttle::Figures>("Figures")
        .help("What this process has counted since its start: a record set of one row with the "
              "columns Admitted, Delayed, Refused, Wrong and Waiting."),
    method<&Throttle::AdmitFound>("AdmitFound", "user")
        .help("After Admit, where the directory finds a user by several names: whether there may "
              "be one more attempt by any of them. user is the name of the entry that was found. "
              "False: the attempt came to a wrong password (Settle(-1))."),
    method<&Throttle::ClearAddress>("ClearAddress", "address")
        .help("Forgets the wrong attempts of an address, and says whether there were any."));
// clang-format on

}  // namespace orvo
