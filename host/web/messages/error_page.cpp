#include "host/web/messages/error_page.h"

#include "host/web/messages/encoding.h"

namespace orvo::web {

HttpResponse error_response(const ErrorPage& page) {
    const std::string title =
        std::to_string(page.status) + " " + std::string(reason_of_status(page.status));
    HttpResponse response;
    response.status = page.status;
    response.body = "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\"><title>" +
                    title +
                    "</title>\n<style>body{font:16px/1.5 sans-serif;max-width:40em;margin:4em auto;"
                    "padding:0 1em}h1{font-size:1.4em}pre{white-space:pre-wrap;background:#f2f2f2;"
                    "padding:1em}</style></head>\n<body><h1>" +
                    title + "</h1>\n<p>" + html_encode_utf8(page.sentence) + "</p>\n";
    if (!page.details.empty()) {
        response.body += "<pre>";
        for (const std::string& line : page.details) response.body += html_encode_utf8(line) + '\n';
        response.body += "</pre>\n";
    }
    if (!page.reference.empty())
        response.body += "<p>Reference: " + html_encode_utf8(page.reference) + "</p>\n";
    response.body += "</body></html>\n";
    response.headers.emplace_back("Cache-Control", "no-store");
    return response;
}

}  // namespace orvo::web
