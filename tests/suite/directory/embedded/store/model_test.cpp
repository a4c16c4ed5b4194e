// Random changes and searches of a store beside a plain map that does the same.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "suite/directory/entries/entry_order.h"
#include "suite/directory/entries/search_condition.h"
#include "suite/directory/entries/searched_entry.h"
#include "tests/suite/directory/embedded/store/store_fixture.h"

namespace orvo::directory::embedded {
namespace {

class Dice {
public:
    explicit Dice(std::uint32_t seed) : random_(seed) {}

    // From 0 to `sides` - 1.
    std::size_t roll(std::size_t sides) { return random_() % sides; }
    template <class Range>
    const auto& one_of(const Range& range) {
        return range[roll(std::size(range))];
    }

private:
    std::mt19937 random_;
};

const std::string words[] = {"Ann",
                             "ann",
                             "Bob",
                             "B\xC3\xB6"
                             "b",
                             "bo b",
                             "c",
                             "Smith John",
                             "20",
                             "3",
                             "-7",
                             "a!",
                             "zzz",
                             "\xFF",
                             "",
                             "*&()",
                             std::string(250, 'l') + "a",
                             std::string(250, 'l') + "b"};
const char* const attributes[] = {"cn",        "sn",       "sn;lang-de", "OrvoRole",
                                  "ProfileCN", "OrvoGUID", "unheardOf",  "userPassword"};

EntryData random_entry(Dice& dice, const std::string& name) {
    EntryData entry{name, {}};
    for (const char* attribute : attributes) {
        if (dice.roll(2) == 0) continue;
        entry.attributes.push_back({attribute, {}});
        for (std::size_t count = dice.roll(3) + 1; count > 0; --count)
            entry.attributes.back().values.push_back(dice.one_of(words));
    }
    return entry;
}

std::string relative_name(Dice& dice) {
    const std::string number = std::to_string(dice.roll(400));
    switch (dice.roll(5)) {
        case 0:
            return "ou=" + number;
        case 1:
            return "CN=Name " + number;
        case 2:
            return "cn=name\\, " + number + "+sn=x";
        default:
            return "cn=n" + number;
    }
}

Filter random_filter(Dice& dice, int levels) {
    using Kind = Filter::Kind;
    Filter filter;
    filter.kind = static_cast<Kind>(levels > 0 ? dice.roll(9) : 3 + dice.roll(6));
    if (filter.kind <= Kind::negation) {
        const std::size_t parts = filter.kind == Kind::negation ? 1 : dice.roll(3) + 1;
        for (std::size_t i = 0; i < parts; ++i)
            filter.parts.push_back(random_filter(dice, levels - 1));
        return filter;
    }
    filter.attribute = dice.one_of(attributes);
    if (filter.kind == Kind::substrings) {
        for (std::size_t pieces = dice.roll(2) + 2; pieces > 0; --pieces)
            filter.pieces.push_back(dice.one_of(words).substr(0, dice.roll(4)));
    } else if (filter.kind != Kind::presence) {
        filter.value = dice.one_of(words);
        if (dice.roll(3) == 0) filter.value = "n" + std::to_string(dice.roll(400)) + "!";
    }
    return filter;
}

class TheModel : public testing::TestWithParam<std::uint32_t> {
protected:
    TheModel() {
        Store::create(path, sample_schema());
        store = Store::open(path);
        Writing writing = store->write(Durability::process);
        for (const char* name : {"o=Shop", "ou=Users,o=Shop", "ou=Staff,ou=Users,o=Shop"}) {
            writing.add({name, {}});
            model[dn(name).key()] = {name, {}};
        }
        writing.commit();
    }

    void change(Writing& writing, std::map<std::string, EntryData>& changed) {
        const char* const containers[] = {"o=Shop", "ou=users,o=shop", "ou=Staff,ou=Users,o=Shop"};
        const std::string name = relative_name(dice) + "," + dice.one_of(containers);
        const std::string key = dn(name).key();
        if (!changed.contains(key)) {
            EntryData entry = random_entry(dice, name);
            writing.add(entry);
            changed[key] = entry;
        } else if (dice.roll(4) == 0) {
            writing.remove(dn(name));
            changed.erase(key);
        } else {
            EntryData entry = random_entry(dice, name);
            writing.replace(entry);
            changed[key] = entry;
        }
    }

