// Random operations on a few users, beside a plain model of them.

#include <algorithm>
#include <functional>
#include <iostream>
#include <optional>
#include <random>

#include "suite/directory/entries/entry_order.h"
#include "suite/directory/names/written_name.h"
#include "tests/suite/directory/provider/provider_test.h"

namespace orvo::directory {
namespace {

constexpr std::int32_t success = 0;
constexpr auto exists = error_number(0x8004044F);
constexpr auto missing = error_number(0x80072030);
constexpr auto not_allowed = error_number(0x80072014);
constexpr auto undefined_type = error_number(0x8007200C);
constexpr auto wrong_credentials = error_number(0x8007052E);

struct KnownUser {
    std::map<std::string, Values> attributes;
    Text password;
};

const std::vector<Text> names{u"anna",        u"Bert",          u"C, D",   u"e+f",        u"#g",
                              u"\u00FCmlaut", u"\u65E5\u672C",  u"o'h",    u"(i) *",      u"j\\k",
                              u"zo\u00EB",    u"long name x y", u"anna b", u"\"quoted\"", u"emil!"};

// A condition on users, as the text of a filter and as the model sees it.
struct Condition {
    Text filter;
    std::function<bool(const KnownUser&)> is_true;
};

class RandomTest : public ProviderTest {
protected:
    std::size_t any(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
    }
    const Text& any_name() { return names[any(names.size())]; }
    Text any_word() {
        const char16_t* words[] = {u"alpha", u"Beta", u"gamma delta", u"\u00E9psilon", u"a*b (c)"};
        return words[any(std::size(words))];
    }
    // An attribute with values that it can hold.
    std::pair<std::string, Values> any_attribute() {
        const auto numbers = [&] {
            Values values;
            for (std::int32_t number = 1; number < 5; ++number)
                if (any(2) == 0) values.push_back(number);
            return values;
        };
        switch (any(5)) {
            case 0:
                return {"sn", {any_word()}};
            case 1:
                return {"Position", {any_word()}};
            case 2:
                return {"OrvoRole", numbers()};
            case 3:
                return {"OrvoUserType", {static_cast<std::int32_t>(any(5))}};
            default:
                return {"description", {any_word(), u"second"}};
        }
    }

    Condition any_condition(int depth = 2) {
        if (depth > 0 && any(2) == 0) {
            const Condition one = any_condition(depth - 1), other = any_condition(depth - 1);
            switch (any(3)) {
                case 0:
                    return {u"(&" + one.filter + other.filter + u")",
                            [=](auto& user) { return one.is_true(user) && other.is_true(user); }};
                case 1:
                    return {u"(|" + one.filter + other.filter + u")",
                            [=](auto& user) { return one.is_true(user) || other.is_true(user); }};
                default:
                    return {u"(!" + one.filter + u")",
                            [=](auto& user) { return !one.is_true(user); }};
            }
        }
        const auto [name, values] = any_attribute();
        const auto held = [name = name](const KnownUser& user) {
            const auto found = user.attributes.find(name);
            return found == user.attributes.end() ? Values() : found->second;
        };
        const Text attribute = from_utf8(name);
        if (values.count() == 0 || any(4) == 0)
            return {u"(" + attribute + u"=*)", [=](auto& user) { return held(user).count() > 0; }};
        const Text value = lower(values[0].to<Text>());
        const bool is_initial = values[0].is_text() && any(3) == 0;
        const Text sought = is_initial ? value.substr(0, 2) : value;
        Text written =
            replaced(replaced(replaced(sought, u"*", u"\\2a"), u"(", u"\\28"), u")", u"\\29");
        if (is_initial) written += u"*";
        return {u"(" + attribute + u"=" + written + u")", [=](auto& user) {
                    const Values all = held(user);
                    return std::any_of(all.begin(), all.end(), [&](const Variant& one) {
                        const Text text = lower(one.to<Text>());
                        return is_initial ? text.starts_with(sought) : text == sought;
                    });
                }};
    }

