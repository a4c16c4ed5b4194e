// The store over rediss://.

#include <gmock/gmock.h>
#include <openssl/crypto.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>

#include "suite/store/redis.h"
#include "suite/store/site_store.h"
#include "suite/store/store_error.h"
#include "suite/store/subscription.h"
#include "tests/suite/store/waiting.h"
#include "tests/support/environment.h"
#include "tests/support/faulty_proxy.h"
#include "tests/support/raised.h"
#include "tests/support/store_settings.h"

namespace orvo::store {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string objection_to(Settings settings) {
    Redis redis(std::move(settings));
    return to_utf8(raised_by([&] { redis.run({"PING"}); }).description);
}

TEST(EncryptedRedis, IsUsedLikeAnother) {
    const RedisServer server({.password = "secret", .tls = true});
    const auto redis = std::make_shared<Redis>(store_settings(server));
    const std::string large(1'000'000, 'x');
    redis->run({"SET", "a", large});
    EXPECT_EQ(redis->run({"GET", "a"}).text(), large);
    std::mutex mutex;
    std::string heard;
    const Subscription subscription(
        redis, "c",
        [&](std::string_view message) {
            const std::lock_guard lock(mutex);
            heard = message;
        },
        [] {});
    ASSERT_TRUE(wait_until([&] { return subscription.is_listening(); }));
    redis->run({"PUBLISH", "c", "news"});
    EXPECT_TRUE(wait_until([&] {
        const std::lock_guard lock(mutex);
        return heard == "news";
    }));
    EXPECT_EQ(redis->counts().connects, 1u);
}

TEST(EncryptedRedis, IsKnownByItsNameToo) {
    const RedisServer server({.tls = true, .certificate_for = "DNS:localhost"});
    Redis redis(store_settings(server, "rediss://localhost:" + std::to_string(server.tls_port())));
    EXPECT_EQ(redis.run({"PING"}).text(), "PONG");
}

TEST(EncryptedRedis, ACertificateForAnotherNameIsRefused) {
    const RedisServer other({.tls = true, .certificate_for = "IP:127.0.0.2"});
    EXPECT_THAT(objection_to(store_settings(other)),
                HasSubstr("(its certificate is not accepted: IP address mismatch)"));
    const RedisServer named({.tls = true, .certificate_for = "DNS:store.example"});
    EXPECT_THAT(objection_to(store_settings(
                    named, "rediss://localhost:" + std::to_string(named.tls_port()))),
                HasSubstr("(its certificate is not accepted: hostname mismatch)"));
}

TEST(EncryptedRedis, ACertificateOfAnUnknownIssuerIsRefused) {
    const RedisServer server({.tls = true}), other({.tls = true});
    Settings settings = store_settings(server);
    settings.ca_file = other.ca_file();
    EXPECT_THAT(objection_to(settings.clone()), HasSubstr("(its certificate is not accepted: "));
    settings.ca_file.clear();
    EXPECT_THAT(objection_to(std::move(settings)), HasSubstr("(its certificate is not accepted: "));
}

TEST(EncryptedRedis, IsNotSpokenToWithoutEncryption) {
    const RedisServer server({.password = "secret", .tls = true});
    Settings settings = store_settings(server);
    settings.addresses.front().port = server.port();
    // It waits for the end of what it takes for a command.
    EXPECT_THAT(objection_to(std::move(settings)), HasSubstr("(it does not answer)"));
}

TEST(EncryptedRedis, ShowsNothingOnTheWay) {
    const RedisServer server({.password = "secret-password", .tls = true});
    std::mutex mutex;
    std::string sent;
    FaultyProxy proxy(server.tls_port(), [&] {
        return [&](std::string_view bytes) {
            const std::lock_guard lock(mutex);
            sent += bytes;
        };
    });
    Redis redis(store_settings(server, "rediss://" + proxy.server()));
    redis.run({"SET", "a", "a text that is secret"});
    const std::lock_guard lock(mutex);
    EXPECT_GT(sent.size(), 200u);
    EXPECT_THAT(sent, Not(HasSubstr("secret")));
}

TEST(SiteStore, EndsWithTheProcessWhileEncryptionCanStillBeEnded) {
    static const RedisServer server({.tls = true});
    const TempFolder folder;
    const Environment site("ORVO_SITE_CONFIG",
                           folder.write("site.ini", server.site_section()).string());
    static const Subscription subscription(
        site_store()->redis, "c", [](std::string_view) {}, [] {});
    EXPECT_TRUE(wait_until([] { return subscription.is_listening(); }));
    static auto* const watched = new std::weak_ptr<const SiteStore>(site_store());
    OPENSSL_atexit([] {
        if (watched->expired()) return;
        static constexpr std::string_view message = "The store outlives the library.\n";
        std::fwrite(message.data(), 1, message.size(), stderr);
        std::_Exit(1);
    });
}

TEST(EncryptedRedis, AFileWithoutCertificatesIsRefusedAtOnce) {
    const RedisServer server({.tls = true});
    Settings settings = store_settings(server);
    settings.ca_file = server.folder() / "password";
    const Failure failure = raised_by([&] { Redis redis(settings.clone()); });
    EXPECT_EQ(failure.number, configuration_error::malformed_file);
    EXPECT_THAT(to_utf8(failure.description),
                testing::StartsWith(settings.ca_file.string() + ": no certificate can be read ("));
}

}  // namespace
}  // namespace orvo::store
