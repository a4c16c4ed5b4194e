#include "suite/store/store_settings.h"

#include <gtest/gtest.h>

#include "tests/support/environment.h"
#include "tests/support/raised.h"
#include "tests/support/temp_folder.h"

namespace orvo::store {
namespace {

using namespace std::chrono_literals;

Settings read(const std::string& lines) {
    return read_settings(parse_ini("[STORE]\n" + lines, u"site.ini"), "/etc/orvo/site.ini");
}

Settings of_url(const std::string& url) { return read("StoreKeys=keys\nStoreURL=" + url + "\n"); }

TEST(StoreSettings, WithoutASectionNothingIsShared) {
    EXPECT_FALSE(read_settings(parse_ini("[GLOBAL]\n", u"site.ini"), "site.ini").is_shared());
    EXPECT_FALSE(read("StoreURL=memory\n").is_shared());
    EXPECT_EQ(read("StorePrefix=shop\n").url(), "memory");
}

TEST(StoreSettings, TheURLSaysWhere) {
    const Settings settings = of_url("redis://redis1,10.0.0.2:7000,[fe80::1]:7001/3");
    EXPECT_TRUE(settings.is_shared());
    EXPECT_FALSE(settings.is_encrypted);
    EXPECT_EQ(settings.addresses,
              (std::vector<Address>{{"redis1", 6379}, {"10.0.0.2", 7000}, {"fe80::1", 7001}}));
    EXPECT_EQ(settings.database, 3);
    EXPECT_EQ(settings.url(), "redis://redis1:6379,10.0.0.2:7000,[fe80::1]:7001/3");
    EXPECT_TRUE(of_url("rediss://redis1/").is_encrypted);
}

TEST(StoreSettings, TheURLOfMessagesShowsNoUser) {
    const Settings settings = of_url("rediss://shop@redis1");
    EXPECT_EQ(settings.user, "shop");
    EXPECT_EQ(settings.url(), "rediss://redis1:6379");
}

TEST(StoreSettings, SayTheRest) {
    const Environment password("ORVO_TEST_STORE", "secret of the store");
    const Settings settings = read(
        "StoreURL=redis://sentinel1,sentinel2:7000\nStoreSentinel=shop\nStoreKeys=keys\n"
        "StorePassword=@env:ORVO_TEST_STORE\nStoreSentinelPassword=other\nStoreCA=ca.pem\n"
        "StorePrefix=shop-2\nStoreTimeLimit=250\nStoreConnections=4\n");
    EXPECT_EQ(settings.addresses,
              (std::vector<Address>{{"sentinel1", 26379}, {"sentinel2", 7000}}));
    EXPECT_EQ(settings.sentinel, "shop");
    EXPECT_EQ(settings.password.reveal(), "secret of the store");
    EXPECT_EQ(settings.sentinel_password.reveal(), "other");
    EXPECT_EQ(settings.key_file, "/etc/orvo/keys");
    EXPECT_EQ(settings.ca_file, "/etc/orvo/ca.pem");
    EXPECT_EQ(settings.time_limit, 250ms);
    EXPECT_EQ(settings.most_connections, 4u);
    EXPECT_EQ(settings.key("login", "a1"), "shop-2:login:a1");
    EXPECT_EQ(settings.key("ended"), "shop-2:ended");
}

TEST(StoreSettings, ACloneIsTheSame) {
    const Settings settings = read(
        "StoreURL=rediss://user@a/1\nStoreSentinel=shop\nStoreKeys=keys\nStorePassword=one\n"
        "StoreSentinelPassword=two\nStoreCA=ca.pem\nStorePrefix=p\nStoreTimeLimit=250\n"
        "StoreConnections=4\n");
    const Settings clone = settings.clone();
    EXPECT_EQ(clone.url(), settings.url());
    EXPECT_EQ(clone.user, "user");
    EXPECT_EQ(clone.password.reveal(), "one");
    EXPECT_EQ(clone.sentinel, "shop");
    EXPECT_EQ(clone.sentinel_password.reveal(), "two");
    EXPECT_EQ(clone.ca_file, settings.ca_file);
    EXPECT_EQ(clone.key_file, settings.key_file);
    EXPECT_EQ(clone.prefix, "p");
    EXPECT_EQ(clone.time_limit, 250ms);
    EXPECT_EQ(clone.most_connections, 4u);
}

TEST(StoreSettings, WhatIsWrongIsRefusedWithItsLine) {
    const auto expect = [](const std::string& lines, const std::string& reason) {
        const Failure failure = raised_by([&] { read(lines); });
        EXPECT_EQ(failure.number, configuration_error::malformed_file);
        EXPECT_EQ(to_utf8(failure.description), "/etc/orvo/site.ini:" + reason);
    };
    expect("StoreUrls=memory\n",
           "2: [STORE] StoreUrls: there is no such key; did you mean \"StoreURL\"?");
    expect("StoreURL=\n",
           "2: [STORE] StoreURL: it is neither \"memory\" nor does it begin with \"redis://\" or "
           "\"rediss://\"");
    expect("StoreURL=redis://user:secret@a\n",
           "2: [STORE] StoreURL: a password does not belong into it but into StorePassword");
    expect("StoreURL=redis://@a\n", "2: [STORE] StoreURL: there is no user in front of \"@\"");
    for (const char* url : {"redis://", "redis://a,,b", "redis://a:", "redis://a:0", "redis://a b",
                            "redis://a:65536", "redis://[::1", "redis://[x]", "redis://a:1x"})
        expect("StoreURL=" + std::string(url) + "\n", "2: [STORE] StoreURL: a host in it is none");
    for (const char* database : {"x", "-1", "1000000", "1/2"})
        expect("StoreURL=redis://a/" + std::string(database) + "\n",
               "2: [STORE] StoreURL: its database is no number");
    expect("StoreURL=redis://a\n",
           "2: [STORE] StoreURL: it needs StoreKeys, the file of the keys with which passwords are "
           "encrypted");
    expect("StoreTimeLimit=9\n", "2: [STORE] StoreTimeLimit: \"9\" is no number from 10 to 60000");
    expect("StoreConnections=0\n",
           "2: [STORE] StoreConnections: \"0\" is no number from 1 to 1000");
    expect("StorePrefix=a:b\n",
           "2: [STORE] StorePrefix: \"a:b\" is no name of letters, digits, \"-\", \"_\" and "
           "\".\"");
    expect("StoreKeys=\n", "2: [STORE] StoreKeys: it names no file");
}

TEST(StoreSettings, OfTheSiteAreThoseOfItsFileNow) {
    const TempFolder folder;
    const auto file = folder.write("site.ini", "[STORE]\nStoreURL=redis://a\nStoreKeys=keys\n");
    const Environment site("ORVO_SITE_CONFIG", file.string());
    EXPECT_EQ(settings_of_site().key_file, folder.path() / "keys");
    folder.write("site.ini", "[STORE]\nStoreURL=memory\n");
    EXPECT_FALSE(settings_of_site().is_shared());
}

TEST(StoreSettings, AreDescribedEachWithItsLimits) {
    const std::vector<DescribedSetting> all = described_settings();
    const auto limit = std::ranges::find(all, "StoreTimeLimit", &DescribedSetting::name);
    ASSERT_NE(limit, all.end());
    EXPECT_EQ(limit->values, "milliseconds, 10 to 60000");
    EXPECT_EQ(limit->otherwise, "500");
}

}  // namespace
}  // namespace orvo::store
