#include "host/admin/transfer/csv_reader.h"

#include <csv.h>

#include <new>

#include "host/admin/common/texts.h"

namespace orvo::admin {
namespace {

constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

}  // namespace

struct CsvReader::Parser {
    Parser() {
        if (csv_init(&csv, CSV_STRICT | CSV_STRICT_FINI) != 0) throw std::bad_alloc();
        // Spaces around a cell are its own.
        csv_set_space_func(&csv, [](unsigned char) { return 0; });
    }
    ~Parser() { csv_free(&csv); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    static void end_of_cell(void* cell, std::size_t length, void* parser) {
        static_cast<Parser*>(parser)->row.cells.emplace_back(static_cast<const char*>(cell),
                                                             length);
    }
    static void end_of_row(int, void* parser) { static_cast<Parser*>(parser)->is_whole = true; }

    csv_parser csv{};
    CsvRow row;
    std::size_t size = 0;  // of the row that is read, in octets
    bool is_whole = false;
};

CsvReader::CsvReader(std::istream& in, std::size_t longest)
    : in_(in), longest_(longest), parser_(std::make_unique<Parser>()) {}

CsvReader::~CsvReader() = default;

bool CsvReader::read_line(std::string& line) {
    line.clear();
    for (int c; (c = in_.get()) != std::istream::traits_type::eof();) {
        line += static_cast<char>(c);
        if (c == '\n') break;
        if (parser_->size + line.size() > longest_)
            throw CsvError(line_ + 1, "longer than " + std::to_string(longest_) + " bytes");
    }
    if (in_.bad()) throw std::runtime_error("the file cannot be read");
    if (line.empty()) return false;
    ++line_;
    return true;
}

void CsvReader::choose_separator(const std::string& first_line) {
    for (const char separator : {',', ';', '\t'}) {
        if (first_line.find(separator) == std::string::npos) continue;
        csv_set_delim(&parser_->csv, static_cast<unsigned char>(separator));
        return;
    }
}

std::optional<CsvRow> CsvReader::next() {
    Parser& parser = *parser_;
    parser.row = {};
    parser.size = 0;
    parser.is_whole = false;
    std::string line;
    while (!parser.is_whole && read_line(line)) {
        if (line_ == 1) {
            if (line.starts_with(byte_order_mark)) line.erase(0, byte_order_mark.size());
            choose_separator(line);
        }
        if (parser.size == 0 && line.find_first_not_of("\r\n") == std::string::npos) continue;
        if (!is_utf8(line)) throw CsvError(line_, "not UTF-8");
        if (parser.size == 0) parser.row.line = line_;
        parser.size += line.size();
        const std::size_t taken = csv_parse(&parser.csv, line.data(), line.size(),
                                            Parser::end_of_cell, Parser::end_of_row, &parser);
        if (taken != line.size())
            throw CsvError(line_, "a quotation mark stands where none may be");
    }
    if (!parser.is_whole &&
        csv_fini(&parser.csv, Parser::end_of_cell, Parser::end_of_row, &parser) != 0)
        throw CsvError(parser.row.line, "a quotation mark has no second one");
    if (!parser.is_whole) return {};
    return std::move(parser.row);
}

}  // namespace orvo::admin
