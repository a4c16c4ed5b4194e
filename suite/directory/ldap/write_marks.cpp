#include "suite/directory/ldap/write_marks.h"

#include <array>
#include <atomic>
#include <functional>

namespace orvo::directory::ldap {
namespace {

std::array<std::atomic<std::uint64_t>, 1024> marks;

std::atomic<std::uint64_t>& mark_of(std::string_view entry) {
    return marks[std::hash<std::string_view>()(entry) % marks.size()];
}

}  // namespace

std::uint64_t write_mark(std::string_view entry) { return mark_of(entry).load(); }

void note_write(std::string_view entry) { mark_of(entry).fetch_add(1); }

}  // namespace orvo::directory::ldap
