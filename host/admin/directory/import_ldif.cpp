#include <chrono>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>

#include "host/admin/common/input_file.h"
#include "host/admin/common/progress_bar.h"
#include "host/admin/common/terminal.h"
#include "host/admin/common/texts.h"
#include "host/admin/directory/directory_admin.h"
#include "suite/directory/embedded/directory/directory.h"
#include "suite/directory/embedded/transfer/loader.h"
#include "suite/directory/policy/failures.h"

namespace orvo::admin {
namespace {

using namespace directory;
using namespace directory::embedded;

void load(InputFile& file, Loader& loader) {
    std::optional<ProgressBar> bar;
    const Terminal terminal = Terminal::of_errors();
    if (terminal.is_there) bar.emplace(std::cerr, "Loading " + file.name(), terminal.width);
    LdifReader reader(file.stream());
    while (std::optional<LdifRecord> record = reader.next()) {
        const std::int64_t line = record->line;
        const std::string name = record->entry.name;
        try {
            loader.take(*std::move(record));
        } catch (const std::exception& failure) {
            throw std::runtime_error("line " + std::to_string(line) + ": " + quoted_name(name) +
                                     ": " + told(failure));
        }
        if (bar && loader.count() % 100 == 0)
            bar->tell(file.position(), file.size(), std::to_string(loader.count()) + " entries");
    }
}

}  // namespace

void import_ldif(const ImportRequest& request) {
    const auto begin = std::chrono::steady_clock::now();
    InputFile file(request.ldif);
    const std::shared_ptr<Store> store = Store::open(request.store);
    Loader loader(*store, time_of_day(), request.hash_cost);
    try {
        load(file, loader);
    } catch (const std::exception& failure) {
        throw std::runtime_error(file.name() + ", " + failure.what());
    }
    const std::string count = std::to_string(loader.count());
    if (request.is_dry_run) {
        std::cout << file.name() << ": " << count << " entries could be loaded.\n";
        return;
    }
    {
        std::optional<ProgressBar> bar;
        const Terminal terminal = Terminal::of_errors();
        if (terminal.is_there)
            bar.emplace(std::cerr, "Writing " + store->path().string(), terminal.width);
        if (bar) bar->tell(0, 0, {});
        loader.commit();
    }
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - begin);
    std::cout << file.name() << ": " << count << " entries loaded in " << seconds.count()
              << " s.\n";
}

}  // namespace orvo::admin
