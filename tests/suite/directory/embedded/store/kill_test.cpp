// A process that is killed while it writes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>
#include <thread>

#include "tests/suite/directory/embedded/store/child.h"
#include "tests/suite/directory/embedded/store/store_fixture.h"

namespace orvo::directory::embedded {
namespace {

using testing::IsEmpty;

// ORVO_KILLS=1000 for a long run, ORVO_KILL_SEED=n for another one.
unsigned number_of(const char* variable, unsigned otherwise) {
    const char* value = std::getenv(variable);
    return value ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : otherwise;
}

// Each write changes several entries, so that half of one would show.
struct Write {
    std::vector<EntryData> put;
    std::vector<std::string> removed;
};

// The same sequence for the same seed.
class Writes {
public:
    explicit Writes(std::uint32_t seed) : random_(seed) {}

    Write next() {
        ++count_;
        Write write;
        for (std::size_t entries = random_() % 3 + 2; entries > 0; --entries) {
            const std::string name = "cn=n" + std::to_string(random_() % 60) + ",ou=Users,o=Shop";
            if (random_() % 4 == 0)
                write.removed.push_back(name);
            else
                write.put.push_back({name,
                                     {{"cn", {std::to_string(count_)}},
                                      {"sn", {std::string(random_() % 3000, 'x')}},
                                      {"OrvoRole", {std::to_string(random_() % 50)}}}});
        }
        return write;
    }

private:
    std::mt19937 random_;
    unsigned count_ = 0;
};

void carry_out(const Write& write, std::map<std::string, EntryData>& model) {
    for (const EntryData& entry : write.put) model[entry.name] = entry;
    for (const std::string& name : write.removed) model.erase(name);
}

void carry_out(const Write& write, Store& store, Durability durability) {
    Writing writing = store.write(durability);
    for (const EntryData& entry : write.put)
        if (writing.find(dn(entry.name)))
            writing.replace(entry);
        else
            writing.add(entry);
    for (const std::string& name : write.removed)
        if (writing.find(dn(name))) writing.remove(dn(name));
    writing.commit();
}

std::map<std::string, EntryData> users_of(Store& store) {
    std::map<std::string, EntryData> users;
    store.read().every_entry([&](EntryData&& entry) {
        if (entry.name.starts_with("cn=")) users[entry.name] = std::move(entry);
        return true;
    });
    return users;
}

bool same(const std::map<std::string, EntryData>& one,
          const std::map<std::string, EntryData>& other) {
    return std::ranges::equal(one, other, [](const auto& a, const auto& b) {
        return a.first == b.first && a.second.attributes == b.second.attributes;
    });
}

TEST(AKilledWriter, LosesNothingThatItWasToldIsThereAndLeavesNothingHalfDone) {
    TempFolder folder;
    const auto path = folder.path() / "a";
    Store::create(path, sample_schema());
    {
        const auto store = Store::open(path);
        Writing writing = store->write();
        writing.add({"o=Shop", {}});
        writing.add({"ou=Users,o=Shop", {}});
        writing.commit();
    }
    const unsigned first_seed = number_of("ORVO_KILL_SEED", 1);
    const unsigned kills = number_of("ORVO_KILLS", 25);
    std::map<std::string, EntryData> model;
    std::size_t told = 0;
    std::size_t unheard = 0;
    for (unsigned seed = first_seed; seed != first_seed + kills; ++seed) {
        SCOPED_TRACE("ORVO_KILL_SEED=" + std::to_string(seed));
        const Durability durability = seed % 2 == 0 ? Durability::full : Durability::process;
        std::size_t acknowledged = 0;
        {
            Child child([&](int descriptor) {
                const auto store = Store::open(path);
                for (Writes writes(seed);;) {
                    carry_out(writes.next(), *store, durability);
                    write_all(descriptor, "w");
                }
            });
            std::mt19937 random(seed);
            const std::size_t enough = random() % 40 + 1;
            while (acknowledged < enough) {
                const std::string some = child.read_some();
                ASSERT_FALSE(some.empty()) << "the child has ended by itself";
                acknowledged += some.size();
            }
            // Waits for nothing: it is killed anywhere in a later write.
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 1500));
            child.kill();
            acknowledged += child.read_all().size();
        }
        Writes writes(seed);
        for (std::size_t i = 0; i < acknowledged; ++i) carry_out(writes.next(), model);
        std::map<std::string, EntryData> with_last = model;
        carry_out(writes.next(), with_last);  // it may have been killed before it could tell

        const auto store = Store::open(path);
        ASSERT_THAT(store->read().problems(), IsEmpty());
        const std::map<std::string, EntryData> there = users_of(*store);
        const bool has_last = same(there, with_last);
        ASSERT_TRUE(has_last || same(there, model)) << acknowledged << " writes were told";
        if (has_last && !same(model, with_last)) ++unheard;
        model = there;
        told += acknowledged;
    }
    std::printf("%u kills, %zu writes told, %zu more done and not yet told\n", kills, told,
                unheard);
}

}  // namespace
}  // namespace orvo::directory::embedded
