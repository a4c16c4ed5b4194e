#include "host/web/intrinsics/page_context.h"

#include <algorithm>

#include "host/web/messages/random_token.h"
#include "host/web/pages/waiting_pages.h"
#include "platform/interfaces/create.h"
#include "platform/values/failure.h"

namespace orvo::web {
namespace {

constexpr std::int32_t unspecified_error = error_number(0x80004005);

OutgoingCookie session_cookie(bool is_secure) {
    OutgoingCookie cookie{.name = from_utf8(session_cookie_name(is_secure))};
    cookie.is_secure = is_secure;
    return cookie;
}

}  // namespace

std::string_view path_part(std::string_view target) { return target.substr(0, target.find('?')); }

std::string_view query_part(std::string_view target) {
    const auto mark = target.find('?');
    return mark == std::string_view::npos ? std::string_view() : target.substr(mark + 1);
}

PageContext::PageContext(HttpRequest request, std::string path, std::filesystem::path root,
                         ApplicationState& application, SessionStore& sessions,
                         std::chrono::milliseconds patience, std::size_t largest_form_text)
    : request(std::move(request)),
      path(std::move(path)),
      root(std::move(root)),
      running_path(this->path),
      query(query_part(this->request.target)),
      form(form_of(this->request, largest_form_text)),
      cookies(cookies_of(this->request)),
      application(application, patience),
      sessions_(sessions),
      patience_(patience) {}

const RequestForm& PageContext::use_form() {
    if (body_use_ == BodyUse::bytes)
        throw Failure(
            unspecified_error, {},
            u"The form cannot be used after Request.BinaryRead: a page takes what came as "
            u"the one or the other");
    body_use_ = BodyUse::form;
    return form;
}

std::string PageContext::read_body(std::uint64_t count) {
    if (body_use_ == BodyUse::form)
        throw Failure(
            unspecified_error, {},
            u"BinaryRead cannot be used after Request.Form or Request.Files: a page takes "
            u"what came as the one or the other");
    body_use_ = BodyUse::bytes;
    const std::uint64_t left = request.body.size() - body_read_;
    std::string bytes(static_cast<std::size_t>(std::min({count, left, largest_read})), '\0');
    bytes.resize(request.body.read(body_read_, bytes));
    body_read_ += bytes.size();
    return bytes;
}

PageFailure PageContext::failure_within(const script::ScriptError& error) const {
    return passes_on(error) ? inner_failure.failure : failure_of(error, root);
}

void PageContext::open_session() {
    if (has_session_ && !session_)
        session_ = sessions_.open(session_id_of(request), patience_, request.try_wait);
}

void PageContext::try_open_session() {
    try {
        open_session();
    } catch (const StoreAway&) {
        is_store_away_ = true;
    }
}

void PageContext::turn_away(const Refusal& refusal) {
    turned_away_ = refusal;
    if (control) control->stop();
    throw Failure(runtime_error::permission_denied, {}, from_utf8(refusal.what()));
}

Object PageContext::create_object(const Text& progid) {
    if (!waits_for_directory_ && may_wait_for_directory(progid)) {
        waits_for_directory_ = true;
        if (request.try_wait && !request.try_wait())
            turn_away(Refusal(503, "Too many pages wait for the directory. Please try again."));
    }
    if (turned_away_) turn_away(Refusal(*turned_away_));
    return orvo::create_object(progid);
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

std::chrono::minutes PageContext::session_timeout() const {
    require_session();
    return session_ ? session_->data().timeout : sessions_.timeout();
}

SessionLease* PageContext::known_session() const {
    require_session();
    if (is_store_away_) throw StoreAway();
    return session_.get();
}

void PageContext::abandon_session() { is_abandoned_ = is_abandoned_ || known_session(); }

SessionLease& PageContext::need_session() {
    require_session();
    if (!session_) {
        require_head_not_sent();
        // Another one in the place of one that is not seen now would be worse than none.
        if (is_store_away_) throw StoreAway();
        session_ = sessions_.create();
        is_new_ = true;
    }
    return *session_;
}

void PageContext::settle_session() {
    if (!session_) return;
    OutgoingCookie cookie = session_cookie(request.is_secure);
    if (is_abandoned_) {
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
}

void PageContext::finish() {
    application.unlock();
    if (!session_) return;
    if (!answer.has_begun) settle_session();
    const auto session = std::move(session_);
    if (is_abandoned_) session->abandon();
    session->close();
}

PageEnd::~PageEnd() {
    try {
        page_.finish();
    } catch (const std::exception&) {
        // The request fails by what is in flight.
    }
    page_.complete_head = {};
}

void PageContext::write(std::string_view bytes) {
    if (answer.sent_before + answer.body.size() + bytes.size() > largest_answer)
        throw Failure(runtime_error::out_of_memory, {}, u"The page writes more than 64 megabytes");
    answer.body += bytes;
    if (!answer.is_buffered) flush();
}

void PageContext::clear() { answer.body.resize(answer.sent_in_body); }

void PageContext::flush() {
    if (!answer.has_begun) {
        settle_session();
        // The browser is told of nothing that is not stored.
        if (session_ && is_new_ && !is_abandoned_) keep([&] { session_->save(); });
        if (request.stream) {
            std::string body = std::exchange(answer.body, {});
            HttpResponse head = response_of(answer);
            answer.body = std::move(body);
            if (complete_head) complete_head(head);
            request.stream->begin(head);
        }
        answer.has_begun = true;
    }
    if (!request.stream) {
        answer.sent_in_body = answer.body.size();
    } else if (!answer.body.empty()) {
        answer.sent_before += answer.body.size();
        request.stream->send(std::exchange(answer.body, {}));
    }
}

void PageContext::require_head_not_sent() const {
    if (answer.has_begun)
        throw Failure(unspecified_error, {},
                      u"The answer's head has been sent (Response.Flush): headers, cookies, the "
                      u"status and a new session come before that");
}

bool PageContext::is_browser_there() const {
    return !request.stream || request.stream->is_connected();
}

void PageContext::note_session_value(TextView name) {
    if (!equal_ignoring_case(name, u"QUENDRAID") && !equal_ignoring_case(name, u"REMOTE_ACCOUNT"))
        return;
    require_head_not_sent();
    // At once: the forms that this page writes are to be good.
    if (!std::exchange(is_login_, true)) need_session().data().form_token = random_token();
}

}  // namespace orvo::web
