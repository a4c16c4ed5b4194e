#include "suite/throttle/throttle_settings.h"

#include <mutex>

#include "suite/configuration/section_value.h"

namespace orvo::throttle {
namespace {

constexpr TextView section = u"THROTTLE";

struct Key {
    TextView name;
    std::int64_t least = 0;
    std::int64_t most = 0;
    const char* unit;
    std::int64_t (*usual)(const Settings& settings);
    const char* about;
    void (*put)(Settings& settings, std::int64_t number);
};

constexpr TextView on = u"On";

constexpr Key keys[] = {
    {.name = on,
     .unit = "yes or no",
     .usual = nullptr,
     .about = "Whether wrong passwords are counted, and attempts slowed down and refused. Needed "
              "beside any other key.",
     .put = [](Settings& settings, std::int64_t yes) { settings.is_on = yes != 0; }},
    {.name = u"Attempts",
     .least = 1,
     .most = 10'000,
     .unit = "attempts",
     .usual = [](const Settings& usual) { return std::int64_t{usual.attempts}; },
     .about =
         "Wrong passwords that one user may have within `Window`: from each address from which "
         "the user has logged in, and from all others together.",
     .put = [](Settings& settings,
               std::int64_t number) { settings.attempts = static_cast<int>(number); }},
    {.name = u"AddressAttempts",
     .least = 1,
     .most = 1'000'000,
     .unit = "attempts",
     .usual = [](const Settings& usual) { return std::int64_t{usual.attempts_of_address}; },
     .about = "Wrong passwords that may come from one address within `Window`, for all users "
              "together who have not logged in from there. Of IPv6 an address is a network /64.",
     .put = [](Settings& settings,
               std::int64_t number) { settings.attempts_of_address = static_cast<int>(number); }},
    {.name = u"Window",
     .least = 10,
     .most = 86'400,
     .unit = "seconds",
     .usual = [](const Settings& usual) { return std::int64_t{usual.window.count()}; },
     .about = "How long it takes until all wrong passwords are forgotten, one after the other.",
     .put = [](Settings& settings,
               std::int64_t number) { settings.window = std::chrono::seconds(number); }},
    {.name = u"UndelayedAttempts",
     .least = 0,
     .most = 10'000,
     .unit = "attempts",
     .usual = [](const Settings& usual) { return std::int64_t{usual.undelayed}; },
     .about =
         "Wrong passwords of a user after which the next attempt waits: a quarter of a second, "
         "and with each further one twice as long.",
     .put = [](Settings& settings,
               std::int64_t number) { settings.undelayed = static_cast<int>(number); }},
    {.name = u"LongestDelay",
     .least = 0,
     .most = 30'000,
     .unit = "milliseconds",
     .usual = [](const Settings& usual) { return std::int64_t{usual.longest_delay.count()}; },
     .about = "How long an attempt waits at most.",
     .put =
         [](Settings& settings, std::int64_t number) {
             settings.longest_delay = std::chrono::milliseconds(number);
         }},
    {.name = u"MostWaiting",
     .least = 0,
     .most = 10'000,
     .unit = "attempts",
     .usual = [](const Settings& usual) { return std::int64_t{usual.most_waiting}; },
     .about = "How many attempts of one process wait at once, each on a worker of the host. Beyond "
              "that an attempt that would have to wait is refused.",
     .put = [](Settings& settings,
               std::int64_t number) { settings.most_waiting = static_cast<int>(number); }},
    {.name = u"KnownFor",
     .least = 1,
     .most = 3'650,
     .unit = "days",
     .usual = [](const Settings& usual) { return std::int64_t{usual.known_for.count()}; },
     .about = "How long after a login its address is known to be the user's. Kept in memory, it is "
              "forgotten with the process.",
     .put = [](Settings& settings,
               std::int64_t number) { settings.known_for = std::chrono::days(number); }},
    {.name = u"MostCounted",
     .least = 100,
     .most = 10'000'000,
     .unit = "users",
     .usual = [](const Settings& usual) { return static_cast<std::int64_t>(usual.most_counted); },
     .about = "How many users, and as many addresses, are counted in the memory of one process; "
              "beyond that those are forgotten that have the fewest wrong passwords.",
     .put = [](Settings& settings,
               std::int64_t number) { settings.most_counted = static_cast<std::size_t>(number); }},
};

}  // namespace

Settings read_settings(const IniValues& values, const std::filesystem::path& site_file) {
    Settings settings;
    const bool says_whether = values.find(section, on) != nullptr;
    read_section(values, section, site_file, keys, [&](const Key& key, const SectionValue& value) {
        if (!says_whether) value.refuse(u"it needs an On, yes or no");
        key.put(settings, key.usual ? value.number(key.least, key.most) : value.is_yes());
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

std::vector<DescribedSetting> described_settings() {
    std::vector<DescribedSetting> all;
    for (const Key& key : keys)
        all.push_back({to_utf8(key.name),
                       key.usual ? std::string(key.unit) + ", " + std::to_string(key.least) +
                                       " to " + std::to_string(key.most)
                                 : key.unit,
                       key.usual ? std::to_string(key.usual(Settings())) : "no", key.about});
    return all;
}

}  // namespace orvo::throttle
