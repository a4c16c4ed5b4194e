// How a session reads the entries of an answer, and which it refuses.

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "suite/directory/ldap/wire/ber.h"
#include "suite/directory/ldap/wire/session.h"
#include "tests/suite/directory/ldap/support/peer.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::literals;
using ber::integer;
using ber::octet_string;
using ber::sequence;
using ber::set;

constexpr unsigned char entry_tag = 0x64;

std::string element(unsigned char tag, const std::string& content) {
    return ber::header(tag, content.size()) + content;
}

std::string text(const std::string& value) { return element(octet_string, value); }

// With a length of four digits, as some servers write every one.
std::string in_long_form(unsigned char tag, const std::string& content) {
    return std::string(1, static_cast<char>(tag)) + "\x84\0\0\0"s +
           static_cast<char>(content.size()) + content;
}

std::string attribute(const std::string& name, const std::string& values) {
    return element(sequence, text(name) + element(set, values));
}

// The answer to the first request of a connection: entries, each with these attributes.
std::string answer_of(const std::vector<std::string>& entries) {
    const std::string request = "\x02\x01\x01"s;
    std::string answer;
    for (const std::string& attributes : entries)
        answer += element(
            sequence,
            request + element(entry_tag, text("cn=x,o=Shop") + element(sequence, attributes)));
    return answer + element(sequence, request + "\x65\x07\x0A\x01\x00\x04\x00\x04\x00"s);
}

struct Answered {
    int code;
    std::vector<std::string> entries;  // "name: value, value; name: value"
};

Answered answered(const std::vector<std::string>& entries) {
    Peer peer([&](int connection) {
        std::string bytes(4096, ' ');
        ::recv(connection, bytes.data(), bytes.size(), 0);
        send(connection, answer_of(entries));
        take_everything(connection);
    });
    Session session = peer.session(5s);
    Answered answered;
    SearchRequest request;
    request.base = "o=Shop";
    answered.code = session
                        .search(request,
                                [&](EntryData&& entry) {
                                    EXPECT_EQ(entry.name, "cn=x,o=Shop");
                                    std::string& shown = answered.entries.emplace_back();
                                    for (const Attribute& attribute : entry.attributes) {
                                        if (!shown.empty()) shown += "; ";
                                        shown += attribute.name + ":";
                                        for (const std::string& value : attribute.values)
                                            shown += (shown.back() == ':' ? " " : ", ") + value;
                                    }
                                })
                        .code;
    return answered;
}

TEST(AnEntryOfAnAnswer, IsReadAttributeAfterAttribute) {
    const std::pair<std::string, std::string> read[] = {
        {"", ""},
        {attribute("cn", text("anna")), "cn: anna"},
        {attribute("cn;lang-de", text("anna") + text("a, b")), "cn;lang-de: anna, a, b"},
        {attribute("cn", text("a")) + attribute("sn", text("b") + text("c")), "cn: a; sn: b, c"},
        {attribute("cn", ""), "cn:"},
        {attribute("cn", "") + attribute("sn", text("")), "cn:; sn: "},
        {attribute("photo", text("\0\x30\xFF"s)), "photo: \0\x30\xFF"s},
        {attribute("cn", text(std::string(300, 'x'))), "cn: " + std::string(300, 'x')},
        {in_long_form(sequence, in_long_form(octet_string, "cn") + in_long_form(set, text("anna"))),
         "cn: anna"},
    };
    for (const auto& [attributes, shown] : read) {
        const Answered result = answered({attributes});
        EXPECT_EQ(result.code, 0) << shown;
        EXPECT_EQ(result.entries, std::vector{shown});
    }
}

TEST(AnEntryOfAnAnswer, HasNothingOfTheOneBefore) {
    const Answered result =
        answered({attribute("cn", text("a") + text("b")) + attribute("sn", text("c")),
                  attribute("mail", text("d")), "", attribute("cn", "")});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.entries, (std::vector<std::string>{"cn: a, b; sn: c", "mail: d", "", "cn:"}));
}

TEST(AnEntryOfAnAnswer, ThatCannotBeReadEndsTheSearch) {
    const std::string name = text("cn"), values = element(set, text("a"));
    const std::string refused[] = {
        element(set, name + values),
        element(sequence, ""),
        element(sequence, name),
        element(sequence, values + name),
        element(sequence, element(integer, "cn") + values),
        element(sequence, name + element(sequence, text("a"))),
        element(sequence, name + element(set, element(integer, "\x01"))),
        element(sequence, name + element(set, "\x04\x05xx")),
        element(sequence, name + element(set, text("a") + "\x04")),
        element(sequence, name + "\x31\x7F"s),
        "\x30\x05\x04"s,
        "\x30"s,
    };
    for (const std::string& bad : refused) {
        const Answered result = answered({attribute("cn", text("a")), bad});
        EXPECT_EQ(result.code, 84) << testing::PrintToString(bad);
        EXPECT_EQ(result.entries, std::vector{"cn: a"s}) << testing::PrintToString(bad);
        EXPECT_EQ(answered({attribute("cn", text("a")) + bad}).code, 84)
            << testing::PrintToString(bad);
    }
}

}  // namespace
}  // namespace orvo::directory::ldap
