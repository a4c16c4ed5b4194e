#include "host/web/options.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace orvo::web {
namespace {

TEST(Options, NameTheSiteAndWhereToListen) {
    const Options plain = read_options({"site"});
    EXPECT_EQ(plain.site, "site");
    EXPECT_EQ(plain.server.address, "127.0.0.1");
    EXPECT_EQ(plain.server.port, 0);
    EXPECT_FALSE(plain.shows_details);
    const Options all = read_options({"--port", "8443", "site", "--address", "::1", "--workers",
                                      "4", "--certificate", "c.pem", "--key", "k.pem",
                                      "--access-log", "a.log", "--details", "--config", "s.ini"});
    EXPECT_EQ(all.server.port, 8443);
    EXPECT_EQ(all.server.address, "::1");
    EXPECT_EQ(all.server.workers, 4);
    EXPECT_EQ(all.server.certificate, "c.pem");
    EXPECT_EQ(all.server.key, "k.pem");
    EXPECT_EQ(all.access_log, "a.log");
    EXPECT_TRUE(all.shows_details);
    EXPECT_EQ(all.config, "s.ini");
    EXPECT_TRUE(read_options({"--help"}).wants_help);
}

TEST(Options, AreRefusedWithASentence) {
    struct Refused {
        std::vector<std::string> arguments;
        std::string_view reason;
    };
    for (const auto& [arguments, reason] : std::initializer_list<Refused>{
             {{}, "which site?"},
             {{"a", "b"}, "there is one site only, not also b"},
             {{"a", "--loud"}, "there is no option --loud"},
             {{"a", "--port"}, "--port needs a value"},
             {{"a", "--port", "x"}, "--port is a number from 0 to 65535, not \"x\""},
             {{"a", "--port", "65536"}, "--port is a number from 0 to 65535, not \"65536\""},
             {{"a", "--config", ""}, "--config needs a value"},
             {{"a", "--workers", "0"}, "--workers is a number from 1 to 256, not \"0\""},
             {{"a", "--key", "k.pem"}, "--certificate and --key go together"},
         }) {
        try {
            read_options(arguments);
            ADD_FAILURE() << "accepted; expected: " << reason;
        } catch (const std::invalid_argument& mistake) {
            EXPECT_EQ(mistake.what(), reason);
        }
    }
}

}  // namespace
}  // namespace orvo::web
