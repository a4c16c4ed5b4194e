#include "host/web/intrinsics/page_run.h"

#include <algorithm>

#include "platform/interfaces/late_member.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t deepest_execution = 8;

}  // namespace

class PageRun::Entry {
public:
    Entry(std::vector<script::Engine*>& engines, script::Engine& engine) : engines_(engines) {
        engines_.push_back(&engine);
    }
    ~Entry() { engines_.pop_back(); }
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

private:
    std::vector<script::Engine*>& engines_;
};

// While a page executes another one.
class PageRun::Inner {
public:
    Inner(PageContext& page, const std::string& address)
        : page_(page), path_(page.running_path), query_(page.query) {
        const fs::path asked(path_part(address));
        page.running_path =
            (fs::path(path_).parent_path() / asked).lexically_normal().generic_string();
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

PageRun::PageRun(PageContext& page, PageCache* pages, const ContextItems& items,
                 std::shared_ptr<MemoryBudget> memory)
    : page_(page), pages_(pages), items_(items), memory_(std::move(memory)) {
    page_.control = this;
}

PageRun::~PageRun() { page_.control = nullptr; }

script::Ending PageRun::run(std::initializer_list<const script::Program*> programs,
                            script::HostFunction found) {
    script::Engine engine(
        {.create_object = [this](const Text& progid) { return page_.create_object(progid); },
         .takes_texts =
             [this](const Object& object, std::int32_t member) {
                 const auto response = items_.find(u"Response");
                 return response != items_.end() && object == response->second &&
                        late::try_member(object, u"Write") == member;
             },
         .memory = memory_});
    for (const auto& [name, item] : items_) engine.set_global(to_utf8(name), item);
    if (found) engine.set_function(found_function, std::move(found));
    const Entry entry(engines_, engine);
    if (page_.time_limit.count() > 0) limit(engine);
    for (const script::Program* program : programs)
        if (engine.run(*program) == script::Ending::stopped) return script::Ending::stopped;
    return script::Ending::finished;
}

void PageRun::stop() {
    for (script::Engine* engine : engines_) engine->stop();
}

void PageRun::apply_time_limit() {
    for (script::Engine* engine : engines_) limit(*engine);
}

void PageRun::execute(const Text& address) {
    if (!pages_)
        throw Failure(runtime_error::invalid_call, {},
                      u"This event of global.asa executes no pages: " + address);
    if (engines_.size() > deepest_execution)
        throw Failure(runtime_error::invalid_call, {},
                      u"Pages execute each other too deeply: " + address);
    const Inner inner(page_, to_utf8(replaced(address, u"\\", u"/")));
    try {
        const script::Program program = pages_->get(page_.running_path).program;
        run({&program});
        return;
    } catch (const PageError& error) {
        page_.inner_failure = {from_utf8(error.what()), failure_of(error, page_.root)};
    } catch (const script::ScriptError& error) {
        if (!page_.passes_on(error))
            page_.inner_failure = {from_utf8(error.what()), failure_of(error, page_.root)};
    }
    throw Failure(runtime_error::invalid_call, {}, page_.inner_failure.sentence);
}

void PageRun::limit(script::Engine& engine) const {
    const auto used = std::chrono::steady_clock::now() - begin_;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(page_.time_limit - used);
    engine.set_time_limit(std::max(left, std::chrono::milliseconds(1)));
}

}  // namespace orvo::web
