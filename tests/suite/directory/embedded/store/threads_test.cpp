// Several threads at one store, and two processes at one file.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <random>
#include <thread>

#include "tests/suite/directory/embedded/store/child.h"
#include "tests/suite/directory/embedded/store/store_fixture.h"

namespace orvo::directory::embedded {
namespace {

using testing::IsEmpty;

std::string user(std::size_t owner, std::size_t number) {
    return "cn=user" + std::to_string(owner) + "-" + std::to_string(number) + ",ou=Users,o=Shop";
}

// Changes the users that nobody else changes, and answers what they are in the end.
std::map<std::string, EntryData> change_users(Store& store, std::size_t owner, int changes) {
    std::mt19937 random(static_cast<std::uint32_t>(owner));
    std::map<std::string, EntryData> users;
    for (int i = 0; i < changes; ++i) {
        const std::string name = user(owner, random() % 20);
        EntryData entry{name, {{"cn", {std::to_string(i)}}, {"OrvoRole", {"7"}}}};
        Writing writing = store.write(Durability::process, std::chrono::seconds(60));
        if (!users.contains(name)) {
            writing.add(entry);
            users[name] = entry;
        } else if (random() % 3 == 0) {
            writing.remove(dn(name));
            users.erase(name);
        } else {
            writing.replace(entry);
            users[name] = entry;
        }
        writing.commit();
    }
    return users;
}

// A view never changes, whatever others do: what is found is what is read.
void search_again_and_again(Store& store, const std::atomic<bool>& is_done) {
    while (!is_done) {
        const Reading reading = store.read();
        std::size_t found = 0;
        reading.search({.base = dn("o=Shop"), .filter = Filter::parse(u"(OrvoRole=7)")},
                       [&](EntryData&& entry) {
                           found += entry.name.starts_with("cn=") ? 1 : 0;
                           EXPECT_TRUE(reading.find(dn(entry.name))) << entry.name;
                           return true;
                       });
        std::size_t there = 0;
        reading.every_entry([&](EntryData&& entry) {
            there += entry.name.starts_with("cn=") ? 1 : 0;
            return true;
        });
        EXPECT_EQ(found, there);
    }
}

TEST_F(AStore, IsUsedByManyThreadsAtOnce) {
    constexpr std::size_t writers = 4;
    std::vector<std::map<std::string, EntryData>> expected(writers);
    std::vector<std::thread> writing;
    for (std::size_t owner = 0; owner < writers; ++owner)
        writing.emplace_back([&, owner] { expected[owner] = change_users(*store, owner, 60); });
    std::atomic<bool> is_done = false;
    std::vector<std::thread> searching;
    for (int i = 0; i < 2; ++i)
        searching.emplace_back([&] { search_again_and_again(*store, is_done); });
    std::thread opening([&] {
        while (!is_done) EXPECT_EQ(Store::open(path)->schema(), store->schema());
    });
    for (std::thread& thread : writing) thread.join();
    is_done = true;
    for (std::thread& thread : searching) thread.join();
    opening.join();

    std::size_t count = 0;
    for (const auto& users : expected)
        for (const auto& [name, entry] : users) {
            ++count;
            ASSERT_TRUE(find(name)) << name;
            EXPECT_EQ(find(name)->attributes, entry.attributes);
        }
    std::size_t there = 0;
    store->read().every_entry([&](EntryData&&) { return ++there; });
    EXPECT_EQ(there, count + 2);
    EXPECT_THAT(store->read().problems(), IsEmpty());
}

TEST(AStoreOfTwoProcesses, HasTheWritesOfBoth) {
    TempFolder folder;
    const auto path = folder.path() / "a";
    Store::create(path, sample_schema());
    constexpr int changes = 150;
    const auto work = [&](std::size_t owner) {
        const auto store = Store::open(path);
        return change_users(*store, owner, changes).size();
    };
    Child child([&](int descriptor) { write_all(descriptor, std::to_string(work(1))); });
    const std::size_t own = work(2);
    const std::size_t other = std::stoul(child.read_all());
    const auto store = Store::open(path);
    std::size_t there = 0;
    store->read().every_entry([&](EntryData&&) { return ++there; });
    EXPECT_EQ(there, own + other);
    EXPECT_THAT(store->read().problems(), IsEmpty());
}

TEST(AStoreOfTwoProcesses, LetsAWriterWaitForTheOtherNoLongerThanItIsTold) {
    TempFolder folder;
    const auto path = folder.path() / "a";
    Store::create(path, sample_schema());
    int go_on[2];
    ASSERT_EQ(::pipe(go_on), 0);
    Child child([&](int descriptor) {
        const auto store = Store::open(path);
        const Writing writing = store->write();
        write_all(descriptor, "writing");
        char octet;
        while (::read(go_on[0], &octet, 1) < 0) {
        }
    });
    ASSERT_EQ(child.read_some(), "writing");
    const auto store = Store::open(path);
    const auto before = store->version();
    EXPECT_THAT(to_utf8(failure_of([&] {
                            store->write(Durability::full, std::chrono::milliseconds(30));
                        }).description),
                testing::StartsWith("(51) "));
    EXPECT_FALSE(store->read().find(dn("o=Shop"))) << "reading goes on";
    EXPECT_EQ(store->version(), before);
    write_all(go_on[1], "x");
    Writing writing = store->write(Durability::full, std::chrono::seconds(60));
    writing.add({"o=Shop", {}});
    writing.commit();
    EXPECT_NE(store->version(), before);
    ::close(go_on[0]);
    ::close(go_on[1]);
}

}  // namespace
}  // namespace orvo::directory::embedded
