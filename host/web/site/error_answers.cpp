#include "host/web/site/error_answers.h"

#include "host/web/files/site_files.h"
#include "host/web/intrinsics/page_runner.h"

namespace orvo::web {
namespace {

// As the browser has it.
std::string address_of(const HttpRequest& request) {
    return (request.is_secure ? "https://" : "http://") + std::string(request.header("Host")) +
           request.target;
}

}  // namespace

ErrorAnswers::ErrorAnswers(StaticFiles& files, WebLog& log, bool shows_details, OpenPage open)
    : files_(files), log_(log), shows_details_(shows_details), open_(std::move(open)) {}

ErrorPage ErrorAnswers::noted(const HttpRequest& request, const std::string& path,
                              std::string sentence, const std::string& cause,
                              std::vector<std::string> details) {
    ErrorPage page{.status = 500, .sentence = std::move(sentence)};
    page.reference = log_.failure(path, cause, request.id);
    if (details.empty()) details = {cause};
    std::erase(details, "");
    if (shows_details_) page.details = std::move(details);
    return page;
}

HttpResponse ErrorAnswers::answer(ServedSite& served, const HttpRequest& request,
                                  const ErrorPage& usual, PageFailure failure) {
    const auto own = served.site.error_pages.find(usual.status);
    if (own == served.site.error_pages.end() || !is_page(own->second))
        return this->usual(served.site, usual);
    failure.reference = from_utf8(usual.reference);
    try {
        HttpRequest inner = request;
        inner.stream = nullptr;  // the page fails as a whole
        const auto page = open_(served, inner, own->second);
        bool is_shown = false;
        {
            const PageEnd end(*page);
            page->query = PageQuery(std::to_string(usual.status) + ';' + address_of(request));
            // A session that is not to be had may be what is told.
            if (usual.status == 503) page->do_without_session();
            is_shown = try_page(served, page, usual.status, std::move(failure));
            page->finish();
        }
        if (is_shown) return response_of(std::move(page->answer));
    } catch (const std::exception& failed) {
        log_.failure(own->second, failed.what(), request.id);
    }
    return this->usual(served.site, usual);
}

bool ErrorAnswers::try_page(ServedSite& served, const std::shared_ptr<PageContext>& page,
                            int status, PageFailure failure) {
    const auto own = served.site.error_pages.find(status);
    if (own == served.site.error_pages.end() || !is_page(own->second)) return false;
    page->answer = {.status = status};
    page->last_failure = std::move(failure);
    page->time_limit = served.site.page_timeout;
    try {
        run_page(page, served.pages, own->second);
        return !page->turned_away();
    } catch (const std::exception& failed) {
        log_.failure(own->second, failed.what(), page->request.id);
        return page->answer.has_begun;
    }
}

HttpResponse ErrorAnswers::usual(const Site& site, const ErrorPage& usual) {
    const auto own = site.error_pages.find(usual.status);
    const auto file = own == site.error_pages.end() || is_page(own->second)
                          ? std::nullopt
                          : try_site_file(site.root, own->second);
    if (!file) return error_response(usual);
    try {
        HttpResponse response = files_.answer(*file, HttpRequest{});
        response.status = usual.status;
        response.headers = {{"Cache-Control", "no-store"}};
        return response;
    } catch (const std::exception&) {
        return error_response(usual);  // the file has gone meanwhile
    }
}

}  // namespace orvo::web
