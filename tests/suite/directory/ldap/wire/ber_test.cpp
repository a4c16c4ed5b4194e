#include "suite/directory/ldap/wire/ber.h"

#include <gtest/gtest.h>

namespace orvo::directory::ldap::ber {
namespace {

using namespace std::literals;

TEST(Ber, CutsOneElementAfterTheOther) {
    std::string_view bytes = "\x02\x01\x05\x04\x02hi"sv;
    const auto number = take_element(bytes);
    ASSERT_TRUE(number);
    EXPECT_EQ(number->tag, integer);
    EXPECT_EQ(number_in(number->content), 5);
    const auto text = take_element(bytes);
    ASSERT_TRUE(text);
    EXPECT_EQ(text->tag, octet_string);
    EXPECT_EQ(text->content, "hi");
    EXPECT_EQ(bytes, "");
}

TEST(Ber, ReadsLengthsAsItWritesThem) {
    for (const std::size_t length : {0u, 1u, 0x7Fu, 0x80u, 0xFFu, 0x100u, 0x12345u}) {
        const std::string content(length, 'x');
        const std::string written = header(octet_string, length) + content;
        std::string_view bytes = written;
        const auto read = take_element(bytes);
        ASSERT_TRUE(read) << length;
        EXPECT_EQ(read->content, content);
    }
}

TEST(Ber, RefusesAnElementThatIsNotThereInFull) {
    for (std::string_view bytes :
         {""sv, "\x04"sv, "\x04\x02x"sv, "\x04\x80"sv, "\x04\x82\x01"sv,
          "\x04\x84\xFF\xFF\xFF\xFF"sv, "\x04\x85\x00\x00\x00\x00\x01x"sv, "\x04\xFFx"sv})
        EXPECT_FALSE(take_element(bytes));
}

TEST(Ber, WritesNumbersInTheShortestForm) {
    EXPECT_EQ(content_of(0), "\x00"sv);
    EXPECT_EQ(content_of(0x7F), "\x7F"sv);
    EXPECT_EQ(content_of(0x80), "\x00\x80"sv);
    EXPECT_EQ(content_of(1000), "\x03\xE8"sv);
    EXPECT_EQ(content_of(0x7FFFFFFF), "\x7F\xFF\xFF\xFF"sv);
    for (const int number : {0, 1, 0x7F, 0x80, 0xFF, 1000, 0x8000, 0x7FFFFFFF})
        EXPECT_EQ(number_in(content_of(number)), number);
}

TEST(Ber, ReadsNoNumberThatIsNegativeOrTooLarge) {
    EXPECT_FALSE(number_in(""));
    EXPECT_FALSE(number_in("\xFF"));
    EXPECT_FALSE(number_in("\x00\x80\x00\x00\x00"sv));
}

}  // namespace
}  // namespace orvo::directory::ldap::ber
