#include "host/web/options.h"

#include <gtest/gtest.h>

namespace orvo::web {
namespace {

struct Read {
    explicit Read(std::vector<std::string> words) {
        testing::internal::CaptureStderr();
        code = line.read(std::move(words));
        told = testing::internal::GetCapturedStderr();
    }
    WebCommandLine line;
    std::optional<int> code;
    std::string told;
};

TEST(Options, NameTheSiteAndWhereToListen) {
    const Read plain({"site"});
    EXPECT_EQ(plain.code, std::nullopt);
    EXPECT_EQ(plain.line.options.site, "site");
    EXPECT_EQ(plain.line.options.server.address, "127.0.0.1");
    EXPECT_EQ(plain.line.options.server.port, 0);
    EXPECT_FALSE(plain.line.options.shows_details);
    const Read read({"--port",
                     "8443",
                     "site",
                     "--address",
                     "::1",
                     "--workers",
                     "4",
                     "--certificate",
                     "c.pem",
                     "--key",
                     "k.pem",
                     "--access-log",
                     "a.log",
                     "--details",
                     "--config",
                     "s.ini",
                     "--connections",
                     "50",
                     "--connections-of-one",
                     "5",
                     "--strict-transport",
                     "60"});
    const Options& all = read.line.options;
    EXPECT_EQ(all.server.port, 8443);
    EXPECT_EQ(all.server.address, "::1");
    EXPECT_EQ(all.server.workers, 4);
    EXPECT_EQ(all.server.certificate, "c.pem");
    EXPECT_EQ(all.server.key, "k.pem");
    EXPECT_EQ(all.config, "s.ini");
    EXPECT_EQ(all.access_log, "a.log");
    EXPECT_TRUE(all.shows_details);
    EXPECT_EQ(all.server.most_connections, 50u);
    EXPECT_EQ(all.server.most_of_one_address, 5u);
    EXPECT_EQ(all.server.strict_transport, std::chrono::seconds(60));
}

TEST(Options, AreRefusedWithASentence) {
    struct Refused {
        std::vector<std::string> arguments;
        std::string reason;
    };
    for (const auto& [arguments, reason] : std::initializer_list<Refused>{
             {{}, "SITE is required"},
             {{"a", "b"}, "The following argument was not expected: b"},
             {{"a", "--loud"}, "The following argument was not expected: --loud"},
             {{"a", "--port"}, "--port: 1 required PORT:INT in [0 - 65535] missing"},
             {{"a", "--port", "x"}, "--port: Value x not in range 0 to 65535"},
             {{"a", "--port", "65536"}, "--port: Value 65536 not in range 0 to 65535"},
             {{"a", "--workers", "257"}, "--workers: Value 257 not in range 0 to 256"},
             {{"a", "--config", ""}, "--config: A file is needed"},
             {{"a", "--key", "k.pem"}, "--key requires --certificate"},
         }) {
        const Read read(arguments);
        EXPECT_EQ(read.code, 2);
        EXPECT_EQ(read.told, "orvo-web: " + reason + "; see orvo-web --help\n");
    }
}

}  // namespace
}  // namespace orvo::web
