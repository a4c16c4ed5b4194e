#include "host/web/pages/page_cache.h"

#include <algorithm>

#include "host/web/pages/other_language.h"

namespace orvo::web {

script::Program compile_source(PageSource& source, const std::string& path) {
    try {
        return script::Program::compile(source.program, path, std::move(source.lines));
    } catch (const script::ScriptError& error) {
        const auto other = other_language_of(source.program);
        if (other.empty()) throw;
        throw script::ScriptError(error.trouble, error.place,
                                  error.message + ". This reads like " + std::string(other) +
                                      ", but the language of pages is JScript (ECMAScript): the "
                                      "page has to be translated");
    }
}

CompiledPage PageCache::get(const std::string& path) {
    {
        const std::lock_guard guard(lock_);
        const auto found = pages_.find(path);
        if (found != pages_.end() && is_fresh(found->second)) return found->second.compiled;
    }
    PageSource source = compile_page(root_, path);
    CompiledPage page{compile_source(source, path), source.settings};
    const std::lock_guard guard(lock_);
    pages_.insert_or_assign(path, Page{page, std::move(source.files)});
    return page;
}

bool PageCache::is_fresh(const Page& page) {
    return std::ranges::all_of(
        page.files, [](const PageFile& known) { return page_file(known.file) == known; });
}

}  // namespace orvo::web
