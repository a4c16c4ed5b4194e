// Many threads in several processes, who read, search, write and check passwords in one directory.

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <thread>

#include "tests/suite/directory/embedded/directory/shop_fixture.h"
#include "tests/suite/directory/embedded/store/child.h"

namespace orvo::directory::embedded {
namespace {

using std::chrono::steady_clock;

// ORVO_CROWD_SECONDS=60 for a long run.
std::chrono::seconds duration() {
    const char* value = std::getenv("ORVO_CROWD_SECONDS");
    return std::chrono::seconds(value ? std::strtol(value, nullptr, 10) : 2);
}

// What somebody knows of a user that nobody else changes.
struct KnownUser {
    std::string password;
    std::string role;
    std::string phone;
};

// Raises std::runtime_error where the directory is not as expected.
class Worker {
public:
    Worker(const std::string& path, unsigned number)
        : path_(path),
          prefix_("w" + std::to_string(number) + "-"),
          random_(number),
          service_(from_utf8(path), from_utf8(service), Secret(u"service-sample")) {
        service_.authenticate();
    }

    void work_until(steady_clock::time_point end) {
        while (steady_clock::now() < end) work();
        for (const auto& [cn, known] : users_) look_at(cn, known);
        find(std::nullopt);
    }
    unsigned count() const { return count_; }
    std::size_t users() const { return users_.size(); }

private:
    void work() {
        ++count_;
        const std::string cn = prefix_ + std::to_string(random_() % 4);
        const auto held = users_.find(cn);
        if (held == users_.end()) return create(cn);
        KnownUser& known = held->second;
        const unsigned kind = random_() % 16;
        if (kind == 0) {
            service_.remove(user(cn));
            users_.erase(held);
        } else if (kind == 1) {
            const std::string password = "password-" + std::to_string(count_);
            service_.set_password(user(cn), Secret::of_bytes(password), std::nullopt);
            known.password = password;
        } else if (kind == 2) {
            expect(check(cn, known.password) == password_check::right, "a right password");
        } else if (kind == 3) {
            expect(check(cn, known.password + "!") == password_check::wrong, "a wrong password");
        } else if (kind < 7) {
            known.role = std::to_string(random_() % 3);
            known.phone = std::to_string(random_());
            service_.modify(user(cn), {{"OrvoRole", {known.role}}, {"PhoneNumber", {known.phone}}});
        } else if (kind < 11) {
            find(std::to_string(random_() % 3));
        } else {
            look_at(cn, known);
        }
    }

    void create(const std::string& cn) {
        const KnownUser known{"password-" + cn, "1", "0"};
        service_.add({user(cn),
                      {{"objectClass", {"orvoPerson"}},
                       {"cn", {cn}},
                       {"OrvoRole", {known.role}},
                       {"PhoneNumber", {known.phone}}}},
                     Secret::of_bytes(known.password));
        users_[cn] = known;
    }
    int check(const std::string& cn, const std::string& password) {
        const BindAnswer answer =
            Directory::of(from_utf8(path_))
                ->bind(user(cn), Secret::of_bytes(password), Directory::Proof::anew);
        return judged(answer.code, {}, answer.policy).value();
    }
    void look_at(const std::string& cn, const KnownUser& known) {
        const EntryData& entry = service_.known(user(cn));
        const auto is = [&](const char* name, const std::string& value) {
            const Attribute* held = find_attribute(entry, name);
            return held && held->values == std::vector{value};
        };
        expect(is("OrvoRole", known.role) && is("PhoneNumber", known.phone), "an entry");
    }
    // Own users, with a role or all.
    void find(const std::optional<std::string>& role) {
        std::set<std::string> expected, found;
        for (const auto& [cn, known] : users_)
            if (!role || known.role == *role) expected.insert(user(cn));
        const std::string of_role = role ? "(OrvoRole=" + *role + ")" : "";
        service_.search({"ou=Users,o=Shop",
                         Filter::parse(from_utf8("(&(cn=" + prefix_ + "*)" + of_role + ")")),
                         {"cn"}},
                        [&](EntryData&& entry) { return found.insert(entry.name).second; });
        expect(found == expected, "a search");
    }
    void expect(bool is_so, const char* what) const {
        if (!is_so) throw std::runtime_error(prefix_ + ": " + what + " is not as it should be");
    }

    const std::string path_;
    const std::string prefix_;
    std::mt19937 random_;
    Login service_;
    std::map<std::string, KnownUser> users_;
    unsigned count_ = 0;
};

// Four threads; the number of their users in the end, or what went wrong.
std::string work(const std::string& path, unsigned process, steady_clock::time_point end) {
    std::mutex mutex;
    std::string wrong;
    std::size_t users = 0;
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < 4; ++thread)
        threads.emplace_back([&, thread] {
            try {
                Worker worker(path, process * 4 + thread);
                worker.work_until(end);
                const std::lock_guard lock(mutex);
                users += worker.users();
            } catch (const Failure& failure) {
                const std::lock_guard lock(mutex);
                wrong += to_utf8(failure.description) + " ";
            } catch (const std::exception& failure) {
                const std::lock_guard lock(mutex);
                wrong += failure.what() + std::string(" ");
            }
        });
    for (std::thread& thread : threads) thread.join();
    return wrong.empty() ? std::to_string(users) : wrong;
}

TEST(ACrowd, OfSixteenThreadsInFourProcessesFindsWhatItHasWritten) {
    TempFolder folder;
    const std::string path = folder.path() / "shop.db";
    make_shop(path);
    const auto end = steady_clock::now() + duration();
    std::vector<std::unique_ptr<Child>> children;
    for (unsigned process = 0; process < 4; ++process)
        children.push_back(std::make_unique<Child>(
            [&](int descriptor) { write_all(descriptor, work(path, process, end)); }));
    std::size_t users = 2;  // jsmith and djansen
    for (const auto& child : children) {
        const std::string told = child->read_all();
        ASSERT_THAT(told, testing::MatchesRegex("[0-9]+"));
        users += std::stoul(told);
    }
    const auto store = Store::open(path);
    const Reading reading = store->read();
    EXPECT_THAT(reading.problems(), testing::IsEmpty());
    std::size_t there = 0;
    reading.every_entry([&](EntryData&& entry) {
        if (entry.name.starts_with("cn=") && entry.name.ends_with(",ou=Users,o=Shop")) ++there;
        return true;
    });
    EXPECT_EQ(there, users);
}

}  // namespace
}  // namespace orvo::directory::embedded
