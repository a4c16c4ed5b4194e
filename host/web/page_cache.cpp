#include "host/web/page_cache.h"

#include <algorithm>

namespace orvo::web {

script::Program PageCache::get(const std::string& path) {
    {
        const std::lock_guard guard(lock_);
        const auto found = pages_.find(path);
        if (found != pages_.end() && is_fresh(found->second)) return found->second.program;
    }
    PageSource source = compile_page(root_, path);
    auto program = script::Program::compile(source.program, path, std::move(source.lines));
    const std::lock_guard guard(lock_);
    pages_.insert_or_assign(path, Page{program, std::move(source.files)});
    return program;
}

bool PageCache::is_fresh(const Page& page) {
    return std::ranges::all_of(
        page.files, [](const PageFile& known) { return page_file(known.file) == known; });
}

}  // namespace orvo::web
