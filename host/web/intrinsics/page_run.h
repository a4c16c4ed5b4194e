#pragma once

#include <initializer_list>
#include <vector>

#include "host/web/intrinsics/page_context.h"
#include "host/web/pages/global_script.h"
#include "host/web/pages/page_cache.h"
#include "platform/objects/context/context_scope.h"

namespace orvo::web {

// The engines that carry one request out: each page, and each event of global.asa, runs among
// globals of its own. The request's thread.
class PageRun : public PageControl {
public:
    // pages: null where no page can be executed. items: what scripts find ready, by name. memory:
    // what all of them take together.
    PageRun(PageContext& page, PageCache* pages, const ContextItems& items,
            std::shared_ptr<MemoryBudget> memory);
    ~PageRun() override;
    PageRun(const PageRun&) = delete;
    PageRun& operator=(const PageRun&) = delete;

    // One after the other, among the same globals; `found` is their function `found_function`.
    // Raises script::ScriptError.
    script::Ending run(std::initializer_list<const script::Program*> programs,
                       script::HostFunction found = {});

    void stop() override;
    void apply_time_limit() override;
    void execute(const Text& address) override;

private:
    class Entry;
    class Inner;

    void limit(script::Engine& engine) const;

    PageContext& page_;
    PageCache* const pages_;
    const ContextItems& items_;
    const std::shared_ptr<MemoryBudget> memory_;
    std::vector<script::Engine*> engines_;  // those that run, the innermost last
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

}  // namespace orvo::web
