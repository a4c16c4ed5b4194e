#include "host/web/intrinsics/page_runner.h"

#include "host/web/intrinsics/page_run.h"
#include "host/web/intrinsics/request_object.h"
#include "host/web/intrinsics/response_object.h"
#include "host/web/intrinsics/server_object.h"
#include "host/web/intrinsics/session_object.h"
#include "host/web/intrinsics/uploaded_files.h"
#include "platform/objects/context/memory_account.h"
#include "platform/objects/files/file_access.h"

namespace orvo::web {

namespace {

// Bytes that one request's scripts and the objects that they make may take.
constexpr std::size_t memory_of_a_page = std::size_t{64} << 20;

std::shared_ptr<MemoryBudget> page_memory() {
    return std::make_shared<MemoryBudget>(memory_of_a_page);
}

// False where the store cannot be reached: the page does without, and the next one begins it.
bool try_begin_session(PageContext& page) {
    try {
        page.need_session();
        return true;
    } catch (const StoreAway&) {
        return false;
    }
}

// What components find in the object context: what scripts do, but for a session that the page does
// without, the folders whose files they may use, and where they tell what they hold.
ContextItems for_components(const std::shared_ptr<PageContext>& page, ContextItems items,
                            const std::shared_ptr<MemoryBudget>& memory) {
    if (!page->has_session()) items.erase(u"Session");
    items.emplace(file_access_item,
                  make_file_access(page->file_folders, [page](const std::filesystem::path& file) {
                      return is_part_of_pages(*page, file);
                  }));
    items.emplace(memory_account_item, make_memory_account(memory));
    return items;
}

}  // namespace

void run_page(const std::shared_ptr<PageContext>& page, PageCache& pages, const std::string& path,
              const GlobalScript* global) {
    const CompiledPage compiled = pages.get(path);
    if (!compiled.settings.has_session) page->do_without_session();
    page->try_open_session();
    const ContextItems items{{u"Request", make<RequestObject>(page).object()},
                             {u"Response", make<ResponseObject>(page).object()},
                             {u"Session", make<SessionObject>(page).object()},
                             {u"Application", make<ApplicationObject>(page).object()},
                             {u"Server", make<ServerObject>(page).object()}};
    const std::shared_ptr<MemoryBudget> memory = page_memory();
    const ContextScope scope(for_components(page, items, memory));
    PageRun run(*page, &pages, items, memory);
    if (global && global->handles(GlobalEvent::session_start) && page->has_session() &&
        !page->session() && try_begin_session(*page)) {
        try {
            if (run.run({&global->program, &call_of(GlobalEvent::session_start)}) ==
                script::Ending::stopped)
                return;
        } catch (...) {
            page->abandon_session();  // the next request begins anew
            throw;
        }
    }
    page->running_path = path;
    run.run({&compiled.program});
}

void run_page(const std::shared_ptr<PageContext>& page, PageCache& pages) {
    run_page(page, pages, page->path);
}

Handlers run_event(const std::shared_ptr<PageContext>& page, const script::Program& global,
                   GlobalEvent event) {
    ContextItems items{{u"Application", make<ApplicationObject>(page).object()},
                       {u"Server", make<ServerObject>(page).object()}};
    if (event == GlobalEvent::session_end)
        items.emplace(u"Session", make<SessionObject>(page).object());
    const std::shared_ptr<MemoryBudget> memory = page_memory();
    const ContextScope scope(for_components(page, items, memory));
    Handlers handlers;
    PageRun(*page, nullptr, items, memory)
        .run({&global, &search_for_handlers(), &call_of(event)},
             [&](std::span<const Variant> arguments) {
                 handlers.insert(static_cast<GlobalEvent>(arguments[0].to<std::int32_t>()));
                 return Variant();
             });
    return handlers;
}

}  // namespace orvo::web
