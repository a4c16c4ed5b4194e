#include "host/admin/transfer/refused_rows.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <stdexcept>
#include <system_error>

#include "host/admin/common/texts.h"

namespace orvo::admin {

RefusedRows::RefusedRows(std::filesystem::path file, std::string from)
    : file_(std::move(file)), from_(std::move(from)) {
    if (!file_.empty() && std::filesystem::exists(file_))
        throw std::runtime_error(file_.string() + " is there already");
}

void RefusedRows::add(const ImportRow& row, const ImportSource& source, const std::string& reason) {
    ++count_;
    const std::string name = row.name.empty() ? "" : printable(row.name) + ": ";
    std::cerr << from_ << ", line " << row.line << ": " << name << reason << '\n';
    if (file_.empty()) return;
    if (!out_.is_open()) {
        const int made = ::open(file_.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
        if (made < 0)
            throw std::runtime_error(file_.string() + ": " +
                                     std::generic_category().message(errno));
        ::close(made);
        out_.open(file_, std::ios::binary);
        write(source.head_of_refused());
    }
    write(source.refused(row, reason));
}

void RefusedRows::write(std::string_view text) {
    if (!(out_ << text).flush()) throw std::runtime_error(file_.string() + " cannot be written");
}

}  // namespace orvo::admin
