#include "bench/fleet/visitor.h"

#include <stdexcept>
#include <thread>
#include <utility>

namespace orvo::fleet {
namespace {

constexpr const char* password = "shop-sample";
constexpr auto before_another_try = std::chrono::milliseconds(100);
// The shortest pause is longer than a bind's reading is used again (a quarter of a second): until
// then a page may show what another node has changed since.
constexpr int shortest_thought_ms = 300, longest_thought_ms = 1300;
constexpr auto shortest_thought = std::chrono::milliseconds(shortest_thought_ms);
// For one that may be frozen.
constexpr int patience_with_a_node = 1;
constexpr unsigned wrong_password_every = 8, no_permission_every = 4;
constexpr std::size_t logins_remembered = 2;

// No answer ends an attempt.
class NoAnswer : public std::runtime_error {
    using runtime_error::runtime_error;
};

ShopPage page_of(const HttpResult& result) {
    if (!result) throw NoAnswer(result.error());
    return ShopPage(result);
}

bool is_redirect(const ShopPage& page) { return page.status() == 302 || page.status() == 303; }

}  // namespace

Visitor::Visitor(const ShopAddress& shop, Users& users, unsigned seed,
                 const std::atomic<bool>& is_over)
    : shop_(shop), users_(users), is_over_(is_over), random_(seed + 1) {}

void Visitor::think() {
    const int pause = shortest_thought_ms +
                      static_cast<int>(random_() % (longest_thought_ms - shortest_thought_ms));
    const auto end = Clock::now() + std::chrono::milliseconds(pause);
    while (!is_over_ && Clock::now() < end)
        std::this_thread::sleep_until(std::min(end, Clock::now() + before_another_try));
}

void Visitor::visit() {
    ShopUser& user = users_.take(random_);
    user_ = &user;
    browser_.emplace(shop_.port);
    is_lost_ = may_be_out_ = false;
    form_.reset();
    go_through_the_shop();
    users_.give_back(user);
}

void Visitor::go_through_the_shop() {
    try_without_right();
    if (!wish(Aim::login, [&] { return log_in(); })) return;
    think();
    if (!wish(Aim::account, [&] { return look_at_account(); })) return;
    think();
    if (!wish(Aim::logins, [&] { return look_at("/account/logins.asp"); })) return;
    try_without_permission();
    think();
    if (!wish(Aim::front_page, [&] { return look_at("/"); })) return;
    if (!wish(Aim::account, [&] { return look_at_account(); })) return;
    think();
    if (!wish(Aim::change, [&] { return change(); })) return;
    if (!wish(Aim::account, [&] { return look_at_account(); })) return;
    think();
    const Cookies before = browser_->cookies;
    if (!wish(Aim::logout, [&] { return log_out(); })) return;
    ended_.push_back(before);
    if (ended_.size() > logins_remembered) ended_.erase(ended_.begin());
    ask_after_end();
}

bool Visitor::wish(Aim aim, const std::function<Reason()>& attempt) {
    // At the end nobody pauses any more, and then a page may rightly show what its node remembers.
    if (is_over_) return false;
    Wish wish{aim, Clock::now(), {}};
    while (true) {
        Reason reason;
        try {
            reason = attempt();
        } catch (const NoAnswer& failure) {
            reason = failure.what();
        }
        wish.end = Clock::now();
        wish.was_had = reason.empty();
        if (!wish.was_had) {
            ++wish.failures;
            ledger_.failed.push_back({aim, wish.end, reason});
        }
        if (wish.was_had || is_lost_ || is_over_) break;
        std::this_thread::sleep_for(before_another_try);
    }
    ledger_.wishes.push_back(wish);
    return wish.was_had;
}

Visitor::Reason Visitor::log_in() {
    const ShopPage form = get("/login.asp");
    if (form.status() != 200) return refusal_of(form);
    const ShopPage page = post(
        "/login.asp", {{"user", user_->name()}, {"password", password}, {"token", form.token()}});
    if (is_redirect(page)) return page.leads_to_login() ? "sent back to the login page" : "";
    if (page.problem().starts_with("User name or password is wrong"))
        found(Breach::wrong, user_->name() + ": the right password is refused");
    return refusal_of(page);
}

Visitor::Reason Visitor::look_at(const std::string& path) {
    const ShopPage page = get(path);
    if (page.status() == 200 && page.user().empty() && page.problem().empty()) {
        // A guarded page says whether the login is lost.
        const Reason lost = refusal_of(get("/account/"));
        return is_lost_ ? lost : "shown to a stranger";
    }
    return refusal_of(page);
}

Visitor::Reason Visitor::look_at_account() {
    const auto begin = Clock::now();
    const ShopPage page = get("/account/");
    if (const Reason reason = refusal_of(page); !reason.empty()) return reason;
    form_ = page.form("/account/");
    if (!form_ || page.own_name().empty()) {
        found(Breach::wrong, user_->name() + ": the account's page shows no account");
        return "no account";
    }
    judge_value(value_of(*form_, "PhoneNumber"), begin);
    return {};
}

Visitor::Reason Visitor::change() {
    if (!form_) {
        if (const Reason reason = look_at_account(); !reason.empty()) return reason;
        std::this_thread::sleep_for(shortest_thought);
    }
    HttpFields form = *std::exchange(form_, std::nullopt);
    ShopUser::Attempt attempt{user_->next_value(), false, Clock::now(), {}};
    for (auto& [name, value] : form)
        if (name == "PhoneNumber") value = attempt.value;
    const auto write_down = [&](bool is_acknowledged) {
        attempt.is_acknowledged = is_acknowledged;
        attempt.end = Clock::now();
        user_->wrote(attempt);
    };
    try {
        const ShopPage answer = post("/account/", form);
        const bool is_saved = is_redirect(answer) && answer.location().starts_with("/account/");
        write_down(is_saved);
        return is_saved ? Reason() : refusal_of(answer);
    } catch (const NoAnswer&) {
        write_down(false);
        throw;
    }
}

Visitor::Reason Visitor::log_out() {
    // The form for it stands on every page.
    const ShopPage page = get("/account/");
    if (may_be_out_ && page.leads_to_login()) return {};
    if (const Reason reason = refusal_of(page); !reason.empty()) return reason;
    may_be_out_ = true;
    const ShopPage answer = post("/logout.asp", {{"token", page.token()}});
    return is_redirect(answer) ? Reason() : refusal_of(answer);
}

void Visitor::try_without_right() {
    const auto try_it = [&](const std::string& what, const std::function<bool()>& is_let_in) {
        ++ledger_.asked_without_right;
        try {
            if (is_let_in()) found(Breach::let_in, what);
        } catch (const NoAnswer&) {
            // Who is told nothing is not let in.
        }
    };
    try_it("a stranger is let in", [&] { return get("/account/").status() == 200; });
    if (random_() % wrong_password_every != 0) return;
    try_it(user_->name() + " is let in with a wrong password", [&] {
        const ShopPage form = get("/login.asp");
        return is_redirect(post(
                   "/login.asp",
                   {{"user", user_->name()}, {"password", "wrong"}, {"token", form.token()}})) &&
               get("/account/").status() == 200;
    });
}

void Visitor::try_without_permission() {
    if (random_() % no_permission_every != 0) return;
    ++ledger_.asked_without_right;
    try {
        if (get("/admin/members.asp").status() == 200)
            found(Breach::let_in, user_->name() + " sees the administration");
    } catch (const NoAnswer&) {
        // As above.
    }
}

void Visitor::ask_after_end() {
    for (const int node : shop_.nodes)
        for (const Cookies& cookies : ended_) {
            web::Browser asker(node, patience_with_a_node);
            asker.cookies = cookies;
            const HttpResult answer = asker.get("/account/");
            ++ledger_.requests;
            ++ledger_.asked_after_end;
            if (!answer)
                ++ledger_.unanswered_after_end;
            else if (answer->status == 200)
                found(Breach::outlived, user_->name() + ": let in after the end of the login");
        }
}

ShopPage Visitor::get(const std::string& path) {
    ++ledger_.requests;
    return page_of(browser_->get(path));
}

ShopPage Visitor::post(const std::string& path, const HttpFields& form) {
    ++ledger_.requests;
    // On a connection of its own, since a request on one that turns out to be closed is sent again.
    web::Browser once(shop_.port);
    once.cookies = browser_->cookies;
    const HttpResult answer = once.post(path, form);
    browser_->cookies = once.cookies;
    return page_of(answer);
}

// Of a page that somebody is to see who is logged in.
Visitor::Reason Visitor::refusal_of(const ShopPage& page) {
    if (page.leads_to_login()) {
        is_lost_ = true;
        ledger_.lost_logins.push_back(Clock::now());
        return "sent to the login page";
    }
    for (const std::string& name : {page.user(), page.own_name()})
        if (!name.empty() && name != user_->name())
            found(Breach::mixed, user_->name() + " is shown a page of " + name);
    const std::string problem = page.problem();
    if (problem.starts_with("The directory does not accept"))
        found(Breach::wrong, user_->name() + ": " + problem);
    if (page.status() != 200) return std::to_string(page.status());
    return problem;
}

void Visitor::judge_value(const std::string& value, Clock::time_point begin) {
    if (user_->may_be(value)) return;
    const ShopUser::Attempt* attempt = user_->attempt_with(value);
    if (!attempt) {
        found(Breach::wrong, user_->name() + " is shown the value '" + value + "' of nobody");
        return;
    }
    const ShopUser::Attempt& last = user_->last_acknowledged();
    ledger_.old_values.push_back({user_->name(), value, last.value, last.end,
                                  !attempt->is_acknowledged, attempt->begin, begin, Clock::now()});
}

void Visitor::found(Breach breach, const std::string& sentence) {
    ledger_.findings.push_back({breach, Clock::now(), sentence});
}

}  // namespace orvo::fleet
