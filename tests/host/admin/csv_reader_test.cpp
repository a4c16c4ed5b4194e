#include "host/admin/transfer/csv_reader.h"

#include <gtest/gtest.h>

#include <sstream>

namespace orvo::admin {
namespace {

// The rows as "line:cell|cell" and what was wrong at the end.
std::vector<std::string> read(const std::string& text, std::size_t longest = 1000) {
    std::istringstream in(text);
    CsvReader reader(in, longest);
    std::vector<std::string> rows;
    try {
        while (const auto row = reader.next()) {
            std::string written = std::to_string(row->line) + ":";
            for (std::size_t i = 0; i < row->cells.size(); ++i)
                written += (i > 0 ? "|" : "") + row->cells[i];
            rows.push_back(std::move(written));
        }
    } catch (const CsvError& error) {
        rows.push_back(error.what());
    }
    return rows;
}

using Rows = std::vector<std::string>;

TEST(CsvReader, ReadsRowsWithTheLinesOnWhichTheyBegin) {
    EXPECT_EQ(read("cn,mail\r\nada,\r\n\r\ngrace,g@shop.example\r\n"),
              (Rows{"1:cn|mail", "2:ada|", "4:grace|g@shop.example"}));
    EXPECT_EQ(read("cn\nada"), (Rows{"1:cn", "2:ada"})) << "the last line needs no end";
    EXPECT_EQ(read(""), Rows{});
    EXPECT_EQ(read("\n\n"), Rows{});
}

TEST(CsvReader, KeepsWhatIsBetweenQuotationMarks) {
    EXPECT_EQ(read("cn,street\n\"Lovelace, Ada\",\"St James's \"\"Square\"\"\nLondon\"\nx,y\n"),
              (Rows{"1:cn|street", "2:Lovelace, Ada|St James's \"Square\"\nLondon", "4:x|y"}));
}

TEST(CsvReader, KeepsSpaces) { EXPECT_EQ(read("a, b ,\" c \"\n"), (Rows{"1:a| b | c "})); }

TEST(CsvReader, TakesTheSeparatorOfTheFirstLine) {
    EXPECT_EQ(read("cn;mail\na,b;c\n"), (Rows{"1:cn|mail", "2:a,b|c"}));
    EXPECT_EQ(read("cn\tmail\na b\tc\n"), (Rows{"1:cn|mail", "2:a b|c"}));
    EXPECT_EQ(read("cn,OrvoRole\na,1;24\n"), (Rows{"1:cn|OrvoRole", "2:a|1;24"}));
}

TEST(CsvReader, PassesOverAByteOrderMark) {
    EXPECT_EQ(read("\xEF\xBB\xBF"
                   "cn\nJos\xC3\xA9\n"),
              (Rows{"1:cn", "2:Jos\xC3\xA9"}));
}

TEST(CsvReader, SaysWhatIsWrongAndWhere) {
    EXPECT_EQ(read("cn\nJos\xE9\n"), (Rows{"1:cn", "line 2: not UTF-8"}));
    EXPECT_EQ(read("cn\na\"b\n"),
              (Rows{"1:cn", "line 2: a quotation mark stands where none may be"}));
    EXPECT_EQ(read("cn\n\"a\"b\n"),
              (Rows{"1:cn", "line 2: a quotation mark stands where none may be"}));
    EXPECT_EQ(read("cn\nx\n\"a\nb\n"),
              (Rows{"1:cn", "2:x", "line 3: a quotation mark has no second one"}));
    EXPECT_EQ(read("cn\n" + std::string(100, 'x') + "\n", 50),
              (Rows{"1:cn", "line 2: longer than 50 bytes"}));
    EXPECT_EQ(read("cn\n\"" + std::string(30, 'x') + "\n" + std::string(30, 'x') + "\"\n", 50),
              (Rows{"1:cn", "line 3: longer than 50 bytes"}));
}

}  // namespace
}  // namespace orvo::admin
