#include "host/admin/common/output.h"

#include <cerrno>
#include <iostream>
#include <stdexcept>
#include <string>
#include <system_error>

#include "host/admin/common/texts.h"

namespace orvo::admin {
namespace {

[[noreturn]] void raise_unwritable(int reason) {
    throw std::runtime_error("standard output cannot be written" +
                             (reason ? ": " + std::generic_category().message(reason) : ""));
}

}  // namespace

void put(std::ostream& out, std::string_view text) {
    errno = 0;
    if (!(out << text)) raise_unwritable(errno);
}

void flush_output() {
    errno = 0;
    if (!std::cout.flush()) raise_unwritable(errno);
}

void say(const CommonOptions& options, const std::string& name, const std::string& what) {
    if (!options.is_quiet) put(std::cout, printable(name + ": " + what + ".") + "\n");
}

}  // namespace orvo::admin
