#include "suite/audit/audit_settings.h"

#include <gtest/gtest.h>

#include "tests/support/environment.h"
#include "tests/support/raised.h"
#include "tests/support/temp_folder.h"

namespace orvo::audit {
namespace {

Settings read(const std::string& ini) {
    return read_settings(parse_ini(ini, u"site.ini"), "/etc/orvo/site.ini");
}

TEST(AuditSettings, WithoutASectionThereIsNoAudit) {
    EXPECT_FALSE(read("[MEMBERSHIP]\nLDAPRoot=o=Shop\n").is_on());
    EXPECT_FALSE(read("[AUDIT]\nJournal=no\nCount=3\n").is_on());
}

TEST(AuditSettings, SayWhereAndHowMuch) {
    const Settings settings =
        read("[AUDIT]\nfile=/var/log/orvo/audit.jsonl\nLargest=2048\nCount=3\nSync=YES\n");
    EXPECT_EQ(settings.file, "/var/log/orvo/audit.jsonl");
    EXPECT_EQ(settings.rotation.largest, 2048u);
    EXPECT_EQ(settings.rotation.count, 3u);
    EXPECT_TRUE(settings.sync);
    EXPECT_TRUE(settings.is_on());
    EXPECT_FALSE(settings.journal);
    EXPECT_TRUE(read("[AUDIT]\nJournal=yes\n").is_on());
}

TEST(AuditSettings, ARelativeFileCountsFromTheConfiguration) {
    EXPECT_EQ(read("[AUDIT]\nFile=log/audit.jsonl\n").file, "/etc/orvo/log/audit.jsonl");
}

TEST(AuditSettings, AValueMayStandElsewhere) {
    const Environment file("ORVO_TEST_AUDIT", "/tmp/audit.jsonl");
    EXPECT_EQ(read("[AUDIT]\nFile=@env:ORVO_TEST_AUDIT\n").file, "/tmp/audit.jsonl");
}

TEST(AuditSettings, WhatIsWrongIsRefusedWithItsLine) {
    const auto expect = [](const std::string& lines, const std::string& reason) {
        const Failure failure = raised_by([&] { read("[AUDIT]\n" + lines); });
        EXPECT_EQ(failure.number, configuration_error::malformed_file);
        EXPECT_EQ(to_utf8(failure.description), "/etc/orvo/site.ini:" + reason);
    };
    expect("Fiel=a\n", "2: [AUDIT] Fiel: there is no such key; did you mean \"File\"?");
    expect("Password=a\n", "2: [AUDIT] Password: there is no such key");
    expect("File=\n", "2: [AUDIT] File: it names no file");
    expect("File=a\nSync=1\n", "3: [AUDIT] Sync: \"1\" is neither \"yes\" nor \"no\"");
    expect("Largest=1023\n",
           "2: [AUDIT] Largest: \"1023\" is no number from 1024 to 1099511627776");
    expect("Count=1\n", "2: [AUDIT] Count: \"1\" is no number from 2 to 1000");
    expect("Count=many\n", "2: [AUDIT] Count: \"many\" is no number from 2 to 1000");
    expect("Journal=yes\nSync=yes\n",
           "3: [AUDIT] Sync: it needs a File: the journal does not tell when it has written");
}

TEST(AuditSettings, OfTheSiteAreThoseOfItsFileNow) {
    const TempFolder folder;
    const auto file = folder.write("site.ini", "[AUDIT]\nFile=a.jsonl\n");
    const Environment site("ORVO_SITE_CONFIG", file.string());
    EXPECT_EQ(settings_of_site().file, folder.path() / "a.jsonl");
    folder.write("site.ini", "[AUDIT]\nFile=b.jsonl\n");
    EXPECT_EQ(settings_of_site().file, folder.path() / "b.jsonl");
    std::filesystem::remove(file);
    EXPECT_EQ(raised_by([] { settings_of_site(); }).number, configuration_error::file_not_found);
}

}  // namespace
}  // namespace orvo::audit
