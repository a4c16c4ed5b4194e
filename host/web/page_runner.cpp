#include "host/web/page_runner.h"

#include <vector>

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

constexpr std::size_t deepest_execution = 8;

class Run : public PageControl {
public:
    Run(PageContext& page, PageCache& pages, const ContextItems& items)
        : page_(page), pages_(pages), items_(items) {
        page_.control = this;
    }
    ~Run() { page_.control = nullptr; }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    // Among globals of its own.
    void run(const script::Program& program) {
        script::Engine engine({.create_object = create_object});
        for (const auto& [name, item] : items_) engine.set_global(to_utf8(name), item);
        const Entry entry(engines_, engine);
        if (page_.time_limit.count() > 0) limit(engine);
        engine.run(program);
    }

    void stop() override {
        for (script::Engine* engine : engines_) engine->stop();
    }

    void apply_time_limit() override {
        for (script::Engine* engine : engines_) limit(*engine);
    }

    void execute(const Text& address) override {
        if (engines_.size() > deepest_execution)
            throw Failure(runtime_error::invalid_call, {},
                          u"Pages execute each other too deeply: " + address);
        const Inner inner(page_, to_utf8(replaced(address, u"\\", u"/")));
        try {
            run(pages_.get(page_.running_path).program);
        } catch (const PageError& error) {
            throw Failure(runtime_error::invalid_call, {}, from_utf8(error.what()));
        } catch (const script::ScriptError& error) {
            throw Failure(runtime_error::invalid_call, {}, from_utf8(error.what()));
        }
    }

private:
    // The engines that run, the innermost last.
    using Engines = std::vector<script::Engine*>;

    class Entry {
    public:
        Entry(Engines& engines, script::Engine& engine) : engines_(engines) {
            engines_.push_back(&engine);
        }
        ~Entry() { engines_.pop_back(); }
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;

    private:
        Engines& engines_;
    };

    // While a page executes another one.
    class Inner {
    public:
        Inner(PageContext& page, const std::string& address)
            : page_(page), path_(page.running_path), query_(page.query) {
            const std::filesystem::path asked(path_part(address));
            page.running_path = (std::filesystem::path(path_).parent_path() / asked)
                                    .lexically_normal()
                                    .generic_string();
            if (address.find('?') != std::string::npos) page.query = PageQuery(query_part(address));
        }
        ~Inner() {
            page_.running_path = std::move(path_);
            page_.query = std::move(query_);
        }
        Inner(const Inner&) = delete;
        Inner& operator=(const Inner&) = delete;

    private:
        PageContext& page_;
        std::string path_;
        PageQuery query_;
    };

    void limit(script::Engine& engine) const {
        const auto used = std::chrono::steady_clock::now() - begin_;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(page_.time_limit - used);
        engine.set_time_limit(std::max(left, std::chrono::milliseconds(1)));
    }

    PageContext& page_;
    PageCache& pages_;
    const ContextItems& items_;
    Engines engines_;
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

}  // namespace

void run_page(const std::shared_ptr<PageContext>& page, PageCache& pages) {
    const CompiledPage compiled = pages.get(page->path);
    if (!compiled.settings.has_session) page->do_without_session();
    page->open_session();
    const ContextItems items{{u"Request", make<RequestObject>(page).object()},
                             {u"Response", make<ResponseObject>(page).object()},
                             {u"Session", make<SessionObject>(page).object()},
                             {u"Application", make<ApplicationObject>(page).object()},
                             {u"Server", make<ServerObject>(page).object()}};
    const ContextScope scope(items);
    Run(*page, pages, items).run(compiled.program);
}

}  // namespace orvo::web
