#include <chrono>

#include "host/admin/diagnosis/ldap_server.h"
#include "suite/directory/policy/account_times.h"

namespace orvo::admin {
namespace {

using namespace directory;
using std::chrono::seconds;

// Where servers tell the time, for those who may read it.
struct ClockPlace {
    Make make;
    const char* entry;
    const char* attribute;
};
constexpr ClockPlace places[] = {
    {Make::openldap, "cn=Current,cn=Time,cn=Monitor", "monitorTimestamp"},
    {Make::directory_389, "cn=monitor", "currentTime"},
    {Make::active_directory, "", "currentTime"},
};

// Beyond this, passwords and lock-outs end at other times than people expect, and servers of a list
// disagree about which change is the later one.
constexpr seconds most_apart{30};

std::string written(seconds apart) {
    return std::to_string(std::chrono::abs(apart).count()) + " s";
}

}  // namespace

Finding examine_clock(LdapServer& server) {
    for (const ClockPlace& place : places) {
        if (place.make != server.make) continue;
        const auto result = server.session->read(place.entry, {place.attribute});
        const auto there =
            result.ok() ? try_seconds(value_of(result.entry, place.attribute)) : std::nullopt;
        if (!there)
            return unknown("The service account may not read " + std::string(place.entry) + ".",
                           "Let it read " + std::string(place.attribute) + " there.");
        const auto here = std::chrono::floor<seconds>(std::chrono::system_clock::now());
        const seconds apart = *there - here;
        if (std::chrono::abs(apart) <= most_apart)
            return found("less than " + std::to_string(most_apart.count()) +
                         " s from this machine's");
        return failed(
            written(apart) + (apart < seconds(0) ? " behind" : " ahead of") + " this machine's.",
            "Let both machines set their clocks by a time server.");
    }
    return unknown("This server does not tell the time.");
}

}  // namespace orvo::admin
