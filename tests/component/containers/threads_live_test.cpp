// Eight threads, each its own apartment, do ten thousand things at random to one directory, under
// as many identities as there are users. Each keeps a plain model of its own users beside it.

#include <atomic>
#include <chrono>
#include <random>
#include <set>
#include <thread>

#include "tests/component/containers/containers_live_test.h"

namespace orvo {
namespace {

constexpr int threads = 8;
constexpr std::size_t most_users_each = 10;

constexpr auto wrong_credentials = error_number(0x8007052E);
constexpr auto no_rights = error_number(0x80072098);
constexpr auto missing = error_number(0x80072030);

struct Known {
    Text account;  // its distinguished name
    Text password;
    Text guid;
    Text sn;
    Text phone;
    std::set<int> roles;
    Text profile;
};
using Model = std::map<Text, Known>;

// What profiles of the sample shop give to those without roles of their own.
const std::map<Text, std::set<int>> profile_roles = {
    {u"", {}}, {u"Buyers", {2, 3}}, {u"Receivers", {24}}, {u"Sales", {7, 25}}};

// One thread's work. Everything is checked where it is done; what goes wrong elsewhere is raised.
class Worker {
public:
    Worker(int number, unsigned seed, const Text& site, const Text& service, const Text& code)
        : prefix_(u"t" + from_utf8(std::to_string(number)) + u"-"),
          service_(service),
          code_(code),
          random_(seed + static_cast<unsigned>(number)),
          members_(create_object(u"OrvoMembership.Members")),
          validator_(create_object(u"OrvoMembership.Validator")) {
        late::call(members_, u"setServerInfo", {site});
        late::call(members_, u"BindAs", {service, code});
    }

    void work(int count) {
        constexpr void (Worker::*operations[])() = {
            &Worker::create,          &Worker::create,         &Worker::remove,
            &Worker::find_by_guid,    &Worker::list,           &Worker::list_role,
            &Worker::write_name,      &Worker::write_roles,    &Worker::read,
            &Worker::bind_as_itself,  &Worker::bind_as_itself, &Worker::look_at_another,
            &Worker::wrong_login,     &Worker::check_password, &Worker::check_password,
            &Worker::change_password, &Worker::find_nobody};
        for (int i = 0; i < count && !testing::Test::HasFailure(); ++i)
            (this->*operations[any(std::size(operations))])();
    }
    Model model() && { return std::move(model_); }

private:
    std::size_t any(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
    }
    bool perhaps() { return any(2) == 0; }
    Text any_word() { return u"word " + from_utf8(std::to_string(any(1000))); }
    Model::iterator any_user() {
        if (model_.empty()) create();
        return std::next(model_.begin(), static_cast<std::ptrdiff_t>(any(model_.size())));
    }

    Object bound(const Text& cn, const Text& account, const Text& password) {
        const Object user = create_object(u"OrvoMembership.User");
        late::call(user, u"BindAs", {cn, account, password});
        return user;
    }
    Object as_service(const Text& cn) { return bound(cn, service_, code_); }
    Object as_itself(const Model::value_type& user) {
        return bound(user.first, user.second.account, user.second.password);
    }
    std::set<int> any_roles() {
        std::set<int> roles;
        for (const int role : {2, 3, 7, 24})
            if (any(3) == 0) roles.insert(role);
        return roles;
    }
    static Values array(const std::set<int>& roles) {
        Values values;
        for (const int role : roles) values.push_back(role);
        return values;
    }

