#pragma once

// A site of a test's own: a folder of pages, and what a page runs with.

#include "host/web/intrinsics/page_context.h"
#include "host/web/intrinsics/page_runner.h"
#include "host/web/pages/page_cache.h"
#include "host/web/sessions/memory_application.h"
#include "host/web/sessions/memory_sessions.h"
#include "platform/module/local_class.h"
#include "platform/objects/context/app_server.h"
#include "tests/support/temp_folder.h"

namespace orvo::web {

class TestSite {
public:
    void write(const std::string& path, std::string_view content) const {
        folder.write(std::filesystem::path(path).relative_path(), content);
    }

    // A request as it stands before its page runs; the cookies of the browser are in it.
    std::shared_ptr<PageContext> request(HttpRequest request) {
        auto path = std::string(path_part(request.target));
        auto page = std::make_shared<PageContext>(std::move(request), std::move(path), root,
                                                  application, sessions, patience);
        page->open_session();
        return page;
    }

    // Runs one page of a text and answers what it wrote.
    std::string run(std::string_view content, HttpRequest asked = {.target = "/page.asp"}) {
        write("/page.asp", content);
        const auto page = request(std::move(asked));
        run_page(page, pages);
        last = page->answer;
        return last.body;
    }

    TempFolder folder;
    const std::filesystem::path root = std::filesystem::canonical(folder.path());
    LocalClass app_server = local_class<AppServerObject>();
    std::chrono::milliseconds patience{1000};
    MemoryApplication application;
    SessionClock::time_point now{};
    MemorySessions sessions{{}, [this] { return now; }};
    PageCache pages{root};
    PageAnswer last;
};

}  // namespace orvo::web
