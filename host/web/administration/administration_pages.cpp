#include "host/web/administration/administration_pages.h"

#include "platform/values/failure.h"

namespace orvo::web {
namespace {

HttpResponse refusal(int status, std::string_view reason) {
    return {.status = status,
            .content_type = "text/plain; charset=utf-8",
            .headers = {{"Cache-Control", "no-store"}},
            .body = std::string(reason) + '\n'};
}

}  // namespace

void AdministrationPages::add(const std::string& path, Lane lane, Page page) {
    pages_.insert_or_assign(path, Entry{lane, std::move(page)});
}

HttpResponse AdministrationPages::answer(const HttpRequest& request) const noexcept {
    const Entry* entry = find(request);
    if (!entry) return refusal(404, "There is no such page.");
    if (request.method != "GET" && request.method != "HEAD") {
        HttpResponse response = refusal(405, "This address answers GET and HEAD.");
        response.headers.emplace_back("Allow", "GET, HEAD");
        return response;
    }
    try {
        return entry->page(request);
    } catch (const Failure& failure) {
        return refusal(500, to_utf8(failure.description));
    } catch (const std::exception& failure) {
        return refusal(500, failure.what());
    }
}

Lane AdministrationPages::lane_of(const HttpRequest& request) const {
    const Entry* entry = find(request);
    return entry ? entry->lane : Lane::at_once;
}

const AdministrationPages::Entry* AdministrationPages::find(const HttpRequest& request) const {
    const std::string_view target = request.target;
    const auto found = pages_.find(target.substr(0, target.find('?')));
    return found == pages_.end() ? nullptr : &found->second;
}

}  // namespace orvo::web
