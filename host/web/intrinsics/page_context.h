#pragma once

// One request while its page runs: what the intrinsic objects work on.

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "host/web/intrinsics/page_answer.h"
#include "host/web/intrinsics/page_failure.h"
#include "host/web/messages/cookies.h"
#include "host/web/messages/http_message.h"
#include "host/web/messages/multipart.h"
#include "host/web/messages/request_fields.h"
#include "host/web/sessions/application_state.h"
#include "host/web/sessions/session_store.h"

namespace orvo::web {

// What a page does to the engine that runs it.
class PageControl {
public:
    virtual ~PageControl() = default;
    // Nothing more of the page is carried out.
    virtual void stop() = 0;
    // The page's limit has changed; it counts from the page's beginning.
    virtual void apply_time_limit() = 0;
    // Runs another page of the site, among globals of its own; the path may have a query. Raises
    // Failure where there is no such page, and where it fails.
    virtual void execute(const Text& path) = 0;
};

// What came behind the "?" of an address.
struct PageQuery {
    explicit PageQuery(std::string_view text) : text(text), fields(parse_urlencoded(this->text)) {}
    std::string text;
    RequestFields fields;
};

// At most so many bytes of a body are read at once.
inline constexpr std::uint64_t largest_read = 64 * 1024 * 1024;
inline constexpr std::size_t largest_session = 1024 * 1024;

// Belongs to the thread that carries the request out. The intrinsic objects share it, so that one
// that outlives its page still has something to refer to.
class PageContext {
public:
    PageContext(HttpRequest request, std::string path, std::filesystem::path root,
                ApplicationState& application, SessionStore& sessions,
                std::chrono::milliseconds patience, std::size_t largest_form_text = 1024 * 1024);

    const HttpRequest request;
    const std::string path;  // of the page, decoded
    const std::filesystem::path root;
    // Of the page that runs: one that executes another page may give it a query of its own.
    std::string running_path;
    PageQuery query;
    const RequestForm form;
    RequestFields cookies;
    // Folders below which pages may write.
    std::vector<std::filesystem::path> file_folders = {};
    bool maps_paths = true;
    PageFailure last_failure = {};  // which an error page is shown for
    // What failed in a page that another one executes: the first one tells the place, the others
    // are told of it by this sentence.
    struct InnerFailure {
        Text sentence;
        PageFailure failure;
    };
    InnerFailure inner_failure = {};
    // Whether a page's failure is but the inner one.
    bool passes_on(const script::ScriptError& error) const {
        return !inner_failure.sentence.empty() && error.description == inner_failure.sentence;
    }
    // Of the page that the browser asked for.
    PageFailure failure_within(const script::ScriptError& error) const;
    Text user = {};  // who is logged in, where the guard has let somebody in
    PageAnswer answer;
    ApplicationState::Holder application;
    PageControl* control = nullptr;
    std::chrono::seconds time_limit{0};

    // The form, for a page that uses it as such; read_body gives what came as bytes. Each raises
    // Failure (E_FAIL) after the other.
    const RequestForm& use_form();
    std::string read_body(std::uint64_t count);

    // For the page. Before the first one that may wait for the directory the page is counted among
    // those that do; where there are too many of them it is stopped and turned away.
    Object create_object(const Text& progid);
    bool waits_for_directory() const { return waits_for_directory_; }
    // Why the page is not carried out to its end; null: it is. Its answer is of no use then.
    const Refusal* turned_away() const { return turned_away_ ? &*turned_away_ : nullptr; }
    // What needs the site's store: where that cannot be reached, and the like, the page is stopped
    // and turned away. Raises Failure then.
    template <class Use>
    decltype(auto) keep(Use use) {
        try {
            return use();
        } catch (const Refusal& refusal) {
            turn_away(refusal);
        }
    }

    // The session that the browser's cookie names, if any. Raises Refusal as SessionStore::open.
    void open_session();
    // The same for a page that may do without: while the store cannot be reached it finds none.
    void try_open_session();
    // For a page that is of no use without sessions. Raises StoreAway.
    void require_store() { sessions_.require(); }
    Reach session_reach() const { return sessions_.reach(); }
    // The session's, or where there is none what it would have.
    std::chrono::minutes session_timeout() const;
    bool is_store_away() const { return is_store_away_; }
    // The page has none (EnableSessionState=False), whatever the browser's cookie names; nobody
    // waits for this request.
    void do_without_session();
    bool has_session() const { return has_session_; }
    // Raises Failure where it has none.
    void require_session() const;
    // In place of a session that the browser's cookie names.
    void adopt_session(std::unique_ptr<SessionLease> session) { session_ = std::move(session); }
    // The session, if there is one, ends with the request. Raises as known_session.
    void abandon_session();
    // For a change of what the browser's session holds; null where it has none. Raises Failure as
    // require_session; StoreAway where nobody can tell.
    SessionLease* known_session() const;
    // Null while the browser has none.
    SessionLease* session() const { return session_.get(); }
    // Makes one where the browser has none. Raises Failure as require_session, and where the
    // browser cannot be told of it any more; Refusal where the store cannot be reached.
    SessionLease& need_session();
    // Before a page puts a value: one of those that a login sets makes the request a login. Form
    // tokens of before it are worth nothing from then on. Raises Failure where that comes too late.
    void note_session_value(TextView name);
    // Ends what the request held: renews the session's identifier where somebody has logged in,
    // writes its cookie, gives session and application back. Raises Refusal (503) where the session
    // cannot be stored, and then the browser must not be told anything else.
    void finish();

    // Raises Failure (7) where the answer becomes larger than it may.
    void write(std::string_view bytes);
    // Drops what was written and has not been sent.
    void clear();
    // Sends what was written, behind the answer's head if that has not been sent: the session's
    // cookie is settled by it, so no session begins from then on, and nobody logs in.
    void flush();
    // Raises Failure (E_FAIL) once the head has been sent.
    void require_head_not_sent() const;
    bool is_browser_there() const;
    // Completes what is sent as a head before the page has ended.
    std::function<void(HttpResponse& head)> complete_head = {};

private:
    [[noreturn]] void turn_away(const Refusal& refusal);
    void settle_session();

    SessionStore& sessions_;
    const std::chrono::milliseconds patience_;
    std::unique_ptr<SessionLease> session_;
    enum class BodyUse { none, form, bytes };
    BodyUse body_use_ = BodyUse::none;
    std::uint64_t body_read_ = 0;
    bool is_login_ = false;
    bool waits_for_directory_ = false;
    std::optional<Refusal> turned_away_;
    bool is_store_away_ = false;
    bool is_new_ = false;  // the browser has not been told its identifier
    bool is_abandoned_ = false;
    bool has_session_ = true;
};

// Gives back what a page holds, however it ended; where that fails, nobody hears of it who has not
// called finish().
class PageEnd {
public:
    explicit PageEnd(PageContext& page) : page_(page) {}
    ~PageEnd();
    PageEnd(const PageEnd&) = delete;
    PageEnd& operator=(const PageEnd&) = delete;

private:
    PageContext& page_;
};

// "path?query" cut at the first "?".
std::string_view path_part(std::string_view target);
std::string_view query_part(std::string_view target);

}  // namespace orvo::web
