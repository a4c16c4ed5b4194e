#include "suite/throttle/throttle_settings.h"

#include <gtest/gtest.h>

#include "tests/support/environment.h"
#include "tests/support/raised.h"
#include "tests/support/temp_folder.h"

namespace orvo::throttle {
namespace {

using namespace std::chrono_literals;

Settings read(const std::string& ini) {
    return read_settings(parse_ini(ini, u"site.ini"), "/etc/orvo/site.ini");
}

TEST(ThrottleSettings, WithoutASectionThereIsNoThrottle) {
    EXPECT_FALSE(read("[MEMBERSHIP]\nLDAPRoot=o=Shop\n").is_on);
    EXPECT_FALSE(read("[THROTTLE]\nOn=no\nAttempts=3\n").is_on);
}

TEST(ThrottleSettings, SayHowManyAndHowLong) {
    EXPECT_EQ(read("[THROTTLE]\non=YES\nAttempts=5\nAddressAttempts=50\nWindow=60\n"
                   "UndelayedAttempts=2\nLongestDelay=1000\nMostWaiting=7\nKnownFor=10\n"
                   "MostCounted=1000\n"),
              (Settings{true, 5, 50, 60s, 2, 1000ms, 7, std::chrono::days(10), 1000}));
    EXPECT_EQ(read("[THROTTLE]\nOn=yes\n"), Settings{.is_on = true});
}

TEST(ThrottleSettings, WhatIsWrongIsRefusedWithItsLine) {
    const auto expect = [](const std::string& lines, const std::string& reason) {
        const Failure failure = raised_by([&] { read("[THROTTLE]\n" + lines); });
        EXPECT_EQ(failure.number, configuration_error::malformed_file);
        EXPECT_EQ(to_utf8(failure.description), "/etc/orvo/site.ini:" + reason);
    };
    expect("On=1\n", "2: [THROTTLE] On: \"1\" is neither \"yes\" nor \"no\"");
    expect("On=yes\nAttempt=3\n",
           "3: [THROTTLE] Attempt: there is no such key; did you mean \"Attempts\"?");
    expect("Attempts=3\n", "2: [THROTTLE] Attempts: it needs an On, yes or no");
    expect("On=yes\nAttempts=0\n", "3: [THROTTLE] Attempts: \"0\" is no number from 1 to 10000");
    expect("On=yes\nWindow=ever\n", "3: [THROTTLE] Window: \"ever\" is no number from 10 to 86400");
}

TEST(ThrottleSettings, OfTheSiteAreThoseOfItsFileNow) {
    const TempFolder folder;
    const auto file = folder.write("site.ini", "[THROTTLE]\nOn=yes\nAttempts=3\n");
    const Environment site("ORVO_SITE_CONFIG", file.string());
    EXPECT_EQ(settings_of_site()->attempts, 3);
    EXPECT_EQ(settings_of_site()->attempts, 3);
    folder.write("site.ini", "[THROTTLE]\nOn=yes\nAttempts=4\n");
    EXPECT_EQ(settings_of_site()->attempts, 4);
    folder.write("site.ini", "[MEMBERSHIP]\n");
    EXPECT_FALSE(settings_of_site()->is_on);
    std::filesystem::remove(file);
    EXPECT_EQ(raised_by([] { settings_of_site(); }).number, configuration_error::file_not_found);
}

}  // namespace
}  // namespace orvo::throttle
