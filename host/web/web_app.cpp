#include "host/web/web_app.h"

#include <algorithm>

#include "component/auth/filter_contract.h"
#include "component/config/configuration_contract.h"
#include "host/web/encoding.h"
#include "host/web/guard.h"
#include "host/web/page_runner.h"
#include "host/web/static_files.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"

namespace orvo::web {
namespace {

namespace fs = std::filesystem;

// The login cookie's name is the site configuration's, unless the site says another one.
Text login_cookie_of(const Site& site) {
    if (!site.login_cookie.empty() || site.guards.empty()) return site.login_cookie;
    const auto configuration = Ref<Configuration>::from(create_object(u"Quendra.Configuration"));
    call<&Configuration::LoadSiteConfig>(configuration, false);
    Text section = u"MEMBERSHIP", key = u"CookieName";
    const Text name =
        trimmed(call<&Configuration::ReadConfigValue>(configuration, section, key).to<Text>());
    if (name.empty())
        throw Failure(runtime_error::invalid_call, u"orvo-web",
                      u"The site guards paths, but neither site.ini (LoginCookie) nor the site "
                      u"configuration (MEMBERSHIP, CookieName) names the login's cookie");
    return name;
}

bool is_page(std::string_view path) {
    return path.size() > 4 && equal_ascii_ignoring_case(path.substr(path.size() - 4), ".asp");
}

HttpResponse redirect(int status, const std::string& address) {
    HttpResponse response;
    response.status = status;
    response.headers = {{"Location", address}, {"Cache-Control", "no-store"}};
    return response;
}

HttpResponse plain(int status, std::string text) {
    HttpResponse response;
    response.status = status;
    response.content_type = "text/plain; charset=utf-8";
    response.body = std::move(text);
    response.headers = {{"Cache-Control", "no-store"}};
    return response;
}

// The rest of an answer whose head has been sent when its page failed.
HttpResponse broken_off(PageAnswer& answer, const HttpResponse& failure) {
    answer.body.resize(answer.sent_in_body);
    HttpResponse rest = response_of(std::move(answer));
    if (rest.content_type.starts_with("text/html")) rest.body += failure.body;
    return rest;
}

// Gives back what a page holds, however it ended.
class Finish {
public:
    explicit Finish(PageContext& page) : page_(page) {}
    ~Finish() { page_.finish(); }

private:
    PageContext& page_;
};

}  // namespace

std::string decoded_path(std::string_view target) {
    if (!target.starts_with('/')) throw Refusal(400, "The address is not a path of this site.");
    const auto decoded = try_path_decoded(path_part(target));
    if (!decoded || !is_utf8(*decoded))
        throw Refusal(400, "The address is not encoded as an address is.");
    const bool has_strange = std::ranges::any_of(*decoded, [](char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == 0x7F || c == '\\';
    });
    std::string_view rest(*decoded);
    bool has_strange_part = false;
    while (!rest.empty()) {
        rest.remove_prefix(1);
        const auto part = rest.substr(0, rest.find('/'));
        const bool is_last = part.size() == rest.size();
        if (part == "." || part == ".." || (part.empty() && !is_last)) has_strange_part = true;
        rest.remove_prefix(part.size());
    }
    if (has_strange || has_strange_part)
        throw Refusal(400, "The address is not a path of this site.");
    return *decoded;
}

WebApp::WebApp(Site site, SessionStore& sessions, DirectoryHealth& health, WebLog& log,
               Options options)
    : site_(std::move(site)),
      login_cookie_(login_cookie_of(site_)),
      sessions_(sessions),
      health_(health),
      log_(log),
      options_(options),
      pages_(site_.root) {
    Object connector;
    try {
        connector = create_object(filter_connector_progid);
    } catch (const Failure&) {
        // A site without guards does without the filter.
        if (!site_.guards.empty()) throw;
        return;
    }
    ApplicationState::Holder(application_, std::chrono::seconds(1))
        .put(filter_connector_progid, connector);
}

HttpResponse WebApp::handle(const HttpRequest& request) {
    const auto begin = std::chrono::steady_clock::now();
    HttpResponse response;
    std::string note;
    try {
        response = route(request, note);
    } catch (const Refusal& refusal) {
        response = error_response({refusal.status, refusal.what()});
        if (refusal.status == 405) response.headers.emplace_back("Allow", "GET, HEAD, POST");
    } catch (const std::exception& failure) {
        response = failed(std::string(path_part(request.target)), "The page could not be shown.",
                          failure.what());
    }
    add_security_headers(response);
    log_.request(request, response, std::chrono::steady_clock::now() - begin, note);
    return response;
}

Lane WebApp::lane_of(const HttpRequest& request) const {
    const std::string_view path = path_part(request.target);
    if (path == "/health/live") return Lane::at_once;
    if (path == "/health/ready") return Lane::aside;
    return Lane::page;
}

void WebApp::note_refused(const HttpRequest& request, HttpResponse& response,
                          std::chrono::steady_clock::duration duration) {
    add_security_headers(response);
    log_.request(request, response, duration, {});
}

HttpResponse WebApp::route(const HttpRequest& request, std::string& note) {
    if (request.method != "GET" && request.method != "HEAD" && request.method != "POST")
        throw Refusal(405, "This server answers GET, HEAD and POST.");
    std::string path = decoded_path(request.target);
    if (path.starts_with("/health/")) return health(path);

    std::error_code error;
    if (fs::is_directory(site_.root / fs::path(path).relative_path(), error)) {
        if (!path.ends_with('/')) {
            const std::string query(query_part(request.target));
            return redirect(301, to_utf8(url_path_encode(from_utf8(path))) + "/" +
                                     (query.empty() ? "" : "?" + query));
        }
        for (const std::string& name : site_.default_pages)
            if (try_site_file(site_.root, path + name)) {
                path += name;
                break;
            }
    }
    return is_page(path) ? page(request, path, note) : file(request, path);
}

HttpResponse WebApp::health(const std::string& path) {
    if (path == "/health/live") return plain(200, "alive\n");
    if (path != "/health/ready") throw Refusal(404, "There is no such page.");
    const std::string trouble = health_.trouble();
    if (trouble.empty()) return plain(200, "ready\n");
    if (options_.shows_details) return plain(503, "directory unreachable: " + trouble + "\n");
    return plain(503, "directory unreachable\n");
}

std::shared_ptr<PageContext> WebApp::open(const HttpRequest& request, const std::string& path) {
    auto page = std::make_shared<PageContext>(request, path, site_.root, application_, sessions_,
                                              options_.session_patience);
    page->time_limit = site_.page_timeout;
    return page;
}

bool WebApp::is_open(PageContext& page, const std::string& path) const {
    const GuardedPath* guard = guard_of(site_, path);
    if (!guard || path == site_.login_page) return true;
    page.open_session();
    if (!is_allowed(page, login_cookie_, guard->application)) return false;
    page.user = page.session()->data().values.get(u"REMOTE_USER").text_view();
    return true;
}

HttpResponse WebApp::to_login(const HttpRequest& request) const {
    return redirect(request.method == "POST" ? 303 : 302, login_address(site_, request.target));
}

HttpResponse WebApp::file(const HttpRequest& request, const std::string& path) {
    if (guard_of(site_, path) && !is_open(*open(request, path), path)) return to_login(request);
    const auto file = try_site_file(site_.root, path);
    if (!file || content_type_of(*file).empty()) throw Refusal(404, "There is no such page.");
    if (request.method == "POST") throw Refusal(405, "A form cannot be sent to this address.");
    return static_file(*file, request);
}

HttpResponse WebApp::page(const HttpRequest& request, const std::string& path, std::string& note) {
    const auto page = open(request, path);
    if (!is_open(*page, path)) return to_login(request);
    if (!try_site_file(site_.root, path)) throw Refusal(404, "There is no such page.");
    HttpResponse response;
    bool is_answered = false;
    {
        const Finish finish(*page);
        try {
            run_page(page, pages_);
            is_answered = true;
        } catch (const PageError& error) {
            response = failed(path, "The page could not be shown.", error.what(), {error.what()});
        } catch (const script::ScriptError& error) {
            response = failed(path,
                              error.trouble == script::Trouble::time_limit
                                  ? "The page took too long and was stopped."
                                  : "The page could not be shown.",
                              error.what(),
                              {error.what(), to_utf8(error.source),
                               error.number ? "0x" + to_utf8(hexadecimal(error.number)) : ""});
        }
        // What a page that failed would have told the browser is not sent; its session is kept.
        if (!is_answered) page->answer.cookies.clear();
    }
    note = page->answer.log_note;
    if (is_answered) return response_of(std::move(page->answer));
    if (page->answer.has_begun) return broken_off(page->answer, response);
    for (const auto& cookie : page->answer.cookies)
        response.headers.emplace_back("Set-Cookie", header_text(*cookie));
    return response;
}

HttpResponse WebApp::failed(const std::string& path, std::string sentence, const std::string& cause,
                            std::vector<std::string> details) {
    ErrorPage page{.status = 500, .sentence = std::move(sentence)};
    page.reference = log_.failure(path, cause);
    if (details.empty()) details = {cause};
    std::erase(details, "");
    if (options_.shows_details) page.details = std::move(details);
    return error_response(page);
}

void WebApp::add_security_headers(HttpResponse& response) const {
    const Headers own{{"X-Content-Type-Options", "nosniff"},
                      {"X-Frame-Options", "DENY"},
                      {"Referrer-Policy", "same-origin"},
                      {"Content-Security-Policy", site_.content_security_policy},
                      {"Date", http_date(current_date())}};
    for (const auto& header : own) {
        const auto is_there = [&](const auto& known) {
            return equal_ascii_ignoring_case(known.first, header.first);
        };
        if (!header.second.empty() && std::ranges::none_of(response.headers, is_there))
            response.headers.push_back(header);
    }
}

}  // namespace orvo::web
