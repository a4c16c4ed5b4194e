#include "host/web/page_runner.h"

#include "host/engine/script_engine.h"
#include "host/web/request_object.h"
#include "host/web/response_object.h"
#include "host/web/server_object.h"
#include "host/web/session_object.h"
#include "platform/interfaces/create.h"
#include "platform/objects/context/context_scope.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

constexpr int deepest_execution = 8;

class Run : public PageControl {
public:
    Run(PageContext& page, PageCache& pages, script::Engine& engine)
        : page_(page), pages_(pages), engine_(engine) {
        page_.control = this;
    }
    ~Run() { page_.control = nullptr; }

    void stop() override { engine_.stop(); }

    void set_time_limit(std::chrono::seconds limit) override {
        const auto used = std::chrono::steady_clock::now() - begin_;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(limit - used);
        engine_.set_time_limit(std::max(left, std::chrono::milliseconds(1)));
    }

    void execute(const Text& path) override {
        if (depth_ >= deepest_execution)
            throw Failure(runtime_error::invalid_call, {},
                          u"Pages execute each other too deeply: " + path);
        const std::filesystem::path asked = to_utf8(path);
        const auto from_root =
            asked.is_absolute() ? asked : std::filesystem::path(page_.path).parent_path() / asked;
        ++depth_;
        try {
            engine_.run(pages_.get(from_root.lexically_normal().generic_string()));
        } catch (const PageError& error) {
            --depth_;
            throw Failure(runtime_error::invalid_call, {}, from_utf8(error.what()));
        } catch (const script::ScriptError& error) {
            --depth_;
            throw Failure(runtime_error::invalid_call, {}, from_utf8(error.what()));
        }
        --depth_;
    }

private:
    PageContext& page_;
    PageCache& pages_;
    script::Engine& engine_;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    int depth_ = 0;
};

}  // namespace

void run_page(const std::shared_ptr<PageContext>& page, PageCache& pages) {
    const script::Program program = pages.get(page->path);
    const ContextItems items{{u"Request", make<RequestObject>(page).object()},
                             {u"Response", make<ResponseObject>(page).object()},
                             {u"Session", make<SessionObject>(page).object()},
                             {u"Application", make<ApplicationObject>(page).object()},
                             {u"Server", make<ServerObject>(page).object()}};
    const ContextScope scope(items);
    script::Engine engine({.create_object = create_object});
    Run run(*page, pages, engine);
    for (const auto& [name, item] : items) engine.set_global(to_utf8(name), item);
    if (page->time_limit.count() > 0) run.set_time_limit(page->time_limit);
    engine.run(program);
}

}  // namespace orvo::web
