#include "host/web/intrinsics/server_variables.h"

#include "host/web/intrinsics/page_context.h"

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

// "X_User" would pass for "X-User", which a server in front may set or take away.
bool is_ambiguous(std::string_view header) { return header.find('_') != std::string_view::npos; }

bool is_secret(std::string_view header) {
    for (const std::string_view name : {"Cookie", "Authorization", "Proxy-Authorization"})
        if (equal_ascii_ignoring_case(header, name)) return true;
    return false;
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
    add(u"PATH_TRANSLATED",
        (page.root / std::filesystem::path(page.path).relative_path()).string());
    add(u"URL", page.path);
    add(u"QUERY_STRING", page.query.text);
    add(u"APPL_PHYSICAL_PATH", page.root.string() + '/');
    add(u"APPL_MD_PATH", "/LM/W3SVC/1/ROOT");  // as of a machine's first site
    add(u"REMOTE_ADDR", request.remote_address);
    add(u"REMOTE_HOST", request.remote_address);
    // A proxy need not tell it.
    add(u"REMOTE_PORT", request.remote_port == 0 ? "" : std::to_string(request.remote_port));
    for (const TextView name : {u"AUTH_USER", u"LOGON_USER", u"REMOTE_USER"})
        variables.emplace_back(name, page.user);
    add(u"AUTH_TYPE", page.user.empty() ? "" : "Forms");
    add(u"LOCAL_ADDR", request.local_address);
    add(u"SERVER_NAME", host_name(request.header("Host")));
    add(u"SERVER_PORT", std::to_string(request.local_port));
    add(u"SERVER_PORT_SECURE", request.is_secure ? "1" : "0");
    add(u"SERVER_PROTOCOL", request.version);
    add(u"SERVER_SOFTWARE", "Orvo-Web/1.0");
    add(u"GATEWAY_INTERFACE", "CGI/1.1");
    add(u"HTTPS", request.is_secure ? "on" : "off");
    add(u"CONTENT_TYPE", request.header("Content-Type"));
    add(u"CONTENT_LENGTH", std::to_string(request.body.size()));
    add(u"REQUEST_ID", request.id);
    Text all, raw;
    const std::size_t first_header = variables.size();
    for (const auto& [name, value] : request.headers) {
        if (is_secret(name) || is_ambiguous(name)) continue;
        const Text variable = header_variable(name);
        all += variable + u':' + from_utf8(value) + u'\n';
        raw += from_utf8(name) + u": " + from_utf8(value) + u"\r\n";
        variables.emplace_back(variable, from_utf8(value));
    }
    variables.insert(variables.begin() + static_cast<std::ptrdiff_t>(first_header),
                     {{u"ALL_HTTP", all}, {u"ALL_RAW", raw}});
    return variables;
}

Text value_of(const ServerVariables& variables, TextView name) {
    for (const auto& [key, value] : variables)
        if (equal_ignoring_case(key, name)) return value;
    return {};
}

}  // namespace orvo::web