    void create() {
        if (model_.size() >= most_users_each) return remove();
        static constexpr std::pair<TextView, TextView> endings[] = {{u"", u""},
                                                                    {u", x", u"\\, x"},
                                                                    {u"+y", u"\\+y"},
                                                                    {u" (z)*", u" (z)*"},
                                                                    {u" \u00E9", u" \u00E9"}};
        const auto& [plain, escaped] = endings[any(std::size(endings))];
        const Text number = prefix_ + from_utf8(std::to_string(++created_));
        const Text cn = number + Text(plain);
        Known user;
        user.account = u"cn=" + number + Text(escaped) + u",ou=Users,o=Shop";
        user.password = any_word();
        user.sn = any_word();
        user.roles = any_roles();
        user.profile =
            std::next(profile_roles.begin(), static_cast<std::ptrdiff_t>(any(profile_roles.size())))
                ->first;
        const Variant attributes = Values{u"sn", u"OrvoUserType", u"OrvoRole", u"ProfileCN"};
        const Variant values = Values{user.sn, 1, array(user.roles), user.profile};
        const Object made = late::call(members_, u"CreateUserWithAttributes",
                                       {cn, user.password, attributes, values})
                                .to<Object>();
        EXPECT_EQ(late::get(made, u"CN"), Variant(cn));
        user.guid = late::get(made, u"GUID").to<Text>();
        model_[cn] = user;
        if (any(4) != 0) return;
        EXPECT_EQ(raised_by([&] {
                      late::call(members_, u"CreateUser", {cn, u"x"});
                  }).number,
                  error_number(0x8004044F));
    }
    void remove() {
        const auto user = any_user();
        late::call(members_, u"DeleteUser", {user->first});
        EXPECT_EQ(raised_by([&] { late::call(members_, u"DeleteUser", {user->first}); }).number,
                  missing);
        EXPECT_EQ(raised_by([&] { as_service(user->first); }).number, missing);
        EXPECT_EQ(raised_by([&] { as_itself(*user); }).number, wrong_credentials);
        model_.erase(user);
    }
    void find_by_guid() {
        const auto user = any_user();
        const Object found =
            late::call(members_, u"GetUserFromGUID", {user->second.guid}).to<Object>();
        EXPECT_EQ(late::get(found, u"CN"), Variant(user->first));
        EXPECT_EQ(late::get(found, u"LastName"), Variant(user->second.sn));
    }
    void find_nobody() {
        EXPECT_EQ(raised_by([&] { late::call(members_, u"GetUserFromGUID", {u"0"}); }).number,
                  3021);
    }
    void list() {
        const Object rows = late::call(members_, u"GetOrvoUsers",
                                       {Values{u"cn=" + prefix_ + u"*"}, u"", std::int16_t(100)})
                                .to<Object>();
        std::map<Text, Text> found, expected;
        for (; !late::get(rows, u"EOF").to<bool>(); late::call(rows, u"MoveNext"))
            found[late::get(rows, u"Collect", {u"cn"}).to<Text>()] =
                late::get(rows, u"Collect", {u"sn"}).to<Text>();
        for (const auto& [cn, user] : model_) expected[cn] = user.sn;
        EXPECT_EQ(found, expected);
    }
    void list_role() {
        const int role = perhaps() ? 24 : 2;
        const Object rows = late::call(members_, u"GetOrvoMembersHavingRoleEx",
                                       {std::int16_t(role), Values{u"cn=" + prefix_ + u"*"}, u"cn"})
                                .to<Object>();
        std::multiset<std::string> expected;
        for (const auto& [cn, user] : model_) {
            const auto& roles = user.roles.empty() ? profile_roles.at(user.profile) : user.roles;
            if (roles.contains(role)) expected.insert(to_utf8(cn));
        }
        const auto found = column(rows);
        EXPECT_EQ(std::multiset<std::string>(found.begin(), found.end()), expected);
    }
    void write_name() {
        const auto user = any_user();
        user->second.sn = any_word();
        const Object bound = as_service(user->first);
        late::put(bound, u"LastName", user->second.sn);
        EXPECT_EQ(late::get(bound, u"LastName"), Variant(user->second.sn));
    }
    void write_roles() {
        const auto user = any_user();
        user->second.roles = any_roles();
        const Object bound = as_service(user->first);
        if (user->second.roles.empty())
            late::call(bound, u"ClearAttribValue", {u"OrvoRole"});
        else
            late::call(bound, u"SetAttribValue", {u"OrvoRole", array(user->second.roles)});
    }
    void read() {
        const auto user = any_user();
        const Object bound = as_service(user->first);
        EXPECT_EQ(late::get(bound, u"LastName"), Variant(user->second.sn));
        EXPECT_EQ(late::get(bound, u"PhoneNumber"), Variant(user->second.phone));
        EXPECT_EQ(late::get(bound, u"GUID"), Variant(user->second.guid));
    }

    // A user reads the own entry and writes what is its own, but no rights.
    void bind_as_itself() {
        const auto user = any_user();
        const Object itself = as_itself(*user);
        EXPECT_EQ(late::get(itself, u"GUID"), Variant(user->second.guid));
        EXPECT_EQ(raised_by([&] {
                      late::call(itself, u"SetAttribValue", {u"OrvoRole", Values{21}});
                  }).number,
                  no_rights);
        user->second.phone = any_word();
        late::put(itself, u"PhoneNumber", user->second.phone);
        EXPECT_EQ(late::get(itself, u"PhoneNumber"), Variant(user->second.phone));
    }
    // Of another user it sees the name, and neither GUID nor telephone; the service account, just
    // before or after, sees them.
    void look_at_another() {
        const auto one = any_user(), other = any_user();
        if (one == other) return;
        const auto look = [&] {
            const Object seen = bound(other->first, one->second.account, one->second.password);
            EXPECT_EQ(late::get(seen, u"LastName"), Variant(other->second.sn));
            EXPECT_EQ(late::get(seen, u"GUID"), Variant(u""));
            EXPECT_EQ(late::get(seen, u"PhoneNumber"), Variant(u""));
        };
        const auto look_as_service = [&] {
            EXPECT_EQ(late::get(as_service(other->first), u"GUID"), Variant(other->second.guid));
        };
        if (perhaps()) look_as_service();
        look();
        if (perhaps()) look_as_service();
    }
    void wrong_login() {
        const auto user = any_user();
        EXPECT_EQ(raised_by([&] { bound(user->first, user->second.account, u"wrong"); }).number,
                  wrong_credentials);
    }
    void check_password() {
        const auto user = any_user();
        const Text path = user->second.account.substr(0, user->second.account.find(u",ou=Users"));
        const bool is_right = perhaps();
        const Text password = is_right ? user->second.password : u"not " + user->second.password;
        EXPECT_EQ(late::call(validator_, u"ValidatePassword", {path, password}),
                  Variant(is_right ? 0 : -1));
    }
    void change_password() {
        const auto user = any_user();
        const Object bound = as_itself(*user);
        const Text former = user->second.password;
        user->second.password = any_word() + u"!";
        late::call(bound, u"ChangePassword", {former, user->second.password});
        if (former != user->second.password) {
            const auto with_former = [&] {
                this->bound(user->first, user->second.account, former);
            };
            EXPECT_EQ(raised_by(with_former).number, wrong_credentials);
        }
        EXPECT_EQ(late::get(as_itself(*user), u"GUID"), Variant(user->second.guid));
    }

