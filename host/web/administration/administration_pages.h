#pragma once

// What AdminAddress answers.

#include <functional>
#include <map>
#include <string>

#include "host/web/messages/http_message.h"

namespace orvo::web {

// Pages by their paths, for GET and HEAD; anything else is refused. Any thread, once all are added.
class AdministrationPages {
public:
    using Page = std::function<HttpResponse(const HttpRequest&)>;

    // lane: where the page is to be called. Lane::page for one that works, of which one runs at a
    // time; Lane::aside for one that waits; Lane::at_once for one that does neither.
    void add(const std::string& path, Lane lane, Page page);

    // What a page raises is answered 500, with its reason: who asks runs the program.
    HttpResponse answer(const HttpRequest& request) const noexcept;
    Lane lane_of(const HttpRequest& request) const;

private:
    struct Entry {
        Lane lane;
        Page page;
    };

    const Entry* find(const HttpRequest& request) const;

    std::map<std::string, Entry, std::less<>> pages_;
};

}  // namespace orvo::web
