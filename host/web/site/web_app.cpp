#include "host/web/site/web_app.h"

#include <algorithm>

#include "component/auth/filter_contract.h"
#include "component/config/configuration_contract.h"
#include "host/web/files/site_files.h"
#include "host/web/intrinsics/page_runner.h"
#include "host/web/messages/encoding.h"
#include "host/web/sessions/memory_application.h"
#include "host/web/site/asking_browser.h"
#include "host/web/site/guard.h"
#include "platform/interfaces/call.h"
#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/objects/context/context_scope.h"
#include "suite/authfilter/filter_store.h"
#include "suite/store/store_error.h"

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

HttpResponse to_login(const Site& site, const HttpRequest& request) {
    const int status = request.method != "POST" ? 302 : site.keeps_forms ? 307 : 303;
    return redirect(status, login_address(site, request.target));
}

// The guards of a path, and of where links in it lead.
std::vector<const GuardedPath*> guards_of(const Site& site, const SitePath& found) {
    std::vector<const GuardedPath*> guards;
    if (found.path == site.login_page) return guards;
    for (const std::string* path : {&found.path, &found.real_path}) {
        const GuardedPath* guard = guard_of(site, *path);
        if (guard && (guards.empty() || guards.front() != guard)) guards.push_back(guard);
    }
    return guards;
}

Object logins_of_users() { return create_object(u"TavikAuthFilter.Logins"); }

void put_logins_of_one_user(const Object& logins, std::int32_t most) {
    late::put(logins, u"MostOfOneUser", most);
}

// Headers that every answer has.
void add_headers(const Site& site, const std::string& request_id, HttpResponse& response) {
    const Headers own{{"X-Request-Id", request_id},
                      {"X-Content-Type-Options", "nosniff"},
                      {"X-Frame-Options", "DENY"},
                      {"Referrer-Policy", "same-origin"},
                      {"Content-Security-Policy", site.content_security_policy},
                      {"Date", http_date(current_date())}};
    for (const auto& header : own) {
        const auto is_there = [&](const auto& known) {
            return equal_ascii_ignoring_case(known.first, header.first);
        };
        if (!header.second.empty() && std::ranges::none_of(response.headers, is_there))
            response.headers.push_back(header);
    }
}

// By its address, decoded: "/shop.css"
bool is_plain_file(std::string_view path) {
    const auto name = path.substr(path.rfind('/') + 1);
    return name.find('.') != name.npos && !is_page(name);
}

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
    : served_(serve(std::move(site))),
      sessions_(sessions),
      health_(health),
      log_(log),
      options_(std::move(options)),
      application_(options_.application ? options_.application
                                        : std::make_shared<MemoryApplication>()),
      errors_(files_, log, options_.shows_details,
              [this](const ServedSite& served, const HttpRequest& request,
                     const std::string& path) { return open(served, request, path); }),
      events_(served_->site.root, *application_, sessions, log,
              {.time_limit = served_->site.page_timeout, .patience = served_->site.drain_time}) {
    need_filter(served_->site);
    if (served_->site.logins_of_one_user)
        put_logins_of_one_user(logins_of_users(), *served_->site.logins_of_one_user);
}

void WebApp::need_filter(const Site& site) {
    if (has_filter_) return;
    Object connector;
    try {
        connector = create_object(filter_connector_progid);
    } catch (const Failure&) {
        // A site without guards does without the filter.
        if (!site.guards.empty()) throw;
        return;
    }
    application_->put_own(filter_connector_progid, connector);
    has_filter_ = true;
}

std::shared_ptr<ServedSite> WebApp::serve(Site site) {
    Text cookie = login_cookie_of(site);
    return std::make_shared<ServedSite>(std::move(site), std::move(cookie));
}

std::shared_ptr<ServedSite> WebApp::served() const {
    const std::lock_guard guard(lock_);
    return served_;
}

// What may fail stands in front of what counts.
void WebApp::replace(Site site) {
    auto fresh = serve(std::move(site));
    const auto most = fresh->site.logins_of_one_user;
    Object logins;
    if (most || served()->site.logins_of_one_user) logins = logins_of_users();
    need_filter(fresh->site);

    if (logins) put_logins_of_one_user(logins, most.value_or(authfilter::usual_logins_of_one_user));
    events_.set_time_limit(fresh->site.page_timeout);
    const std::lock_guard guard(lock_);
    served_ = std::move(fresh);
}