    const Text prefix_, service_, code_;
    std::mt19937 random_;
    Object members_, validator_;
    Model model_;
    int created_ = 0;
};

template <class Base>
class EightThreads : public Base {
protected:
    void work_and_compare(int operations_each);

private:
    void expect_stored(const std::string& dn, const Known& user) {
        SCOPED_TRACE(dn);
        const auto expect = [&](const char* attribute, const Text& value) {
            const auto stored = this->shop_.values(dn, attribute);
            EXPECT_EQ(stored, value.empty() ? std::vector<std::string>()
                                            : std::vector<std::string>{to_utf8(value)});
        };
        expect("sn", user.sn);
        expect("PhoneNumber", user.phone);
        expect("ProfileCN", user.profile);
        expect("OrvoGUID", user.guid);
        std::set<int> roles;
        for (const std::string& role : this->shop_.values(dn, "OrvoRole"))
            roles.insert(std::stoi(role));
        EXPECT_EQ(roles, user.roles);
        EXPECT_EQ(this->shop_.bind(dn, to_utf8(user.password)), 0);
    }
};

template <class Base>
void EightThreads<Base>::work_and_compare(int operations_each) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    const auto before = this->shop_.everything();
    const Text site = from_utf8(this->shop_.site_ini().string());
    const Text account = from_utf8(TestDirectory::service_dn());
    const Text code = from_utf8(TestDirectory::service_password());
    std::vector<Model> models(threads);
    std::vector<std::thread> running;
    for (int number = 0; number < threads; ++number)
        running.emplace_back([&, number] {
            try {
                Worker worker(number, seed, site, account, code);
                worker.work(operations_each);
                models[static_cast<std::size_t>(number)] = std::move(worker).model();
            } catch (const Failure& failure) {
                ADD_FAILURE() << "thread " << number << ": " << failure.what();
            }
        });
    for (std::thread& thread : running) thread.join();
    ASSERT_FALSE(this->HasFailure());

    auto after = this->shop_.everything();
    for (const Model& model : models)
        for (const auto& [cn, user] : model) {
            const auto found =
                this->shop_.find("ou=Users,o=Shop", "(OrvoGUID=" + to_utf8(user.guid) + ")");
            ASSERT_EQ(found.size(), 1u) << to_utf8(cn);
            EXPECT_THAT(this->shop_.values(found[0], "cn"), ElementsAre(to_utf8(cn)));
            expect_stored(found[0], user);
            after.erase(found[0]);
        }
    EXPECT_EQ(after, before) << "nothing else was touched, and nothing is left over";
}

class EightThreadsOverLdap : public EightThreads<ContainersOverLdap> {
protected:
    // A connection that was closed here is still open there for a moment.
    int settled_connections(int most) {
        for (int round = 0; round < 200 && server_.connections() > most; ++round)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        return server_.connections();
    }
};

TEST_F(EightThreadsOverLdap, LeaveTheDirectoryAsTheirModelsSayAndNoConnectionBehind) {
    work_and_compare(1250);
    EXPECT_LE(settled_connections(64), 64) << "the provider's limit of idle connections";
    in_fresh_thread([&] {
        late::call(create_object(u"OrvoMembership.Initialize"), u"InitializeConnectionPool",
                   {list({u"MaximumSize"}), Values{0}});
    });
    EXPECT_EQ(settled_connections(0), 0);
}

// Every password costs a hash, so they do less.
using EightThreadsOnEach = EightThreads<ContainersLive>;

TEST_FRESH_FOR_EACH(EightThreadsOnEach, LeaveTheDirectoryAsTheirModelsSay) {
    work_and_compare(100);
}

}  // namespace
}  // namespace orvo
