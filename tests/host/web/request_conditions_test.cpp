#include "host/web/messages/request_conditions.h"

#include <gtest/gtest.h>

namespace orvo::web {
namespace {

TEST(HttpDates, AreReadInTheFormThatIsSent) {
    const auto time = try_http_date("Sun, 06 Nov 1994 08:49:37 GMT");
    ASSERT_TRUE(time);
    EXPECT_EQ(time->time_since_epoch().count(), 784111777);
    EXPECT_EQ(http_date_of(*time), "Sun, 06 Nov 1994 08:49:37 GMT");
    for (const std::string_view text :
         {"", "yesterday", "Sunday, 06-Nov-94 08:49:37 GMT", "Sun Nov  6 08:49:37 1994",
          "Sun, 06 Now 1994 08:49:37 GMT", "Sun, 31 Nov 1994 08:49:37 GMT",
          "Sun, 06 Nov 1994 24:49:37 GMT", "Sun, 06 Nov 1994 08:60:37 GMT",
          "Sun, 06 Nov 1994 08:49:61 GMT", "Sun, +6 Nov 1994 08:49:37 GMT",
          "Sun, 06 Nov 1994 08:49:37 UTC", "Sun, 06 Nov 1994 08:49:37 GMT "})
        EXPECT_FALSE(try_http_date(text)) << text;
}

TEST(Tags, AreFoundInLists) {
    for (const std::string_view tags :
         {"\"a\"", "W/\"a\"", "\"b\", \"a\"", "\"b\" , W/\"a\" ", "*"})
        EXPECT_TRUE(has_tag(tags, "\"a\"")) << tags;
    for (const std::string_view tags : {"", "a", "\"b\"", "\"A\"", "w/\"a\"", ","})
        EXPECT_FALSE(has_tag(tags, "\"a\"")) << tags;
}

TEST(Encodings, SayWhetherGzipIsTaken) {
    for (const std::string_view encodings :
         {"gzip", "GZip", "deflate, gzip;q=1.0", "br , gzip ; q=0.1", "*", "identity, *;q=0.5",
          "gzip;q=0.001"})
        EXPECT_TRUE(accepts_gzip(encodings)) << encodings;
    for (const std::string_view encodings :
         {"", "br", "x-gzip2", "gzip;q=0", "gzip; q=0.000", "*;q=0", "gzip;q=0, *"})
        EXPECT_FALSE(accepts_gzip(encodings)) << encodings;
}

TEST(Ranges, AreOneStretchOfBytes) {
    struct Asked {
        std::string_view range;
        std::optional<ByteRange> bytes;
    };
    for (const auto& [range, bytes] : std::initializer_list<Asked>{
             {"bytes=0-0", ByteRange{0, 1}},
             {"Bytes=2-4", ByteRange{2, 3}},
             {"bytes=2-", ByteRange{2, 8}},
             {"bytes=2-99999", ByteRange{2, 8}},
             {"bytes=-3", ByteRange{7, 3}},
             {"bytes=-99", ByteRange{0, 10}},
             {"bytes= 2 - 4 ", ByteRange{2, 3}},
             {"bytes=-0", ByteRange{10, 0}},
             {"bytes=10-", ByteRange{10, 0}},
             {"bytes=18446744073709551615-", ByteRange{18446744073709551615u, 0}},
             {"bytes=4-2", {}},
             {"bytes=-", {}},
             {"bytes=", {}},
             {"bytes=a-b", {}},
             {"bytes=0-1,4-5", {}},
             {"bytes=99999999999999999999-", ByteRange{18446744073709551615u, 0}},
             {"bytes=99999999999999999999-99999999999999999999",
              ByteRange{18446744073709551615u, 0}},
             {"bytes=2-99999999999999999999", ByteRange{2, 8}},
             {"bytes=-99999999999999999999", ByteRange{0, 10}},
             {"lines=0-1", {}},
             {"", {}}})
        EXPECT_EQ(try_range(range, 10), bytes) << range;
    EXPECT_EQ(try_range("bytes=0-", 0), (ByteRange{0, 0}));
}

}  // namespace
}  // namespace orvo::web
