#pragma once

#include <optional>
#include <string_view>

namespace orvo::script {

// A point in time as a text writes it; every part is possible (no 30th of February).
struct WrittenDate {
    long year = 0;
    int month = 1;  // from 1
    int day = 1;
    int hour = 0;  // up to 24
    int minute = 0;
    int second = 0;
    int millisecond = 0;
    // Minutes east of Greenwich; none: it is local time.
    std::optional<int> zone = {};

    // Since 1970, as if the parts were those of Greenwich.
    double milliseconds() const;
};

// Reads what scripts give to Date: ISO's form (a date alone is one of Greenwich), "1/2/2003" (the
// month first), "2003/01/02", "Jan 2, 2003", "2 January 2003 10:00:00 GMT+0100", and the three
// forms of HTTP. Years of one or two digits are those of 1900, but in HTTP's old form "06-Nov-03"
// those below 70 are of 2000. Nothing for any other text, and where the year or the month is
// missing.
std::optional<WrittenDate> read_date(std::string_view text);

// "Thu, 02 Jan 2003 10:00:00 GMT"
struct HttpDate {
    char text[64];
};
// milliseconds: since 1970, in the range of the language's dates.
HttpDate http_date(double milliseconds);

}  // namespace orvo::script
