// The conversions that were recorded from the platform itself, row by row.

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <fstream>
#include <map>
#include <sstream>

#include "printed.h"

namespace {

using namespace orvo::abi;
using orvo::testing::Owned;
using orvo::testing::printed;
using orvo::testing::printed_result;

// Rows that record a defect of the system they were taken from.
const std::map<std::string, std::string> defects = {
    {"BSTR \"&O17\" -> CY", "refused a pattern as currency that it accepted for every other type"},
};

const std::map<std::string, VARTYPE> type_names = {
    {"EMPTY", VT_EMPTY},     {"NULL", VT_NULL},   {"I1", VT_I1},
    {"I2", VT_I2},           {"I4", VT_I4},       {"I8", VT_I8},
    {"UI1", VT_UI1},         {"R4", VT_R4},       {"R8", VT_R8},
    {"CY", VT_CY},           {"DATE", VT_DATE},   {"BSTR", VT_BSTR},
    {"BOOL", VT_BOOL},       {"ERROR", VT_ERROR}, {"DISPATCH", VT_DISPATCH},
    {"VARIANT", VT_VARIANT},
};

std::string squeezed(const std::string& text) {
    std::istringstream words(text);
    std::string result;
    for (std::string word; words >> word;) result += (result.empty() ? "" : " ") + word;
    return result;
}

std::u16string unquoted(const std::string& text) {
    std::u16string result;
    for (std::size_t i = text.find('"') + 1; i < text.rfind('"'); ++i) {
        if (text[i] == '\\' && text[i + 1] == 'u') {
            result += static_cast<char16_t>(std::stoi(text.substr(i + 2, 4), nullptr, 16));
            i += 5;
        } else {
            result += static_cast<char16_t>(text[i]);
        }
    }
    return result;
}

int this_year() {
    std::time_t now = std::time(nullptr);
    return std::localtime(&now)->tm_year + 1900;
}

struct Source : Owned {
    std::int32_t referred = 9;
};

bool read_source(const std::string& text, Source& value) {
    std::string kind = text.substr(0, text.find(' '));
    std::string rest = text.size() > kind.size() ? text.substr(kind.size() + 1) : "";
    if (kind == "BSTR") {
        value.set_text(unquoted(text));
    } else if (kind == "Empty" || kind == "Null") {
        value.vt = kind == "Null" ? VT_NULL : VT_EMPTY;
    } else if (kind == "vt9" || kind == "vt13") {
        value.vt = kind == "vt9" ? VT_DISPATCH : VT_UNKNOWN;
    } else if (kind == "vt8209") {
        value.parray = SafeArrayCreateVector(VT_UI1, 0, 4);
        std::memcpy(value.parray->pvData, u"ab", 4);
        value.vt = VT_ARRAY | VT_UI1;
    } else if (kind == "vt8195") {
        value.parray = SafeArrayCreateVector(VT_I4, 0, 2);
        value.vt = VT_ARRAY | VT_I4;
    } else if (kind == "BYREF") {
        value.plVal = &value.referred;
        value.vt = VT_BYREF | VT_I4;
    } else if (type_names.count(kind)) {
        value.vt = type_names.at(kind);
        switch (value.vt) {
            case VT_I2:
            case VT_BOOL:
                value.iVal = static_cast<std::int16_t>(std::stoi(rest));
                break;
            case VT_I4:
                value.lVal = std::stoi(rest);
                break;
            case VT_R4:
                value.fltVal = std::stof(rest);
                break;
            case VT_R8:
            case VT_DATE:
                value.dblVal = std::stod(rest);
                break;
            case VT_CY:
                value.cyVal.int64 = std::stoll(rest.substr(6));
                break;
            case VT_ERROR:
                value.ulVal = static_cast<unsigned>(std::stoul(rest, nullptr, 16));
                break;
            default:
                return false;
        }
    } else {
        return false;
    }
    return true;
}

struct Row {
    std::string source;
    std::string target;
    std::uint16_t flags = 0;
    std::string code;
    std::string result;
};

// "<source> -> <type> [FLAG] <code> <result>"
Row read_row(const std::string& line) {
    Row row;
    std::size_t arrow = line.rfind(" -> ");
    row.source = line.substr(0, line.find_last_not_of(' ', arrow) + 1);
    std::istringstream rest(line.substr(arrow + 4));
    rest >> row.target >> row.code;
    if (row.code.front() == '[') {
        row.flags = row.code == "[ALPHABOOL]" ? VARIANT_ALPHABOOL : VARIANT_LOCALBOOL;
        rest >> row.code;
    }
    std::getline(rest, row.result);
    row.result = squeezed(row.result);
    return row;
}

VARTYPE read_type(const std::string& name) {
    auto known = type_names.find(name);
    if (known != type_names.end()) return known->second;
    return static_cast<VARTYPE>(std::stoi(name.substr(2), nullptr, 16));
}

TEST(ConversionTable, EveryRecordedConversionGivesItsRecordedResult) {
    std::ifstream table(CONVERSION_TABLE);
    ASSERT_TRUE(table) << CONVERSION_TABLE;
    int rows = 0;
    int left_out = 0;
    for (std::string line; std::getline(table, line);) {
        if (line.rfind("---", 0) == 0 || line.empty()) continue;
        SCOPED_TRACE(line);
        Row row = read_row(line);
        std::string name = row.source + " -> " + row.target;
        ++rows;
        if (defects.count(name)) {
            ++left_out;
            continue;
        }
        // Without a year, the date was recorded in the year of the recording.
        if (name == "BSTR \"1/2\" -> DATE") {
            std::chrono::sys_days day{std::chrono::year{this_year()} / 1 / 2};
            std::chrono::sys_days first{std::chrono::year{1899} / 12 / 30};
            row.result = "DATE " + std::to_string((day - first).count());
        }
        Source source;
        ASSERT_TRUE(read_source(row.source, source));
        Owned target;
        HRESULT outcome =
            VariantChangeTypeEx(&target, &source, fixed_locale, row.flags, read_type(row.target));
        EXPECT_EQ(printed_result(outcome), row.code);
        if (succeeded(outcome))
            EXPECT_EQ(printed(target), row.result);
        else
            EXPECT_EQ(printed(target), "Empty") << "a failure leaves the target as it was";
    }
    EXPECT_EQ(rows, 313);
    EXPECT_EQ(left_out, static_cast<int>(defects.size()));
}

}  // namespace
