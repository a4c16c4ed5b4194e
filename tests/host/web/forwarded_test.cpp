#include "host/web/messages/forwarded.h"

#include <gtest/gtest.h>

#include "host/web/server/endpoints.h"

namespace orvo::web {
namespace {

// 10.0.0.0/8 and ::1 are the proxies.
class ForwardedTest : public testing::Test {
protected:
    ForwardedTest() {
        proxies_.networks.try_add("10.0.0.0/8");
        proxies_.networks.try_add("::1");
    }

    static IpAddress ip(std::string_view text) { return IpAddress::try_read(text).value(); }

    // "192.0.2.7:4711 https shop.example"; "-" for what is not said.
    std::string client(const Headers& headers, std::string_view sender = "10.0.0.1") {
        try {
            const ForwardedClient client = forwarded_client(headers, ip(sender), proxies_);
            return client.address.text() + (client.port ? ":" + std::to_string(client.port) : "") +
                   (!client.is_secure   ? " -"
                    : *client.is_secure ? " https"
                                        : " http") +
                   ' ' + (client.host.empty() ? "-" : client.host);
        } catch (const Refusal& refusal) {
            return std::to_string(refusal.status) + ' ' + refusal.what();
        }
    }
    std::string forwarded(const std::string& value) { return client({{"Forwarded", value}}); }
    std::string x_for(const std::string& value) { return client({{"X-Forwarded-For", value}}); }