HttpResponse WebApp::handle(const HttpRequest& request) {
    const auto begin = std::chrono::steady_clock::now();
    const auto served = this->served();
    HttpResponse response;
    Noted noted;
    try {
        response = route(*served, request, noted);
    } catch (const Refusal& refusal) {
        response = errors_.answer(*served, request, {refusal.status, refusal.what()});
        if (refusal.status == 405) response.headers.emplace_back("Allow", "GET, HEAD, POST");
        if (refusal.status == 503) response.headers.emplace_back("Retry-After", "1");
    } catch (const std::exception& failure) {
        const ErrorPage usual = errors_.noted(request, std::string(path_part(request.target)),
                                              "The page could not be shown.", failure.what());
        response = errors_.answer(*served, request, usual, failure_of(failure));
    }
    add_headers(served->site, request.id, response);
    const auto took = std::chrono::steady_clock::now() - begin;
    options_.metrics->note_answer(request, response, noted.kind, took);
    log_.request(request, response, took, noted.note);
    return response;
}

Lane WebApp::lane_of(const HttpRequest& request) const {
    const auto path = try_path_decoded(path_part(request.target));
    if (!path) return Lane::undecided;
    if (*path == "/health/live") return Lane::at_once;
    if (*path == "/health/ready") return Lane::aside;
    const std::optional<bool> waits = seen_pages_.waits(request.method, *path);
    if (waits) return *waits ? Lane::directory : Lane::page;
    // Many may log in at the same moment before the first of them is done.
    if (request.method == "POST") return Lane::directory;
    return is_plain_file(*path) ? Lane::page : Lane::undecided;
}

void WebApp::note_refused(const HttpRequest& request, HttpResponse& response,
                          std::chrono::steady_clock::duration duration) {
    add_headers(served()->site, request.id, response);
    options_.metrics->count(request, response);
    log_.request(request, response, duration, {});
}

HttpResponse WebApp::route(ServedSite& served, const HttpRequest& request, Noted& noted) {
    if (request.method != "GET" && request.method != "HEAD" && request.method != "POST")
        throw Refusal(405, "This server answers GET, HEAD and POST.");
    const std::string path = decoded_path(request.target);
    if (path.starts_with("/health/")) {
        noted.kind = AnswerKind::health;
        return health(path);
    }
    const SitePath found = find_in_site(served.site.root, path, served.site.default_pages);
    const bool is_of_page = is_page(found.path);
    noted.kind = is_of_page ? AnswerKind::page : AnswerKind::file;
    return is_of_page ? page(served, request, found, noted.note) : file(served, request, found);
}

HttpResponse WebApp::health(const std::string& path) {
    if (path == "/health/live") return plain(200, "alive\n");
    if (path != "/health/ready") throw Refusal(404, "There is no such page.");
    if (is_leaving_) return plain(503, "it is about to end\n");
    const std::string trouble = health_.trouble();
    if (trouble.empty()) return plain(200, "ready\n");
    if (options_.shows_details) return plain(503, "directory unreachable: " + trouble + "\n");
    return plain(503, "directory unreachable\n");
}

std::shared_ptr<PageContext> WebApp::open(const ServedSite& served, const HttpRequest& request,
                                          const std::string& path) {
    auto page =
        std::make_shared<PageContext>(request, path, served.site.root, *application_, sessions_,
                                      options_.session_patience, served.site.largest_request);
    page->time_limit = served.site.page_timeout;
    page->file_folders = served.site.file_folders;
    page->complete_head = [&site = served.site, id = request.id](HttpResponse& head) {
        add_headers(site, id, head);
    };
    // A login would take over a GUID that the filter cannot have, and fail.
    const auto* guid = page->cookies.find(served.login_cookie);
    if (guid && guid->values.front().size() > longest_login_guid)
        page->cookies.remove(served.login_cookie);
    return page;
}

bool WebApp::is_open(const ServedSite& served, const HttpRequest& request,
                     const SessionLogin& login, const RequestFields& cookies,
                     const SitePath& found) const {
    const ContextScope asker({{u"Request", make<AskingBrowser>(request).object()}});
    const auto* cookie = cookies.find(served.login_cookie);
    const Text guid = cookie ? cookie->values.front() : Text();
    const Variant connector = application_->get(filter_connector_progid);
    try {
        return std::ranges::all_of(guards_of(served.site, found), [&](const GuardedPath* guard) {
            return is_allowed(login, guid, connector, guard->application);
        });
    } catch (const Failure& failure) {
        if (store::is_unreachable(failure)) throw StoreAway();
        throw;
    }
}

