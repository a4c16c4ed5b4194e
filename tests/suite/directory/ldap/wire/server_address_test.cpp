#include "suite/directory/ldap/wire/server_address.h"

#include <gtest/gtest.h>

#include "platform/values/failure.h"

namespace orvo::directory::ldap {
namespace {

struct Accepted {
    const char16_t* text;
    const char* key;
};

class AcceptedServer : public testing::TestWithParam<Accepted> {};

TEST_P(AcceptedServer, IsReadAsOneSpelling) {
    EXPECT_EQ(ServerAddress::parse(GetParam().text).key(), GetParam().key);
}

INSTANTIATE_TEST_SUITE_P(
    All, AcceptedServer,
    testing::Values(
        Accepted{u"dir01", "ldap://dir01:389"}, Accepted{u"dir01:3890", "ldap://dir01:3890"},
        Accepted{u"ldap://dir01", "ldap://dir01:389"},
        Accepted{u"LDAP://Dir01:389/", "ldap://dir01:389"}, Accepted{u"dir01/", "ldap://dir01:389"},
        Accepted{u"LDAP://dir01//", "ldap://dir01:389"},
        Accepted{u"ldaps://dir01", "ldaps://dir01:636"},
        Accepted{u"ldaps://dir01:6360/", "ldaps://dir01:6360"},
        Accepted{u"127.0.0.1:389", "ldap://127.0.0.1:389"}, Accepted{u"[::1]", "ldap://[::1]:389"},
        Accepted{u"[::1]:3890", "ldap://[::1]:3890"},
        Accepted{u"ldap://[2001:DB8::7]/", "ldap://[2001:db8::7]:389"},
        Accepted{u"ldap://dir01/?starttls", "ldap://dir01:389/?starttls"},
        Accepted{u"dir01:389?StartTLS", "ldap://dir01:389/?starttls"},
        Accepted{u"ldap://dir01/?starttls&cafile=/etc/shop/ca.pem",
                 "ldap://dir01:389/?starttls&cafile=/etc/shop/ca.pem"},
        Accepted{u"ldap://dir01/?cafile=/a%20b%2fc&starttls",
                 "ldap://dir01:389/?starttls&cafile=/a b/c"},
        Accepted{u"ldaps://dir01/?cafile=/ca", "ldaps://dir01:636&cafile=/ca"},
        Accepted{u"  dir01   ldaps://dir02\tdir03:3890 ",
                 "ldap://dir01:389 ldaps://dir02:636 ldap://dir03:3890"}));

struct Refused {
    const char16_t* text;
    const char16_t* why;
};

class RefusedServer : public testing::TestWithParam<Refused> {};

TEST_P(RefusedServer, IsRefusedWithTheReason) {
    try {
        ServerAddress::parse(GetParam().text);
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, error_number(0x8007203F));
        EXPECT_EQ(failure.description,
                  Text(u"(89) A setting or argument is not valid. ") + GetParam().why);
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, RefusedServer,
    testing::Values(
        Refused{u"", u"No server is given."}, Refused{u"   ", u"No server is given."},
        Refused{u"http://dir01", u"The server 'http://dir01' has the unknown scheme 'http'."},
        Refused{u"dir01:", u"The server 'dir01:' has a port outside 1 to 65535."},
        Refused{u"dir01:0", u"The server 'dir01:0' has a port outside 1 to 65535."},
        Refused{u"dir01:65536", u"The server 'dir01:65536' has a port outside 1 to 65535."},
        Refused{u"dir01:99999999999",
                u"The server 'dir01:99999999999' has a port outside 1 to 65535."},
        Refused{u"dir01:ldap", u"The server 'dir01:ldap' has a port that is not a number."},
        Refused{u"ldap://", u"The server 'ldap://' has no host name."},
        Refused{u":389", u"The server ':389' has no host name."},
        Refused{u"::1",
                u"The server '::1' has several ':'; an IPv6 address is written in brackets."},
        Refused{u"[::1", u"The server '[::1' has a '[' without a ']'."},
        Refused{u"[dir01]", u"The server '[dir01]' has no address in its brackets."},
        Refused{u"[::1]389", u"The server '[::1]389' goes on after the ']'."},
        Refused{u"cn=admin@dir01",
                u"The server 'cn=admin@dir01' has a character that is not "
                u"allowed in a host name."},
        Refused{u"ldap://dir01/o=Shop",
                u"The server 'ldap://dir01/o=Shop' has a path; the "
                u"container is a setting of its own."},
        Refused{u"ldap://dir01/?tls",
                u"The server 'ldap://dir01/?tls' has the unknown option 'tls'."},
        Refused{u"ldap://dir01/?starttls&Verify=no",
                u"The server 'ldap://dir01/?starttls&Verify=no' has the unknown option 'verify'."},
        Refused{u"ldap://dir01/?starttls=1",
                u"The server 'ldap://dir01/?starttls=1' gives the "
                u"option 'starttls' a value; it takes none."},
        Refused{u"ldaps://dir01/?starttls",
                u"The server 'ldaps://dir01/?starttls' asks for both ldaps and 'starttls'."},
        Refused{u"ldaps://dir01/?cafile",
                u"The server 'ldaps://dir01/?cafile' gives the option 'cafile' no file."},
        Refused{u"ldap://dir01/?cafile=/ca",
                u"The server 'ldap://dir01/?cafile=/ca' has the "
                u"option 'cafile', but its connection is not "
                u"encrypted."},
        Refused{u"ldaps://dir01/?cafile=%2",
                u"The server 'ldaps://dir01/?cafile=%2' has a '%' that two hexadecimal digits do "
                u"not follow."},
        Refused{u"dir01 dir02:x", u"The server 'dir02:x' has a port that is not a number."}));

TEST(ServerAddress, KeepsTheHostsInTheirOrder) {
    const ServerAddress address = ServerAddress::parse(u"ldaps://b [::1]:3890");
    ASSERT_EQ(address.hosts().size(), 2u);
    EXPECT_EQ(address.hosts()[0], (ServerHost{"b", 636, Security::tls, {}}));
    EXPECT_EQ(address.hosts()[1], (ServerHost{"::1", 3890, Security::none, {}}));
    EXPECT_EQ(address.hosts()[1].url(), "ldap://[::1]:3890");
}

TEST(ServerAddress, HostsAreWrittenAsTheyAreRead) {
    for (const char16_t* written : {u"dir01", u"ldaps://dir01:6360", u"ldap://[::1]:3890/?starttls",
                                    u"ldaps://dir01/?cafile=/etc/shop/ca%201%25%26.pem",
                                    u"ldap://dir01/?starttls&cafile=/etc/ca.pem"}) {
        const ServerHost host = ServerAddress::parse(written).hosts().front();
        EXPECT_EQ(ServerAddress::parse(from_utf8(host.setting())).hosts().front(), host)
            << host.setting();
    }
}

}  // namespace
}  // namespace orvo::directory::ldap
