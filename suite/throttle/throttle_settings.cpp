#include "suite/throttle/throttle_settings.h"

#include <mutex>
#include <string>
#include <type_traits>

#include "suite/configuration/section_value.h"

namespace orvo::throttle {
namespace {

constexpr TextView section = u"THROTTLE";

using Key = SectionKey<Settings>;

template <auto field>
std::string usual(const Settings& settings) {
    if constexpr (requires { (settings.*field).count(); })
        return std::to_string((settings.*field).count());
    else
        return std::to_string(settings.*field);
}

template <auto field>
void put(const Key& key, const SectionValue& value, Settings& settings) {
    settings.*field = static_cast<std::decay_t<decltype(settings.*field)>>(key.number(value));
}

constexpr TextView on = u"On";

constexpr Key keys[] = {
    {.name = on,
     .values = "yes or no",
     .usual = [](const Settings&) { return std::string("no"); },
     .about = "Whether wrong passwords are counted, and attempts slowed down and refused. Needed "
              "beside any other key.",
     .read = [](const Key&, const SectionValue& value,
                Settings& settings) { settings.is_on = value.is_yes(); }},
    {.name = u"Attempts",
     .least = 1,
     .most = 10'000,
     .values = "attempts",
     .usual = usual<&Settings::attempts>,
     .about =
         "Wrong passwords that one user may have within `Window`: from each address from which "
         "the user has logged in, and from all others together.",
     .read = put<&Settings::attempts>},
    {.name = u"AddressAttempts",
     .least = 1,
     .most = 1'000'000,
     .values = "attempts",
     .usual = usual<&Settings::attempts_of_address>,
     .about = "Wrong passwords that may come from one address within `Window`, for all users "
              "together who have not logged in from there. Of IPv6 an address is a network /64.",
     .read = put<&Settings::attempts_of_address>},
    {.name = u"Window",
     .least = 10,
     .most = 86'400,
     .values = "seconds",
     .usual = usual<&Settings::window>,
     .about = "How long it takes until all wrong passwords are forgotten, one after the other.",
     .read = put<&Settings::window>},
    {.name = u"UndelayedAttempts",
     .least = 0,
     .most = 10'000,
     .values = "attempts",
     .usual = usual<&Settings::undelayed>,
     .about =
         "Wrong passwords of a user after which the next attempt waits: a quarter of a second, "
         "and with each further one twice as long.",
     .read = put<&Settings::undelayed>},
    {.name = u"LongestDelay",
     .least = 0,
     .most = 30'000,
     .values = "milliseconds",
     .usual = usual<&Settings::longest_delay>,
     .about = "How long an attempt waits at most.",
     .read = put<&Settings::longest_delay>},
    {.name = u"MostWaiting",
     .least = 0,
     .most = 10'000,
     .values = "attempts",
     .usual = usual<&Settings::most_waiting>,
     .about = "How many attempts of one process wait at once, each on a worker of the host. Beyond "
              "that an attempt that would have to wait is refused.",
     .read = put<&Settings::most_waiting>},
    {.name = u"KnownFor",
     .least = 1,
     .most = 3'650,
     .values = "days",
     .usual = usual<&Settings::known_for>,
     .about = "How long after a login its address is known to be the user's. Kept in memory, it is "
              "forgotten with the process.",
     .read = put<&Settings::known_for>},
    {.name = u"MostCounted",
     .least = 100,
     .most = 10'000'000,
     .values = "users",
     .usual = usual<&Settings::most_counted>,
     .about = "How many users, and as many addresses, are counted in the memory of one process; "
              "beyond that those are forgotten that have the fewest wrong passwords.",
     .read = put<&Settings::most_counted>},
};

}  // namespace

Settings read_settings(const IniValues& values, const std::filesystem::path& site_file) {
    Settings settings;
    const bool says_whether = values.find(section, on) != nullptr;
    read_section(values, section, site_file, keys, [&](const Key& key, const SectionValue& value) {
        if (!says_whether) value.refuse(u"it needs an On, yes or no");
        key.read(key, value, settings);
    });
    return settings;
}

std::shared_ptr<const Settings> settings_of_site() {
    static const auto off = std::make_shared<const Settings>();
    static std::mutex mutex;
    static SiteFile last;
    static std::shared_ptr<const Settings> last_settings;
    SiteFile site = load_site_file();
    if (!site.values) return off;
    const std::lock_guard lock(mutex);
    if (site.values != last.values || site.name != last.name) {
        last_settings = std::make_shared<const Settings>(read_settings(*site.values, site.name));
        last = std::move(site);
    }
    return last_settings;
}

std::vector<DescribedSetting> described_settings() { return described(keys); }

}  // namespace orvo::throttle
