#include "bench/failover/worker.h"

#include <algorithm>

#include "platform/interfaces/create.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/failure.h"
#include "platform/values/values.h"

namespace orvo::failover {
namespace {

constexpr const char16_t* user_class = u"OrvoMembership.User";
constexpr auto wrong_credentials = error_number(0x8007052E);
constexpr auto no_such_entry = error_number(0x80072030);
constexpr std::size_t most_created = 3;

const Text service = u"cn=orvo-service,ou=Services,o=Shop";
const Text service_code = u"service-sample";
const Text password = u"shop-sample";

// Number and cause, without what differs from call to call: of the block its description up to the
// end of the first sentence, without the name that it quotes.
std::string class_of_failure(const Failure& failure) {
    std::string text = to_utf8(failure.description);
    if (const auto cause = text.rfind("DESC: "); cause != std::string::npos)
        text.erase(0, cause + 6);
    text.resize(std::min(text.find_first_of("\r\n"), text.size()));
    text.resize(std::min(text.find(". "), text.size()));
    while (text.ends_with('.')) text.pop_back();
    const std::size_t begin = text.find('\''), end = text.find('\'', begin + 1);
    if (end != std::string::npos) text.replace(begin, end + 1 - begin, "…");
    return "0x" + to_utf8(hexadecimal(failure.number)) + " " + text;
}

}  // namespace

Worker::Worker(const Plan& plan, unsigned seed)
    : plan_(plan),
      random_(seed),
      validator_(create_object(u"OrvoMembership.Validator")),
      members_(create_object(u"OrvoMembership.Members")) {
    late::call(validator_, u"setServerInfo", {from_utf8(plan.site_ini)});
    late::call(members_, u"BindAs", {service, service_code});
    for (const KnownUser& user : plan.changing)
        ledger_.attempts[user.name] = {{user.phone, true, {}, {}}};
    log_in();
    mistype();
    change();
    create();
}

void Worker::work() {
    const unsigned of_hundred = random_() % 100;
    if (of_hundred < 55)
        log_in();
    else if (of_hundred < 70)
        mistype();
    else if (of_hundred < 92)
        change();
    else
        create();
}

template <class Body>
bool Worker::timed(Kind kind, Body body) {
    Call call{kind, Clock::now(), 0, {}};
    try {
        body();
    } catch (const Failure& failure) {
        call.failure = class_of_failure(failure);
        failed_with_ = failure.number;
    }
    call.seconds = std::chrono::duration<double>(Clock::now() - call.begin).count();
    const bool is_done = call.failure.empty();
    ledger_.calls.push_back(std::move(call));
    return is_done;
}

const KnownUser& Worker::any(const std::vector<KnownUser>& users) {
    return users[random_() % users.size()];
}

void Worker::expect(bool is_right, const std::string& what) {
    if (!is_right) ledger_.wrong_answers.push_back(what);
}

bool Worker::bind(const Object& user, const std::string& name, const Text& account,
                  const Text& account_password) {
    failed_with_ = 0;
    const bool is_bound = timed(Kind::read, [&] {
        late::call(user, u"BindAs", {from_utf8(name), account, account_password});
    });
    expect(failed_with_ != wrong_credentials, name + ": right credentials refused at a bind");
    return is_bound;
}

void Worker::log_in() {
    const KnownUser& who = any(plan_.visitors);
    Variant answer;
    if (!timed(Kind::check, [&] {
            answer = late::call(validator_, u"ValidatePassword", {from_utf8(who.name), password});
        }))
        return;
    expect(answer == Variant(0),
           who.name + ": the right password is answered " + to_utf8(answer.to<Text>()));
    const Object user = create_object(user_class);
    if (!bind(user, who.name, from_utf8("cn=" + who.name + ",ou=Users,o=Shop"), password)) return;
    const auto read = [&](const char* what, const std::string& known, auto get) {
        Text value;
        if (!timed(Kind::read, [&] { value = get(); })) return;
        expect(to_utf8(value) == known,
               who.name + ": " + what + " is read as '" + to_utf8(value) + "'");
    };
    read("the last name", who.last_name, [&] { return late::get(user, u"LastName").to<Text>(); });
    read("the profile", who.profile,
         [&] { return late::get(late::get(user, u"Profile").to<Object>(), u"CN").to<Text>(); });
}

void Worker::mistype() {
    const KnownUser& who = any(plan_.mistaken);
    // Another one each time, so that the proxies can tell whether one is sent twice.
    const Text wrong = from_utf8("wrong " + text_of(new_mark()));
    ++ledger_.wrong_passwords[who.name];
    Variant answer;
    if (timed(Kind::check, [&] {
            answer = late::call(validator_, u"ValidatePassword", {from_utf8(who.name), wrong});
        }))
        expect(answer == Variant(-1),
               who.name + ": a wrong password is answered " + to_utf8(answer.to<Text>()));
}

bool Worker::read_own(const Object& user, const std::string& name) {
    Reading reading{name, {}, Clock::now(), {}};
    if (!timed(Kind::read,
               [&] { reading.value = to_utf8(late::get(user, u"PhoneNumber").to<Text>()); }))
        return false;
    reading.end = Clock::now();
    ledger_.readings.push_back(std::move(reading));
    return true;
}

void Worker::change() {
    const std::string& name = any(plan_.changing).name;
    const Object user = create_object(user_class);
    if (!bind(user, name, service, service_code) || !read_own(user, name)) return;
    Attempt attempt{text_of(new_mark()), false, Clock::now(), {}};
    attempt.is_acknowledged =
        timed(Kind::write, [&] { late::put(user, u"PhoneNumber", from_utf8(attempt.value)); });
    attempt.end = Clock::now();
    const bool is_written = attempt.is_acknowledged;
    ledger_.attempts[name].push_back(std::move(attempt));
    if (!is_written || !read_own(user, name)) return;
    const Object again = create_object(user_class);
    if (bind(again, name, service, service_code)) read_own(again, name);
}

void Worker::create() {
    Creation creation{new_mark(), Clock::now(), false};
    const Text name = from_utf8(text_of(creation.mark));
    creation.is_acknowledged = timed(Kind::write, [&] {
        late::call(members_, u"CreateUser", {name, password});
    });
    ledger_.creations.push_back(creation);
    std::vector<Creation*> kept;
    for (Creation& one : ledger_.creations)
        if (one.is_acknowledged && one.deletion == Creation::Deletion::none) kept.push_back(&one);
    if (kept.size() > most_created) remove(*kept.front());
}

void Worker::remove(Creation& creation) {
    const Text name = from_utf8(text_of(creation.mark));
    failed_with_ = 0;
    const bool is_done = timed(Kind::write, [&] { late::call(members_, u"DeleteUser", {name}); });
    creation.deletion = is_done ? Creation::Deletion::acknowledged : Creation::Deletion::failed;
    creation.was_missed = failed_with_ == no_such_entry;
    creation.deletion_end = Clock::now();
}

}  // namespace orvo::failover