// The session is not held for a file: a page of the same session that waits for the directory does
// not keep it from the browser.
HttpResponse WebApp::file(const ServedSite& served, const HttpRequest& request,
                          const SitePath& found) {
    if (!guards_of(served.site, found).empty() &&
        !is_open(served, request, sessions_.login_of(session_id_of(request)), cookies_of(request),
                 found))
        return to_login(served.site, request);
    if (found.lacks_slash) {
        const std::string query(query_part(request.target));
        return redirect(301, to_utf8(url_path_encode(from_utf8(found.path))) + "/" +
                                 (query.empty() ? "" : "?" + query));
    }
    if (!found.file || content_type_of(*found.file).empty())
        throw Refusal(404, "There is no such page.");
    if (request.method == "POST") throw Refusal(405, "A form cannot be sent to this address.");
    return files_.answer(*found.file, request);
}

void WebApp::run(ServedSite& served, const std::shared_ptr<PageContext>& page) {
    const auto begin = std::chrono::steady_clock::now();
    const auto note = [&](PageOutcome outcome) {
        if (page->turned_away()) outcome = PageOutcome::refused;
        options_.metrics->note_page(outcome, std::chrono::steady_clock::now() - begin);
    };
    try {
        run_page(page, served.pages, page->path, events_.start());
    } catch (const script::ScriptError& error) {
        note(error.trouble == script::Trouble::time_limit ? PageOutcome::too_slow
                                                          : PageOutcome::failed);
        throw;
    } catch (const Refusal&) {
        note(PageOutcome::refused);
        throw;
    } catch (...) {
        note(PageOutcome::failed);
        throw;
    }
    note(PageOutcome::done);
}

bool WebApp::enter(const ServedSite& served, PageContext& page, const SitePath& found) const {
    if (found.path == served.site.login_page) {
        page.open_session();
        if (!page.session()) page.require_store();
        return true;
    }
    if (guards_of(served.site, found).empty()) return true;
    page.open_session();
    if (!page.session()) return false;
    const NamedValues& values = page.session()->data().values;
    if (!is_open(served, page.request, login_in(values), page.cookies, found)) return false;
    page.user = values.get(u"REMOTE_USER").text_view();
    return true;
}

HttpResponse WebApp::page(ServedSite& served, const HttpRequest& request, const SitePath& found,
                          std::string& note) {
    const std::string& path = found.path;
    const auto page = open(served, request, path);
    if (!enter(served, *page, found)) return to_login(served.site, request);
    if (!found.file) throw Refusal(404, "There is no such page.");
    ErrorPage usual;
    PageFailure failure;
    bool is_answered = false;
    {
        const PageEnd end(*page);
        try {
            run(served, page);
            is_answered = true;
        } catch (const PageError& error) {
            usual = errors_.noted(request, path, "The page could not be shown.", error.what());
            failure = failure_of(error, served.site.root);
        } catch (const script::ScriptError& error) {
            usual = errors_.noted(request, path,
                                  error.trouble == script::Trouble::time_limit
                                      ? "The page took too long and was stopped."
                                      : "The page could not be shown.",
                                  error.what(),
                                  {error.what(), to_utf8(error.source),
                                   error.number ? "0x" + to_utf8(hexadecimal(error.number)) : ""});
            failure = page->failure_within(error);
            if (failure.number == store::store_unreachable) throw StoreAway();
        }
        note = page->answer.log_note;
        if (!is_answered && !page->answer.has_begun) {
            failure.reference = from_utf8(usual.reference);
            is_answered = errors_.try_page(served, page, 500, std::move(failure));
        }
        seen_pages_.note(request.method, decoded_path(request.target), page->waits_for_directory());
        // What a page that failed would have told the browser is not sent; its session is kept.
        if (!is_answered) page->answer.cookies.clear();
        page->finish();
    }
    if (page->turned_away() && !page->answer.has_begun) throw Refusal(*page->turned_away());
    if (is_answered) return response_of(std::move(page->answer));
    if (page->answer.has_begun) return broken_off(page->answer, error_response(usual));
    HttpResponse response = errors_.usual(served.site, usual);
    for (const auto& cookie : page->answer.cookies)
        response.headers.emplace_back("Set-Cookie", header_text(*cookie));
    return response;
}

}  // namespace orvo::web
