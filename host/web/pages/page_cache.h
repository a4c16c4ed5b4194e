#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>

#include "host/web/pages/page_compiler.h"

namespace orvo::web {

// A page that can run.
struct CompiledPage {
    script::Program program;
    PageSettings settings;
};

// The source of a page, compiled. Raises script::ScriptError; of a page that reads like one in
// another language the message says so.
script::Program compile_source(PageSource& source, const std::string& path);

// The site's pages, compiled. A page is compiled again when it, or a file that it includes, has
// another time or size than before. Any thread.
class PageCache {
public:
    explicit PageCache(std::filesystem::path root) : root_(std::move(root)) {}

    // Raises PageError where the page cannot be read, script::ScriptError where its script cannot;
    // such a page is not kept.
    CompiledPage get(const std::string& path);

    const std::filesystem::path& root() const { return root_; }

private:
    struct Page {
        CompiledPage compiled;
        std::vector<PageFile> files;
    };

    static bool is_fresh(const Page& page);

    const std::filesystem::path root_;
    std::mutex lock_;
    std::map<std::string, Page> pages_;
};

}  // namespace orvo::web
