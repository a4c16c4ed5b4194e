// Dates as pages write them, and as HTTP does.

#include "tests/host/engine/script_test.h"

namespace orvo::script {
namespace {

class ScriptDates : public ScriptTest {
protected:
    // The date that a text is, or "NaN"; one of local time is shown as if it were of Greenwich.
    std::string shown(const std::string& written) {
        return text("(function (d) { return isNaN(d) ? 'NaN' : d.toISOString(); })(new Date(\"" +
                    written + "\"))");
    }
    std::string local(const std::string& written) {
        return text(
            "(function (d) { return isNaN(d) ? 'NaN' : new Date(Date.UTC(d.getFullYear(), "
            "d.getMonth(), d.getDate(), d.getHours(), d.getMinutes(), d.getSeconds(), "
            "d.getMilliseconds())).toISOString(); })(new Date(\"" +
            written + "\"))");
    }
};

TEST_F(ScriptDates, WithoutAZoneAreOfLocalTime) {
    for (const char* written :
         {"1/2/2003 10:00", "01/02/2003 10:00:00", "2003/01/02 10:00", "1-2-2003 10:00",
          "2003-1-2 10:00", "Jan 2, 2003 10:00", "2 January 2003 10:00:00", "January 2 2003 10:",
          "Thu Jan  2 10:00:00 2003", "Thursday, 2 Jan 2003 10:00", "2003 Jan 2 10:00 AM",
          "10:00 am 1/2/2003", "Jan 2 2003 (in (the) morning) 10:00", "2003-01-02T10:00:00",
          "2003-01-02T10:00", "2003-01-02 10:00:00", "  2003-01-02T10:00:00.000  "})
        EXPECT_EQ(local(written), "2003-01-02T10:00:00.000Z") << written;
    for (const char* written :
         {"1/2/2003", "2003/01/02", "2003/1/2", "Jan 2, 2003", "2 January 2003", "2003-1-2",
          "02-Jan-2003", "Jan. 2, 2003", "1/2/2003 12:00 AM", "2003-01-01T24:00:00"})
        EXPECT_EQ(local(written), "2003-01-02T00:00:00.000Z") << written;
    EXPECT_EQ(local("1/2/2003 12:30:15.5 PM"), "2003-01-02T12:30:15.500Z");
    EXPECT_EQ(local("1/2/2003 11:59 PM"), "2003-01-02T23:59:00.000Z");
    EXPECT_EQ(text("new Date('Feb 29, 0004').getFullYear()"), "4");
}

TEST_F(ScriptDates, WithAZoneAreTheSameEverywhere) {
    for (const char* written :
         {"Thu, 02 Jan 2003 10:00:00 GMT", "Thursday, 02-Jan-03 10:00:00 GMT",
          "2 January 2003 11:00:00 GMT+0100", "Thu Jan 2 11:00:00 UTC+0100 2003",
          "Jan 2 2003 05:00 EST", "1/2/2003 10:00 Z", "1/2/2003 09:30 -00:30",
          "2003-01-02T10:00:00Z", "2003-01-02T12:00:00+02:00", "2003-01-02 12:00:00.000+02:00",
          "+002003-01-02T10:00:00Z"})
        EXPECT_EQ(shown(written), "2003-01-02T10:00:00.000Z") << written;
    EXPECT_EQ(shown("2003-01-02"), "2003-01-02T00:00:00.000Z");
    EXPECT_EQ(shown("2003-02"), "2003-02-01T00:00:00.000Z");
    EXPECT_EQ(shown("2003"), "2003-01-01T00:00:00.000Z");
    EXPECT_EQ(shown("-000001-12-31T00:00:00Z"), "-000001-12-31T00:00:00.000Z");
}

TEST_F(ScriptDates, HaveTwoDigitsForAYearOf1900) {
    EXPECT_EQ(local("1/2/96"), "1996-01-02T00:00:00.000Z");
    EXPECT_EQ(local("1/2/03"), "1903-01-02T00:00:00.000Z");
    EXPECT_EQ(local("Jan 2, 03"), "1903-01-02T00:00:00.000Z");
    EXPECT_EQ(shown("Sunday, 06-Nov-94 08:49:37 GMT"), "1994-11-06T08:49:37.000Z");
    EXPECT_EQ(shown("Sunday, 06-Nov-33 08:49:37 GMT"), "2033-11-06T08:49:37.000Z");
}

TEST_F(ScriptDates, AreNothingElseThanWhatIsWritten) {
    for (const char* written : {"",
                                "x",
                                "12",
                                "Jan 2",
                                "2 Jan",
                                "13/1/2003",
                                "1/45/2003",
                                "2/30/2003",
                                "2/29/2003",
                                "2003-02-30",
                                "2003-13-01",
                                "2003-01-02T25:00:00",
                                "2003-01-02T24:00:01",
                                "2003-01-02T10",
                                "2003-01-02T10:60",
                                "1/2/2003 25:00",
                                "1/2/2003 13:00 PM",
                                "1/2/2003 0:30 PM",
                                "1/2/2003 10:00 GMT GMT",
                                "1/2/2003 1/2/2003",
                                "Jan Feb 2 2003",
                                "Jan 2 2003 2004",
                                "1/2",
                                "1/2/2003/4",
                                "2003/1/2003",
                                "Jan 2 2003 10:00 XYZ",
                                "Janx 2 2003",
                                "1/2/2003 (open",
                                "1/2/2003 10:00 EST+0100",
                                "-000000-01-01T00:00:00Z",
                                "Jan 2 99999999999",
                                "12/31/300000",
                                "1.2.2003"})
        EXPECT_EQ(shown(written), "NaN") << written;
}

TEST_F(ScriptDates, AreWrittenAsHttpDoes) {
    EXPECT_EQ(text("new Date(0).toUTCString()"), "Thu, 01 Jan 1970 00:00:00 GMT");
    EXPECT_EQ(text("new Date(1041501600999).toGMTString()"), "Thu, 02 Jan 2003 10:00:00 GMT");
    EXPECT_EQ(text("new Date(-1).toUTCString()"), "Wed, 31 Dec 1969 23:59:59 GMT");
    EXPECT_EQ(text("new Date(8.64e15).toUTCString()"), "Sat, 13 Sep 275760 00:00:00 GMT");
    EXPECT_EQ(text("new Date(NaN).toUTCString()"), "Invalid Date");
    EXPECT_EQ(text("Date.prototype.toGMTString === Date.prototype.toUTCString"), "true");
    EXPECT_EQ(error("Date.prototype.toUTCString.call(1)").message, "TypeError: expected Date");
    // Every day of four centuries is read as it was written.
    EXPECT_EQ(
        text("(function () { for (var d = -6.2e12; d < 6.4e12; d += 864e5) { var w = new "
             "Date(d); if (Date.parse(w.toUTCString()) !== d || w.toUTCString().indexOf(['Sun', "
             "'Mon', 'Tue', 'Wed', 'Thu', 'Fri', 'Sat'][w.getUTCDay()]) !== 0) return d; } "
             "return 'all'; })()"),
        "all");
}

TEST_F(ScriptDates, AreStillTheLanguagesOwn) {
    EXPECT_EQ(text("typeof Date()"), "string");
    EXPECT_EQ(text("[Date.length, Date.name, Date.parse.length, Date.UTC.length, new Date(1) "
                   "instanceof Date, new Date(1).constructor === Date].join()"),
              "7,Date,1,7,true,true");
    EXPECT_EQ(text("new Date(2003, 0, 2, 10).getHours()"), "10");
    EXPECT_EQ(text("new Date(new Date(1234)).getTime()"), "1234");
    EXPECT_EQ(text("new Date({valueOf: function () { return 5; }}).getTime()"), "5");
    EXPECT_EQ(text("Date.parse(String(new Date(1041501600123)))"), "1041501600123");
    EXPECT_EQ(text("new Date(5).getVarDate().getTime()"), "5");
    const ScriptError none = error("new Date(NaN).getVarDate()");
    EXPECT_EQ(static_cast<std::uint32_t>(none.number), 0x800A0005);
    EXPECT_EQ(none.message, "Invalid procedure call or argument: this Date is no date");
    EXPECT_EQ(text("(Date.parse({toString: function () { return '1970-01-01'; }}))"), "0");
}

}  // namespace
}  // namespace orvo::script
