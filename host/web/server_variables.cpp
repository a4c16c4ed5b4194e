#include "host/web/server_variables.h"

#include "host/web/page_context.h"

namespace orvo::web {
namespace {

// "example.org" of "example.org:8080"; the brackets of an IPv6 address stay.
std::string_view host_name(std::string_view host) {
    const auto colon = host.rfind(':');
    if (colon == std::string_view::npos || host.find(']', colon) != std::string_view::npos)
        return host;
    return host.substr(0, colon);
}

Text header_variable(std::string_view name) {
    Text variable = u"HTTP_";
    for (char c : name) {
        if (c == '-') c = '_';
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        variable += static_cast<char16_t>(static_cast<unsigned char>(c));
    }
    return variable;
}

}  // namespace

ServerVariables server_variables(const PageContext& page) {
    const HttpRequest& request = page.request;
    ServerVariables variables;
    auto add = [&](TextView name, std::string_view value) {
        variables.emplace_back(name, from_utf8(value));
    };
    add(u"REQUEST_METHOD", request.method);
    add(u"SCRIPT_NAME", page.path);
    add(u"PATH_INFO", page.path);
    add(u"URL", page.path);
    add(u"QUERY_STRING", page.query_text);
    add(u"REMOTE_ADDR", request.remote_address);
    add(u"REMOTE_HOST", request.remote_address);
    add(u"LOCAL_ADDR", request.local_address);
    add(u"SERVER_NAME", host_name(request.header("Host")));
    add(u"SERVER_PORT", std::to_string(request.local_port));
    add(u"SERVER_PORT_SECURE", request.is_secure ? "1" : "0");
    add(u"SERVER_PROTOCOL", request.version);
    add(u"SERVER_SOFTWARE", "Orvo-Web/1.0");
    add(u"HTTPS", request.is_secure ? "on" : "off");
    add(u"CONTENT_TYPE", request.header("Content-Type"));
    add(u"CONTENT_LENGTH", std::to_string(request.body.size()));
    for (const auto& [name, value] : request.headers)
        if (!equal_ascii_ignoring_case(name, "cookie")) add(header_variable(name), value);
    return variables;
}

}  // namespace orvo::web
