// What a session says of encryption that does not come about.

#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <ctime>

#include "suite/directory/ldap/wire/certificate.h"
#include "suite/directory/ldap/wire/session.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/bad_server.h"
#include "tests/support/child_process.h"
#include "tests/support/server_certificate.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;

class TlsTest : public testing::Test {
protected:
    static PrivateSlapd& shop() {
        static PrivateSlapd server({.tls = true});
        return server;
    }

    // The two ways to encryption, with this authority's certificates trusted, or nobody's.
    static std::vector<ServerHost> hosts(PrivateSlapd& server, const std::string& ca_file) {
        std::vector<ServerHost> both;
        for (const Security security : {Security::tls, Security::start_tls}) {
            const std::string url = security == Security::tls ? server.tls_url() : server.url();
            const auto port = static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1)));
            both.push_back({"127.0.0.1", port, security, ca_file});
        }
        return both;
    }

    static std::string description(const ServerHost& host, const Limits& limits = {}) {
        return to_utf8(failure_of([&] { Session::connect(host, limits); }).description);
    }
};

TEST_F(TlsTest, SaysWhoseCertificateIsNotTrusted) {
    PrivateSlapd other({.tls = true});
    for (const std::string& authority : {std::string(), other.ca_file().string()})
        for (const ServerHost& host : hosts(shop(), authority))
            EXPECT_EQ(description(host),
                      "(91) The connection to the server cannot be established. '" + host.url() +
                          "': The server's certificate 'CN=private slapd' is not trusted; it was "
                          "issued by 'CN=private slapd'.");
}

TEST_F(TlsTest, ShowsTheCertificateOfAServerThatIsTrusted) {
    for (const ServerHost& host : hosts(shop(), shop().ca_file().string())) {
        const auto words = certificate_words(Session::connect(host).certificate());
        ASSERT_TRUE(words);
        EXPECT_EQ(words->subject, "CN=private slapd");
        EXPECT_EQ(words->issuer, "CN=private slapd");
    }
    const ServerHost plain{"127.0.0.1", hosts(shop(), "").back().port};
    EXPECT_EQ(Session::connect(plain).certificate(), "");
}

TEST_F(TlsTest, SaysForWhichNamesACertificateIs) {
    PrivateSlapd server({.tls = true});
    replace_certificate(server, "/O=Shop/CN=dir01.shop.example", {});
    for (const ServerHost& host : hosts(server, server.ca_file().string()))
        EXPECT_THAT(description(host),
                    EndsWith("': The server's certificate 'O=Shop,CN=dir01.shop.example' is for "
                             "'dir01.shop.example', not for '127.0.0.1'."));
}

// The library takes "localhost" for this machine's own name.
TEST_F(TlsTest, SaysWhichNameIsExpectedOfTheLocalHost) {
    std::array<char, 256> own{};
    ASSERT_EQ(::gethostname(own.data(), own.size() - 1), 0);
    for (ServerHost host : hosts(shop(), shop().ca_file().string())) {
        host.name = "localhost";
        EXPECT_THAT(description(host), EndsWith("is for '127.0.0.1', 'localhost', not for '" +
                                                std::string(own.data()) + "'."));
    }
}

TEST_F(TlsTest, SaysThatACertificateHasExpired) {
    PrivateSlapd server({.tls = true});
    replace_certificate(server, "/O=Shop/CN=127.0.0.1", {"-days", "-1"});
    for (const ServerHost& host : hosts(server, server.ca_file().string()))
        EXPECT_THAT(description(host),
                    testing::ContainsRegex("The server's certificate 'O=Shop,CN=127.0.0.1' expired "
                                           "on [0-9]+-[0-9]+-[0-9]+ [0-9]+:[0-9]+:[0-9]+ UTC\\.$"));
}

TEST_F(TlsTest, SaysThatAServerDoesNotEncrypt) {
    BadServer server({.answer = "HTTP/1.1 400 Bad Request\r\n\r\n"});
    const std::string address = server.server();
    const auto port = static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1)));
    EXPECT_EQ(description({"127.0.0.1", port, Security::tls}, {1s, 1s}),
              "(91) The connection to the server cannot be established. 'ldaps://" + address +
                  "': Encryption cannot be agreed on.");
}

TEST_F(TlsTest, SaysWhenEncryptionTakesTooLong) {
    BadServer server({});
    const std::string address = server.server();
    const auto port = static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1)));
    EXPECT_EQ(description({"127.0.0.1", port, Security::tls}, {300ms, 1s}),
              "(85) The server did not answer in time. 'ldaps://" + address +
                  "': encryption was not agreed on within 300 ms (ConnectLimit).");
}

// The bytes of the certificate in a PEM file.
std::string der_of(const std::filesystem::path& pem) {
    return output_of({"/usr/bin/openssl", "x509", "-in", pem.string(), "-outform", "DER"});
}

TEST_F(TlsTest, ReadsWhatIsToBeSaidFromTheCertificate) {
    const std::string certificate = der_of(shop().ca_file());
    const std::time_t now = std::time(nullptr);
    constexpr std::time_t day = 24 * 60 * 60;
    const auto objection = [&](const std::string& host, std::time_t when) {
        return detail::objection_to(certificate, host, when);
    };
    EXPECT_THAT(objection("LOCALHOST", now), HasSubstr("is not trusted"));
    EXPECT_THAT(objection("localhost", now + 31 * day), HasSubstr(" expired on "));
    EXPECT_THAT(objection("localhost", now - 2 * day), HasSubstr(" is not valid before "));
    EXPECT_THAT(objection("dir01", now), HasSubstr(" is for '127.0.0.1', 'localhost', not for "));
    for (std::size_t size = 0; size < certificate.size(); ++size)
        EXPECT_EQ(detail::objection_to(certificate.substr(0, size), "dir01", now), "") << size;
}

TEST_F(TlsTest, KnowsThatACertificateForAWholeDomainIsForItsHosts) {
    const std::string folder = shop().folder().string();
    output_of({"/usr/bin/openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
               "ec_paramgen_curve:P-256", "-noenc", "-subj", "/CN=*.shop.example", "-keyout",
               folder + "/any_key.pem", "-out", folder + "/any.pem"});
    const std::string certificate = der_of(folder + "/any.pem");
    const std::time_t now = std::time(nullptr);
    EXPECT_THAT(detail::objection_to(certificate, "dir01.shop.example", now),
                HasSubstr("is not trusted"));
    for (const char* host : {"shop.example", "a.dir01.shop.example", "dir01.other.example"})
        EXPECT_THAT(detail::objection_to(certificate, host, now),
                    HasSubstr("is for '*.shop.example', not for"))
            << host;
}

}  // namespace
}  // namespace orvo::directory::ldap
