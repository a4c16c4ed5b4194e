#pragma once

// The suite's audit ("OrvoSuite.Audit"), as those see it who have something to record.

#include "platform/interfaces/interface.h"
#include "platform/values/boolean.h"
#include "platform/values/text.h"

namespace orvo {

inline constexpr const char16_t* audit_progid = u"OrvoSuite.Audit";

// What is recorded. An object is made for each event, on the thread that does what is recorded; the
// time, and the address of the browser whose page does it, are found by the audit.
class Audit {
public:
    // Whether the site asks for an audit. Raises what is wrong with the settings.
    virtual Boolean IsOn() = 0;
    // Where it asks for one: `event` has happened, "login" say, and how it ended ("done"). `user`:
    // to whom, `by`: by whose account, `server`: on which directory, `what`: an attribute, an
    // application. Empty texts are left out. None of them is a password, nor a hash of one.
    //
    // Where the event cannot be recorded the log has it. If the site wants events to be on disk
    // (Sync), that raises, too: the caller lets nobody in then.
    virtual void Record(const Text& event, const Text& result, const Text& user, const Text& by,
                        const Text& server, const Text& what) = 0;

protected:
    ~Audit() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<Audit> = describe<Audit>(
    "IOrvoAudit", "9460c7dd-dffe-4cf2-a4e0-ed6460f14d7f",
    about("Records who logged in and who changed what."),
    method<&Audit::IsOn>("IsOn")
        .help("Whether the site asks for an audit."),
    method<&Audit::Record>("Record", "event", "result", "user", "by", "server", "what")
        .help("Records an event, where the site asks for an audit."));
// clang-format on

}  // namespace orvo
