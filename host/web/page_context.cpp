#include "host/web/page_context.h"

#include "platform/values/failure.h"

namespace orvo::web {
namespace {

OutgoingCookie session_cookie(bool is_secure) {
    OutgoingCookie cookie{.name = Text(session_cookie_name(is_secure))};
    cookie.is_secure = is_secure;
    return cookie;
}

}  // namespace

TextView session_cookie_name(bool is_secure) {
    return is_secure ? u"__Host-orvosession" : u"orvosession";
}

std::string_view path_part(std::string_view target) { return target.substr(0, target.find('?')); }

std::string_view query_part(std::string_view target) {
    const auto mark = target.find('?');
    return mark == std::string_view::npos ? std::string_view() : target.substr(mark + 1);
}

PageContext::PageContext(HttpRequest request, std::string path, std::filesystem::path root,
                         ApplicationState& application, SessionStore& sessions,
                         std::chrono::milliseconds patience)
    : request(std::move(request)),
      path(std::move(path)),
      root(std::move(root)),
      running_path(this->path),
      query(query_part(this->request.target)),
      form(form_of(this->request)),
      cookies(cookies_of(this->request)),
      application(application, patience),
      sessions_(sessions),
      patience_(patience) {}

void PageContext::open_session() {
    if (!has_session_) return;
    const auto* cookie = cookies.find(session_cookie_name(request.is_secure));
    if (!cookie || session_) return;
    session_ = sessions_.open(to_utf8(cookie->values.front()), patience_);
}

void PageContext::do_without_session() {
    session_.reset();
    has_session_ = false;
}

void PageContext::require_session() const {
    if (!has_session_)
        throw Failure(runtime_error::invalid_call, {},
                      u"This page has no session (EnableSessionState=False)");
}

SessionLease& PageContext::need_session() {
    require_session();
    if (!session_) {
        session_ = sessions_.create();
        is_new_ = true;
    }
    return *session_;
}

void PageContext::finish() {
    application.unlock();
    if (!session_) return;
    OutgoingCookie cookie = session_cookie(request.is_secure);
    if (is_abandoned_) {
        session_->abandon();
        cookie.expires = Date{25569};  // 1970-01-01: browsers drop it
    } else {
        if (!is_new_ && is_login_) {
            session_->renew_id();
            is_new_ = true;
        }
        cookie.value = from_utf8(session_->id());
    }
    if (is_new_ || is_abandoned_)
        answer.cookies.push_back(std::make_shared<OutgoingCookie>(std::move(cookie)));
    session_.reset();
}

void PageContext::write(std::string_view bytes) {
    if (answer.body.size() + bytes.size() > largest_answer)
        throw Failure(runtime_error::out_of_memory, {}, u"The page writes more than 64 megabytes");
    answer.body += bytes;
}

void PageContext::note_session_value(TextView name) {
    for (const TextView login : {TextView(u"QUENDRAID"), TextView(u"REMOTE_ACCOUNT")})
        is_login_ = is_login_ || equal_ignoring_case(name, login);
}

}  // namespace orvo::web
