#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>

#include "host/web/page_compiler.h"

namespace orvo::web {

// The site's pages, compiled. A page is compiled again when it, or a file that it includes, has
// another time or size than before. Any thread.
class PageCache {
public:
    explicit PageCache(std::filesystem::path root) : root_(std::move(root)) {}

    // Raises PageError where the page cannot be read, script::ScriptError where its script cannot;
    // such a page is not kept.
    script::Program get(const std::string& path);

    const std::filesystem::path& root() const { return root_; }

private:
    struct Page {
        script::Program program;
        std::vector<PageFile> files;
    };

    static bool is_fresh(const Page& page);

    const std::filesystem::path root_;
    std::mutex lock_;
    std::map<std::string, Page> pages_;
};

}  // namespace orvo::web