    TrustedProxies proxies_;
};

constexpr const char* unread = "400 What a proxy says of the client cannot be read.";

TEST_F(ForwardedTest, IsNotReadOfOthers) {
    EXPECT_EQ(client({{"Forwarded", "for=192.0.2.7;proto=https;host=evil.example"}}, "192.0.2.1"),
              "192.0.2.1 - -");
    EXPECT_EQ(client({{"X-Forwarded-For", "10.0.0.1"},
                      {"X-Forwarded-Proto", "https"},
                      {"X-Forwarded-Host", "evil.example"}},
                     "192.0.2.1"),
              "192.0.2.1 - -");
    EXPECT_EQ(client({{"Forwarded", "\"nonsense"}}, "192.0.2.1"), "192.0.2.1 - -");
}

TEST_F(ForwardedTest, WithoutHeadersTheClientIsTheProxy) { EXPECT_EQ(client({}), "10.0.0.1 - -"); }

TEST_F(ForwardedTest, IsReadAsTheStandardHasIt) {
    for (const auto& [value, expected] : std::initializer_list<std::pair<std::string, std::string>>{
             {"for=192.0.2.7", "192.0.2.7 - -"},
             {"FOR=\"192.0.2.7:4711\";Proto=HTTPS", "192.0.2.7:4711 https -"},
             {"for=\"[2001:db8::1]:4711\";host=\"shop.example:8443\";proto=http;by=10.0.0.1",
              "2001:db8::1:4711 http shop.example:8443"},
             {"for=\"[2001:db8::1]\"", "2001:db8::1 - -"},
             {" for=192.0.2.7 ; proto=https ; ; ext=\"a\\\"b,c;d\" ,", "192.0.2.7 https -"},
             {"for=\"19\\2.0.2.7\"", "192.0.2.7 - -"},
             {"proto=https", "10.0.0.1 https -"},
             {"for=192.0.2.7:4711", "192.0.2.7:4711 - -"},
             {"for=unknown;proto=https", "10.0.0.1 https -"},
             {"for=_hidden", "10.0.0.1 - -"},
             {"for=\"192.0.2.7:_p1\"", "192.0.2.7 - -"},
             {",,", "10.0.0.1 - -"},
             {"", "10.0.0.1 - -"}})
        EXPECT_EQ(forwarded(value), expected) << value;
}

TEST_F(ForwardedTest, IsReadFromItsEndAsFarAsProxiesAreTrusted) {
    EXPECT_EQ(forwarded("for=10.9.9.9;proto=https;host=evil.example, for=192.0.2.7;proto=http"),
              "192.0.2.7 http -");
    EXPECT_EQ(forwarded("for=made.up, for=192.0.2.7;proto=https;host=a, for=10.0.0.2;proto=http"),
              "192.0.2.7 https a");
    EXPECT_EQ(forwarded("for=192.0.2.7, for=10.0.0.2;proto=http"), "192.0.2.7 http -");
    EXPECT_EQ(forwarded("for=192.0.2.7;proto=https, for=unknown;proto=http"), "10.0.0.1 http -")
        << "who hides its client is the last one that is known";
    EXPECT_EQ(forwarded("for=10.0.0.3, for=10.0.0.2"), "10.0.0.3 - -") << "a client in the house";
    EXPECT_EQ(client({{"Forwarded", "for=192.0.2.7"}, {"forwarded", "for=\"[::1]\";host=a"}}),
              "192.0.2.7 - a")
        << "one header after the other";
    EXPECT_EQ(x_for("whatever, 198.51.100.3, 192.0.2.7"), "192.0.2.7 - -");
    EXPECT_EQ(x_for("198.51.100.3, 192.0.2.7, 10.0.0.3, ::1"), "192.0.2.7 - -");
}

TEST_F(ForwardedTest, CannotBeReadOtherwise) {
    for (const char* value : {"for",
                              "for=",
                              "for=\"\"",
                              "=192.0.2.7",
                              "for=192.0.2.7 proto=http",
                              "for=\"192.0.2.7",
                              "for=192.0.2.7;for=192.0.2.8",
                              "for=192.0.2.7;proto=http;proto=https",
                              "for=192.0.2.7;host=a;host=b",
                              "for=shop.example",
                              "for=192.0.2",
                              "for=[192.0.2.7]",
                              "for=\"[2001:db8::1\"",
                              "for=\"[2001:db8::1]4711\"",
                              "for=192.0.2.7:",
                              "for=192.0.2.7:x",
                              "for=192.0.2.7:65536",
                              "proto=ftp",
                              "host=\"a b\"",
                              "host=\"a/b\"",
                              "host=\"a@b\"",
                              "host=a:x",
                              "host=\"[::1\"",
                              "host=\"[x]\"",
                              "host=:80",
                              "for=192.0.2.7;\"a\"=b",
                              "for=192.0.2.7, \"",
                              "for =192.0.2.7",
                              "for= 192.0.2.7"})
        EXPECT_EQ(forwarded(value), unread) << value;
    for (const char* value : {"shop.example", "192.0.2.7, x", "\"192.0.2.7\"", "1.2.3.4.5"})
        EXPECT_EQ(x_for(value), unread) << value;
}

TEST_F(ForwardedTest, IsReadInTheOlderFormToo) {
    EXPECT_EQ(x_for("192.0.2.7"), "192.0.2.7 - -");
    EXPECT_EQ(x_for("192.0.2.7:4711"), "192.0.2.7:4711 - -");
    EXPECT_EQ(x_for("2001:db8::1"), "2001:db8::1 - -");
    EXPECT_EQ(x_for("[2001:db8::1]:4711"), "2001:db8::1:4711 - -");
    EXPECT_EQ(x_for("unknown"), "10.0.0.1 - -");
    EXPECT_EQ(x_for(""), "10.0.0.1 - -");
    EXPECT_EQ(client({{"X-Forwarded-For", "192.0.2.7"},
                      {"x-forwarded-proto", "https"},
                      {"X-Forwarded-Host", "[::1]:8443"}}),
              "192.0.2.7 https [::1]:8443");
    EXPECT_EQ(client({{"X-Forwarded-Proto", "https"}}), "10.0.0.1 https -");
}

TEST_F(ForwardedTest, OneValueIsTheNearestProxysAndSeveralAreOneOfEach) {
    const Headers two_hops{{"X-Forwarded-For", "192.0.2.7"}, {"X-Forwarded-For", "10.0.0.2"}};
    const auto with = [&](const std::string& proto) {
        Headers headers = two_hops;
        headers.emplace_back("X-Forwarded-Proto", proto);
        return client(headers);
    };
    EXPECT_EQ(with("https"), "192.0.2.7 https -");
    EXPECT_EQ(with("https, http"), "192.0.2.7 https -");
    EXPECT_EQ(with("http, https"), "192.0.2.7 http -");
    EXPECT_EQ(with("https, http, http"), unread);
    EXPECT_EQ(with("https,"), unread);
    EXPECT_EQ(with("HTTPS!"), unread);
    EXPECT_EQ(
        client({{"X-Forwarded-For", "10.0.0.9, 192.0.2.7"}, {"X-Forwarded-Proto", "https, http"}}),
        "192.0.2.7 http -")
        << "the first two are the client's own";
    EXPECT_EQ(client({{"X-Forwarded-For", "192.0.2.7"}, {"X-Forwarded-Proto", "https, http"}}),
              unread);
}

TEST_F(ForwardedTest, BothKindsTogetherAreRefusedUnlessOneIsNotRead) {
    const Headers both{{"Forwarded", "for=10.0.0.9;host=evil.example"},
                       {"X-Forwarded-For", "192.0.2.7"},
                       {"X-Forwarded-Host", "made.up"},
                       {"X-Forwarded-Proto", "https"}};
    EXPECT_EQ(client(both), "400 Forwarded and X-Forwarded headers are not read together.");
    proxies_.headers = {.forwarded = false, .x_host = false};
    EXPECT_EQ(client(both), "192.0.2.7 https -");
    proxies_.headers = {.x_for = false, .x_proto = false, .x_host = false};
    EXPECT_EQ(client(both), "10.0.0.9 - evil.example");
}

TEST_F(ForwardedTest, RequestsAreOfTheOuterClient) {
    HttpRequest request{.headers = {{"Host", "inner:8080"},
                                    {"Forwarded",
                                     "for=\"192.0.2.7:4711\";proto=https;"
                                     "host=shop.example"},
                                    {"X-Forwarded-Port", "1"},
                                    {"X-Other", "kept"}}};
    const Endpoints sender{ip("10.0.0.1"), 5000, ip("10.0.0.9"), 8080, false};
    EXPECT_EQ(put_client(request, sender, proxies_), ip("192.0.2.7"));
    EXPECT_EQ(request.remote_address, "192.0.2.7");
    EXPECT_EQ(request.remote_port, 4711);
    EXPECT_EQ(request.local_address, "10.0.0.9");
    EXPECT_EQ(request.local_port, 443);
    EXPECT_TRUE(request.is_secure);
    EXPECT_EQ(request.headers, (Headers{{"Host", "shop.example"}, {"X-Other", "kept"}}));
}

TEST_F(ForwardedTest, AClientOnTheProxysOwnMachineHasAPortOfItsOwn) {
    HttpRequest request{.headers = {{"Forwarded", "for=\"10.0.0.1:4711\""}}};
    put_client(request, {ip("10.0.0.1"), 5000, ip("10.0.0.9"), 8080, false}, proxies_);
    EXPECT_EQ(request.remote_address, "10.0.0.1");
    EXPECT_EQ(request.remote_port, 4711);
}

TEST_F(ForwardedTest, TheServersPortIsTheOneOfTheAddressThatTheBrowserHas) {
    const Endpoints sender{ip("10.0.0.1"), 5000, ip("10.0.0.9"), 8080, true};
    const auto port = [&](const std::string& host, Headers headers = {}) {
        headers.emplace_back("Host", host);
        HttpRequest request{.headers = headers};
        put_client(request, sender, proxies_);
        return request.local_port;
    };
    EXPECT_EQ(port("shop.example:8443"), 8443);
    EXPECT_EQ(port("shop.example"), 443);
    EXPECT_EQ(port("[::1]"), 443);
    EXPECT_EQ(port("[::1]:81"), 81);
    EXPECT_EQ(port("shop.example", {{"X-Forwarded-Proto", "http"}}), 80);
    EXPECT_EQ(port("inner:1", {{"X-Forwarded-Host", "outer:2"}}), 2);
}

TEST_F(ForwardedTest, NothingThatOthersSayReachesAPage) {
    HttpRequest request{.headers = {{"FORWARDED", "for=10.0.0.1"},
                                    {"Host", "shop.example"},
                                    {"x-forwarded-for", "10.0.0.1"},
                                    {"X-Forwarded-Proto", "https"},
                                    {"X-Forwarded-Anything", "1"}}};
    const Endpoints sender{ip("192.0.2.7"), 5000, ip("10.0.0.9"), 8080, false};
    EXPECT_EQ(put_client(request, sender, proxies_), ip("192.0.2.7"));
    EXPECT_EQ(request.remote_address, "192.0.2.7");
    EXPECT_EQ(request.remote_port, 5000);
    EXPECT_EQ(request.local_port, 8080);
    EXPECT_FALSE(request.is_secure);
    EXPECT_EQ(request.headers, (Headers{{"Host", "shop.example"}}));
}

}  // namespace
}  // namespace orvo::web
