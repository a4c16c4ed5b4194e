#include "host/web/messages/ip_address.h"

#include <gtest/gtest.h>

namespace orvo::web {
namespace {

IpAddress ip(std::string_view text) { return IpAddress::try_read(text).value(); }

TEST(IpAddress, IsReadAndWritten) {
    for (const auto& [text, written] :
         std::initializer_list<std::pair<std::string_view, std::string_view>>{
             {"192.0.2.7", "192.0.2.7"},
             {"0.0.0.0", "0.0.0.0"},
             {"2001:DB8::0:1", "2001:db8::1"},
             {"::1", "::1"},
             {"::", "::"},
             {"::ffff:192.0.2.7", "192.0.2.7"},
             {"::FFFF:c000:207", "192.0.2.7"}})
        EXPECT_EQ(ip(text).text(), written) << text;
    EXPECT_EQ(ip("::ffff:192.0.2.7"), ip("192.0.2.7"));
    EXPECT_NE(ip("::"), ip("0.0.0.0"));
    EXPECT_EQ(IpAddress().text(), "0.0.0.0");
}

TEST(IpAddress, IsNothingElse) {
    using namespace std::string_view_literals;
    for (const std::string_view text :
         {""sv, "localhost"sv, "192.0.2"sv, "192.0.2.256"sv, "192.0.2.7 "sv, " ::1"sv, "[::1]"sv,
          "fe80::1%lo"sv, "0x7f.0.0.1"sv, "127.1"sv, "192.0.2.7\0"sv, "::1::"sv, "1.2.3.4:80"sv})
        EXPECT_FALSE(IpAddress::try_read(text)) << text;
}

TEST(IpAddress, CountsAsItselfAndOfTheSixthVersionAsItsNetwork) {
    EXPECT_EQ(ip("192.0.2.7").counted_as(), "192.0.2.7");
    EXPECT_EQ(ip("2001:db8:1:2:3:4:5:6").counted_as(), "2001:db8:1:2::/64");
    EXPECT_EQ(ip("::1").counted_as(), "::/64");
}

TEST(SocketAddress, IsAnAddressAndAPort) {
    EXPECT_EQ(SocketAddress::try_read("127.0.0.1:9090"), (SocketAddress{ip("127.0.0.1"), 9090}));
    EXPECT_EQ(SocketAddress::try_read("[::1]:0"), (SocketAddress{ip("::1"), 0}));
    for (const std::string_view text :
         {"", "9090", "127.0.0.1", "127.0.0.1:", ":9090", "localhost:9090", "::1:9090", "[::1]",
          "[127.0.0.1]:9090", "127.0.0.1:65536", "127.0.0.1:-1", "127.0.0.1:+1", "127.0.0.1:09",
          "127.0.0.1:90x", "[::1:90"})
        EXPECT_FALSE(SocketAddress::try_read(text)) << text;
}

TEST(Networks, ContainTheirAddresses) {
    struct Row {
        std::string_view network, address;
        bool is_in;
    };
    for (const auto& [network, address, is_in] :
         std::initializer_list<Row>{{"127.0.0.1", "127.0.0.1", true},
                                    {"127.0.0.1", "127.0.0.2", false},
                                    {"10.0.0.0/8", "10.255.0.1", true},
                                    {"10.0.0.0/8", "11.0.0.0", false},
                                    {"10.128.0.0/9", "10.127.255.255", false},
                                    {"192.0.2.64/26", "192.0.2.127", true},
                                    {"192.0.2.64/26", "192.0.2.128", false},
                                    {"0.0.0.0/0", "203.0.113.9", true},
                                    {"0.0.0.0/0", "::1", false},
                                    {"::/0", "2001:db8::1", true},
                                    {"::/0", "203.0.113.9", false},
                                    {"10.0.0.0/8", "::ffff:10.1.1.1", true},
                                    {"fd00::/8", "fd12:3456::1", true},
                                    {"fd00::/8", "fe00::1", false},
                                    {"2001:db8::1", "2001:db8::1", true},
                                    {"2001:db8::1", "2001:db8::2", false}}) {
        Networks networks;
        EXPECT_TRUE(networks.try_add("198.51.100.1"));
        EXPECT_TRUE(networks.try_add(network)) << network;
        EXPECT_EQ(networks.contain(ip(address)), is_in) << address << " in " << network;
    }
    EXPECT_FALSE(Networks().contain(ip("127.0.0.1")));
}

TEST(Networks, AreNotMadeOfAnythingElse) {
    Networks networks;
    for (const std::string_view text :
         {"", "/8", "10.0.0.0/", "10.0.0.0/33", "10.0.0.0/-0", "10.0.0.0/08", "10.0.0.1/8",
          "::1/127", "::/129", "::ffff:10.0.0.0/104", "proxy.example", "10.0.0.0/8/8", "*"})
        EXPECT_FALSE(networks.try_add(text)) << text;
    EXPECT_TRUE(networks.empty());
}

}  // namespace
}  // namespace orvo::web
