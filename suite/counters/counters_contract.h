#pragma once

// The suite's counters ("OrvoSuite.Counters"), as those see them who count something.

#include "platform/interfaces/interface.h"
#include "platform/values/object.h"
#include "platform/values/text.h"

namespace orvo {

inline constexpr const char16_t* counters_progid = u"OrvoSuite.Counters";

// What has happened in this process, by name and kind, for whoever watches over it. One set of
// counters for all modules of the process; an object may be made for each use.
class Counters {
public:
    // Once more: `name`, "logins" say, and of which kind, "right". Neither is anybody's name: the
    // first 200 pairs are counted and no others.
    virtual void Count(const Text& name, const Text& kind) = 0;
    // A record set of all that was counted, ordered: columns Name, Kind and Count, a double.
    virtual Object Rows() = 0;
    // A record set with one row where the site has a shared store, as the suite uses it for logins,
    // without rows where it has none. The columns:
    //   Reachable    whether it answers; true before it was first asked
    //   Commands     that were answered or failed, since the process began, as a double; likewise
    //   Failures     of these, those for which it was not to be reached, or refused for now
    //   Connects     connections that were made
    //   Failovers    how often another master was found than before
    //   Connections  now
    //   InUse        of these
    //   Seconds      what all commands took
    virtual Object Store() = 0;

protected:
    ~Counters() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<Counters> = describe<Counters>(
    "IOrvoCounters", "9460c7dd-dffe-4cf2-a4e0-ed6460f14d80",
    about("What has happened in this process: password checks by their outcome, logins."),
    method<&Counters::Count>("Count", "name", "kind")
        .help("Counts one more of it. Neither text is anybody's name; the first 200 pairs are counted."),
    method<&Counters::Rows>("Rows")
        .help("All that was counted, as a record set with the columns Name, Kind and Count."),
    method<&Counters::Store>("Store")
        .help("How the site's shared store is doing: a record set with the columns Reachable, Commands, "
              "Failures, Connects, Failovers, Connections, InUse and Seconds, without rows where the "
              "site has none."));
// clang-format on

}  // namespace orvo