    void create_one() {
        const Text name = any_name();
        Given given = {{u"cn", name}, {u"CostCenter", u"random"}};
        KnownUser user;
        user.attributes["CostCenter"] = Values{u"random"};
        for (std::size_t count = any(4); count > 0; --count) {
            const auto [attribute, values] = any_attribute();
            if (values.count() == 0 || user.attributes.contains(attribute)) continue;
            user.attributes[attribute] = values;
            given.push_back({from_utf8(attribute), values});
        }
        if (any(2) == 0) user.password = u"secret " + any_word();
        given.push_back({u"userPassword", user.password});
        const Failure failure = refusal_of([&] {
            create(bound(u""), given, u"cn", Values{u"orvoPerson", u"top"});
        });
        EXPECT_EQ(failure.number, model_.contains(name) ? exists : success) << failure.what();
        if (failure.number == success) model_.emplace(name, std::move(user));
    }
    void remove_one() {
        const Text name = any_name();
        const Failure failure =
            refusal_of([&] { remove(bound(u""), u"cn=" + name + u"," + users); });
        EXPECT_EQ(failure.number, model_.contains(name) ? success : missing) << failure.what();
        model_.erase(name);
    }
    // Bound, where there is such an entry.
    std::optional<Entry> bind_one(const Text& name) {
        const Entry entry = new_entry();
        const Failure failure = refusal_of([&] { bind(entry, service(), u"cn=" + name); });
        EXPECT_EQ(failure.number, model_.contains(name) ? success : missing) << failure.what();
        if (failure.number != success) return std::nullopt;
        return entry;
    }
    void read_one() {
        const Text name = any_name();
        if (const auto entry = bind_one(name)) expect_equal(*entry, model_.at(name));
    }
    void set_one() {
        const Text name = any_name();
        const auto entry = bind_one(name);
        if (!entry) return;
        const auto [attribute, values] = any_attribute();
        set(*entry, from_utf8(attribute), values);
        model_.at(name).attributes.erase(attribute);
        if (values.count() > 0) model_.at(name).attributes[attribute] = values;
        expect_equal(*entry, model_.at(name));
    }
    void clear_one() {
        const Text name = any_name();
        const auto entry = bind_one(name);
        if (!entry) return;
        const auto attribute = any_attribute().first;
        clear(*entry, from_utf8(attribute));
        model_.at(name).attributes.erase(attribute);
        expect_equal(*entry, model_.at(name));
    }
    void refuse_one() {
        const auto entry = bind_one(any_name());
        if (!entry) return;
        EXPECT_EQ(refusal_of([&] { set(*entry, u"uniqueMember", u"o=Shop"); }).number, not_allowed);
        EXPECT_EQ(refusal_of([&] { set(*entry, u"noSuchAttribute", u"x"); }).number,
                  undefined_type);
    }
    void set_password() {
        const Text name = any_name();
        const auto entry = bind_one(name);
        if (!entry) return;
        model_.at(name).password = u"secret " + any_word();
        set(*entry, u"userPassword", model_.at(name).password);
    }
    void check_password() {
        const Text name = any_name(), password = u"secret " + any_word();
        const auto user = model_.find(name);
        const bool is_right = user != model_.end() && user->second.password == password;
        EXPECT_EQ(checked(u"cn=" + name + u"," + users, password), is_right ? 0 : -1);
        // A user reads the own entry.
        const Entry entry = new_entry();
        const Failure failure = refusal_of([&] {
            bind(entry, entry_name(u"cn=" + escaped_value(name), users), Secret(TextView(password)),
                 u"cn=" + name);
        });
        EXPECT_EQ(failure.number, is_right ? success : wrong_credentials) << failure.what();
        if (is_right) {
            EXPECT_EQ(values(entry, u"CostCenter"), Variant(Values{u"random"}));
        }
    }
    void search_some() {
        const Condition condition = any_condition();
        const auto maximum = static_cast<std::int32_t>(any(8));
        const Search search = new_search();
        connect(search, service());
        const auto found = first_column(execute(
            search, u"(&(CostCenter=random)" + condition.filter + u")", Values{u"cn"}, maximum));
        std::vector<std::string> expected;
        for (const auto& [name, user] : model_)
            if (condition.is_true(user)) expected.push_back(to_utf8(name));
        std::sort(expected.begin(), expected.end(), [](const auto& one, const auto& other) {
            const auto key = [](const std::string& name) {
                return order_key(to_utf8(u"cn=" + escaped_value(from_utf8(name))));
            };
            return key(one) < key(other);
        });
        if (maximum > 0 && expected.size() > static_cast<std::size_t>(maximum))
            expected.resize(static_cast<std::size_t>(maximum));
        EXPECT_EQ(found, expected) << to_utf8(condition.filter) << ", at most " << maximum;
    }
    void do_something() {
        constexpr void (RandomTest::*operations[])() = {
            &RandomTest::create_one,   &RandomTest::create_one,     &RandomTest::create_one,
            &RandomTest::remove_one,   &RandomTest::read_one,       &RandomTest::set_one,
            &RandomTest::set_one,      &RandomTest::clear_one,      &RandomTest::refuse_one,
            &RandomTest::set_password, &RandomTest::check_password, &RandomTest::search_some,
            &RandomTest::search_some,  &RandomTest::search_some};
        (this->*operations[any(std::size(operations))])();
    }
    static void expect_equal(const Entry& entry, const KnownUser& user) {
        for (const char* attribute :
             {"CostCenter", "sn", "Position", "OrvoRole", "OrvoUserType", "description"}) {
            const auto known = user.attributes.find(attribute);
            const Values none{Variant()};
            EXPECT_EQ(values(entry, from_utf8(attribute)),
                      Variant(known == user.attributes.end() ? none : known->second))
                << attribute;
        }
    }

    std::map<Text, KnownUser> model_;
    std::mt19937 random_;
};
FOR_EVERY_DIRECTORY(RandomTest);

TEST_P(RandomTest, OperationsLeaveTheDirectoryAsTheModelSays) {
    const unsigned seed = std::random_device()();
    std::cout << "seed " << seed << "\n";
    random_.seed(seed);
    const auto before = shop_.everything();
    for (int count = 0; count < 300 && !HasFailure(); ++count) {
        SCOPED_TRACE("operation " + std::to_string(count));
        do_something();
    }
    for (const auto& [name, user] : model_)
        if (const auto entry = bind_one(name)) expect_equal(*entry, user);
    EXPECT_EQ(shop_.find("ou=Users,o=Shop", "(CostCenter=random)").size(), model_.size());
    EXPECT_EQ(shop_.everything().size(), before.size() + model_.size());
}

}  // namespace
}  // namespace orvo::directory
