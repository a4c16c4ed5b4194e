#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "host/admin/directory/directory_admin.h"
#include "suite/directory/embedded/store/new_file.h"
#include "suite/directory/embedded/store/store.h"
#include "suite/directory/ldif/ldif_writer.h"

namespace orvo::admin {
namespace {

using namespace directory;
using namespace directory::embedded;

// The number of entries.
std::size_t write_entries(Store& store, std::ostream& out) {
    constexpr std::size_t enough = std::size_t{1} << 16;
    std::size_t count = 0;
    std::string text;
    store.read().every_entry([&](EntryData&& entry) {
        ++count;
        append_ldif(text, entry);
        if (text.size() >= enough) {
            out << text;
            text.clear();
        }
        return out.good();
    });
    errno = 0;
    out << text << std::flush;
    if (!out)
        throw std::runtime_error("the entries cannot be written: " +
                                 std::generic_category().message(errno ? errno : EIO));
    return count;
}

}  // namespace

void export_ldif(const std::filesystem::path& store, const std::filesystem::path& ldif) {
    const std::shared_ptr<Store> opened = Store::open(store);
    if (ldif == "-") {
        if (::isatty(STDOUT_FILENO))
            throw std::runtime_error("passwords' hashes are not shown on a terminal: name a file");
        write_entries(*opened, std::cout);
        return;
    }
    NewFile made(ldif);
    std::ofstream out(made.path(), std::ios::binary);
    const std::size_t count = write_entries(*opened, out);
    out.close();
    if (!out) throw std::runtime_error(ldif.string() + " cannot be written");
    made.publish();
    std::cout << ldif.string() << ": " << count << " entries written.\n";
}

}  // namespace orvo::admin
