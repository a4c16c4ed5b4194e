#include "suite/directory/ldap/wire/password_modify.h"

#include <gtest/gtest.h>

namespace orvo::directory::ldap {
namespace {

TEST(PasswordModify, CarriesTheUserAndTheNewPassword) {
    const Secret request = password_modify_request("cn=a", Secret(u"pass"));
    EXPECT_EQ(request.reveal(),
              "\x30\x0C"
              "\x80\x04"
              "cn=a"
              "\x82\x04"
              "pass");
}

TEST(PasswordModify, CarriesTheFormerPasswordBetweenThem) {
    const Secret request = password_modify_request("cn=a", Secret(u"pass"), Secret(u"word1"));
    EXPECT_EQ(request.reveal(),
              "\x30\x13"
              "\x80\x04"
              "cn=a"
              "\x81\x05"
              "word1"
              "\x82\x04"
              "pass");
}

TEST(PasswordModify, CarriesAPasswordBeyondAsciiInUtf8) {
    const Secret request = password_modify_request("cn=a", Secret(u"gr\u00FC\u00DF"));
    EXPECT_EQ(request.reveal().substr(8), "\x82\x06gr\xC3\xBC\xC3\x9F");
}

struct LongName {
    std::size_t length;
    std::string_view whole_header;
    std::string_view name_header;
};

TEST(PasswordModify, WritesLengthsInAsManyBytesAsTheyNeed) {
    using namespace std::literals;
    for (const auto& [length, whole_header, name_header] : {
             LongName{0x7F, "\x30\x81\x84"sv, "\x80\x7F"sv},
             LongName{0x80, "\x30\x81\x86"sv, "\x80\x81\x80"sv},
             LongName{0xFF, "\x30\x82\x01\x05"sv, "\x80\x81\xFF"sv},
             LongName{0x100, "\x30\x82\x01\x07"sv, "\x80\x82\x01\x00"sv},
             LongName{0x12345, "\x30\x83\x01\x23\x4D"sv, "\x80\x83\x01\x23\x45"sv},
         }) {
        SCOPED_TRACE(length);
        const std::string name(length, 'n');
        const Secret request = password_modify_request(name, Secret(u"x"));
        EXPECT_EQ(request.reveal(),
                  std::string(whole_header) + std::string(name_header) + name + "\x82\x01x");
    }
}

}  // namespace
}  // namespace orvo::directory::ldap
