#include "host/admin/common/row_writer.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/admin/common/value_list.h"

namespace orvo::admin {
namespace {

const std::vector<Column> columns{{"cn"}, {"OrvoRole", true}, {"sn"}};
const OutputRow amy{"cn=amy,o=Shop", {{"amy"}, {"1", "24"}, {"O\"Hara, A."}}};
const OutputRow zoe{"cn=zoë,o=Shop", {{"zoë"}, {"5"}, {}}};
const OutputRow odd{"cn=odd,o=Shop", {{"o\nd\x1B"}, {}, {"\xFF\x01"}}};

std::string written(Format format, const std::vector<OutputRow>& rows, Terminal terminal = {}) {
    std::ostringstream out;
    const auto writer = make_row_writer(format, out, columns, terminal);
    for (const OutputRow& row : rows) writer->write(row);
    writer->finish();
    return out.str();
}

TEST(RowsAsATable, StandInColumnsOfTheirOwnWidth) {
    EXPECT_EQ(written(Format::table, {amy, zoe, odd}),
              "cn    OrvoRole  sn\n"
              "amy   1, 24     O\"Hara, A.\n"
              "zoë   5\n"
              "o?d?            /wE=\n");
    EXPECT_EQ(written(Format::table, {}), "cn  OrvoRole  sn\n");
}

TEST(RowsAsATable, AreCutWhereTheTerminalEnds) {
    Terminal terminal{.is_there = true, .width = 20};
    EXPECT_EQ(written(Format::table, {amy, zoe}, terminal),
              "cn   OrvoR…  sn\n"
              "amy  1, 24   O\"Hara…\n"
              "zoë  5\n");
    terminal.has_colours = true;
    EXPECT_EQ(written(Format::table, {}, terminal),
              "\x1B[1mcn\x1B[0m  \x1B[1mOrvoRole\x1B[0m  \x1B[1msn\x1B[0m\n");
}

TEST(RowsAsATable, AreWrittenBeforeAllAreThereWhereTheyAreMany) {
    std::ostringstream out;
    const auto writer = make_row_writer(Format::table, out, columns, {});
    for (std::size_t i = 1; i < RowWriter::rows_ahead; ++i) writer->write(zoe);
    EXPECT_EQ(out.str(), "");
    writer->write(zoe);
    EXPECT_NE(out.str(), "");
    writer->write(amy);
    EXPECT_TRUE(out.str().ends_with("amy  1, 24     O\"Hara, A.\n"));
}

TEST(RowsAsCsv, HaveQuotedCellsAndSeveralValuesInOne) {
    EXPECT_EQ(written(Format::csv, {amy, zoe, odd}),
              "cn,OrvoRole,sn\r\n"
              "amy,1;24,\"O\"\"Hara, A.\"\r\n"
              "zoë,5,\r\n"
              "\"o\nd\x1B\",,/wE=\r\n");
}

TEST(RowsAsJson, AreOneArrayWithListsAsArrays) {
    EXPECT_EQ(written(Format::json, {amy, zoe, odd}),
              "[\n"
              "  {\"cn\": \"amy\", \"OrvoRole\": [\"1\", \"24\"], \"sn\": \"O\\\"Hara, A.\"},\n"
              "  {\"cn\": \"zoë\", \"OrvoRole\": [\"5\"], \"sn\": null},\n"
              "  {\"cn\": \"o\\nd\\u001b\", \"OrvoRole\": [], \"sn\": \"/wE=\"}\n"
              "]\n");
    EXPECT_EQ(written(Format::json, {}), "[]\n");
}

TEST(RowsAsLdif, AreEntriesWithoutWhatTheyLack) {
    EXPECT_EQ(written(Format::ldif, {amy, zoe}),
              "dn: cn=amy,o=Shop\ncn: amy\nOrvoRole: 1\nOrvoRole: 24\nsn: O\"Hara, A.\n\n"
              "dn:: Y249em/DqyxvPVNob3A=\ncn:: em/Dqw==\nOrvoRole: 5\n\n");
}

TEST(RowsThatNobodyTakes, AreAFailure) {
    std::ostringstream out;
    const auto writer = make_row_writer(Format::csv, out, columns, {});
    out.setstate(std::ios::badbit);
    EXPECT_THROW(writer->write(amy), std::runtime_error);
}

TEST(ListsOfValues, ComeBackAsTheyWere) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> lists{
        {{}, ""},
        {{"1", "24"}, "1;24"},
        {{"a;b", "c"}, "a\\;b;c"},
        {{"SHOP\\shop-user"}, "SHOP\\shop-user"},
        {{"end\\", "a\\\\b", "\\;"}, "end\\\\;a\\\\\\b;\\\\\\;"},
        {{"", "x"}, ";x"},
    };
    for (const auto& [values, text] : lists) {
        EXPECT_EQ(joined_values(values), text);
        EXPECT_EQ(split_values(text), values) << text;
    }
}

}  // namespace
}  // namespace orvo::admin