    bool is_in(const DistinguishedName& name, const Selection& selection) {
        if (selection.scope == Scope::one_level)
            return name.is_below(selection.base) && name.depth() == selection.base.depth() + 1;
        return name == selection.base || name.is_below(selection.base);
    }

    // What is found of the model: key and name, in order.
    std::vector<std::string> expected(const Selection& selection) {
        std::vector<std::pair<std::string, std::string>> found;
        for (const auto& [key, entry] : model)
            if (is_in(dn(entry.name), selection) && is_true(selection.filter, entry))
                found.emplace_back(order_key(entry.name), entry.name);
        std::ranges::sort(found);
        std::vector<std::string> names;
        for (auto& [key, name] : found) names.push_back(std::move(name));
        return names;
    }

    bool is_true(const Filter& filter, const EntryData& entry) {
        const AttributeTypes& types = store->schema()->types;
        const FilterMatcher matcher(split_by_order(filter, types).sent, [&](std::string_view name) {
            return matching_of(name, types, Bounds::of_rules);
        });
        return matcher.matches(SearchedEntry(entry, types)) &&
               SearchCondition(filter, types).is_true_of(entry);
    }

    void compare_all() {
        const Reading reading = store->read();
        std::size_t count = 0;
        reading.every_entry([&](EntryData&& entry) {
            ++count;
            const auto found = model.find(dn(entry.name).key());
            EXPECT_NE(found, model.end()) << entry.name;
            if (found == model.end()) return false;
            EXPECT_EQ(entry.name, found->second.name);
            EXPECT_EQ(entry.attributes, found->second.attributes) << entry.name;
            return !HasFailure();
        });
        EXPECT_EQ(count, model.size());
    }

    void compare_search() {
        const char* const bases[] = {"", "o=Shop", "ou=Users,o=Shop", "ou=Staff,ou=Users,o=Shop"};
        Selection selection{.base = dn(dice.one_of(bases)),
                            .scope = dice.roll(3) == 0 ? Scope::one_level : Scope::subtree,
                            .filter = random_filter(dice, 2),
                            .wanted = dice.roll(2) * (dice.roll(10) + 1)};
        std::vector<std::string> found;
        store->read().search(selection, [&](EntryData&& entry) {
            if (is_true(selection.filter, entry)) found.push_back(entry.name);
            return selection.wanted == 0 || found.size() < selection.wanted;
        });
        std::vector<std::string> wanted = expected(selection);
        if (selection.wanted != 0 && wanted.size() > selection.wanted)
            wanted.resize(selection.wanted);
        EXPECT_EQ(found, wanted) << selection.filter.text() << " below '" << selection.base.key()
                                 << "', wanted " << selection.wanted;
    }

    TempFolder folder;
    std::filesystem::path path = folder.path() / "a";
    std::shared_ptr<Store> store;
    std::map<std::string, EntryData> model;
    Dice dice{GetParam()};
};

TEST_P(TheModel, IsLikeTheStoreAfterRandomChanges) {
    for (int round = 0; round < 10 && !HasFailure(); ++round) {
        std::map<std::string, EntryData> changed = model;
        {
            Writing writing = store->write(Durability::process);
            for (std::size_t count = dice.roll(40); count > 0; --count) change(writing, changed);
            if (dice.roll(5) != 0) {
                writing.commit();
                model = std::move(changed);
            }
        }
        compare_all();
        for (int search = 0; search < 10 && !HasFailure(); ++search) compare_search();
    }
}

INSTANTIATE_TEST_SUITE_P(Seed, TheModel, testing::Range(1U, 4U), testing::PrintToStringParamName());

}  // namespace
}  // namespace orvo::directory::embedded
