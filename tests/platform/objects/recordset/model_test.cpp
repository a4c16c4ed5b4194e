#include <functional>
#include <random>
#include <set>

#include "tests/platform/objects/recordset/record_set_test.h"

namespace orvo {
namespace {

struct Person {
    std::int32_t number;
    std::string name;
    bool operator==(const Person&) const = default;
};

// What a record set without order and filter is: rows, and a place among them.
class Model {
public:
    std::vector<Person> rows;
    std::ptrdiff_t place = 0;  // -1 before the first, size behind the last
    bool is_gap = false;       // the row at `place` follows a deleted one

    bool has_row() const {
        return !is_gap && place >= 0 && place < static_cast<std::ptrdiff_t>(rows.size());
    }
    std::string here() const {
        if (is_gap) return "gap";
        if (rows.empty()) return "empty";
        if (place < 0) return "BOF";
        return has_row() ? rows[static_cast<std::size_t>(place)].name : "EOF";
    }
    // Whether the move is allowed.
    bool move(std::ptrdiff_t by) {
        const auto size = static_cast<std::ptrdiff_t>(rows.size());
        if (is_gap) {
            if (by == 0) return false;
            place += by > 0 ? by - 1 : by;
        } else {
            const bool is_out = place < 0 || place >= size;
            if (size == 0 || (is_out && by == 0) || (place < 0 && by < 0) ||
                (place >= size && by > 0))
                return false;
            place += by;
        }
        is_gap = false;
        place = std::clamp<std::ptrdiff_t>(place, -1, size);
        return true;
    }
    bool jump(std::ptrdiff_t to) {
        if (rows.empty()) {
            is_gap = false;
            return false;
        }
        is_gap = false;
        place = to;
        return true;
    }
};

class RecordSetModel : public RecordSetTest {
protected:
    bool allowed(const std::function<void()>& body) {
        try {
            body();
            return true;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.number, 3021) << failure.what();
            return false;
        }
    }
    std::vector<Person> everything(const Ref<RecordSet>& set) {
        std::vector<Person> all;
        if (call<&RecordSet::RecordCount>(set) == 0) return all;
        for (call<&RecordSet::MoveFirst>(set); !call<&RecordSet::IsEof>(set);
             call<&RecordSet::MoveNext>(set))
            all.push_back({call<&RecordSet::Collect>(set, 0).to<std::int32_t>(), here_in(set)});
        return all;
    }
    void step(std::mt19937& random, Model& model) {
        auto below = [&](int end) { return static_cast<int>(random() % unsigned(end)); };
        const Person person{below(10), std::string(1, static_cast<char>('a' + below(26)))};
        const auto size = static_cast<std::ptrdiff_t>(model.rows.size());
        switch (below(8)) {
            case 0:
                EXPECT_EQ(allowed([&] { next(); }), model.move(1));
                break;
            case 1:
                EXPECT_EQ(allowed([&] { previous(); }), model.move(-1));
                break;
            case 2:
                EXPECT_EQ(allowed([&] { first(); }), model.jump(0));
                break;
            case 3:
                EXPECT_EQ(allowed([&] { last(); }), model.jump(size - 1));
                break;
            case 4: {
                const int by = below(7) - 3;
                EXPECT_EQ(allowed([&] { move(by); }), model.move(by));
                break;
            }
            case 5:
                add(person.number, from_utf8(person.name));
                model.rows.push_back(person);
                model.place = size;
                model.is_gap = false;
                break;
            case 6: {
                const bool had_row = model.has_row();
                EXPECT_EQ(allowed([&] { erase(); }), had_row);
                if (!had_row) break;
                model.rows.erase(model.rows.begin() + model.place);
                model.is_gap = true;
                break;
            }
            case 7: {
                const bool has_row = model.has_row();
                EXPECT_EQ(allowed([&] {
                              put(u"number", person.number);
                              put(u"name", from_utf8(person.name));
                              update();
                          }),
                          has_row);
                if (has_row) model.rows[static_cast<std::size_t>(model.place)] = person;
                break;
            }
        }
    }
};

TEST_F(RecordSetModel, RandomUseAgreesWithAPlainListOfRows) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    open();
    Model model;
    for (int i = 0; i < 3000 && !HasFailure(); ++i) {
        step(random, model);
        ASSERT_EQ(here(), model.here()) << "step " << i;
        ASSERT_EQ(count(), static_cast<std::int64_t>(model.rows.size()));
        if (i % 50 != 0) continue;
        const auto clone = call<&RecordSet::Clone>(rs, -1);
        ASSERT_EQ(everything(clone), model.rows);
        std::vector<Person> wanted = model.rows;
        std::stable_sort(wanted.begin(), wanted.end(),
                         [](auto& a, auto& b) { return a.number < b.number; });
        call<&RecordSet::SetSort>(clone, u"number");
        ASSERT_EQ(everything(clone), wanted);
        std::erase_if(wanted, [](auto& person) { return person.number >= 5; });
        call<&RecordSet::SetFilter>(clone, u"number < 5");
        ASSERT_EQ(everything(clone), wanted);
    }
}

TEST_F(RecordSetModel, ASortedAndFilteredCloneFollowsEveryChange) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    open();
    const auto clone = call<&RecordSet::Clone>(rs, -1);
    call<&RecordSet::SetSort>(clone, u"name DESC, number");
    call<&RecordSet::SetFilter>(clone, u"number > 2");
    Model model;
    for (int i = 0; i < 1000 && !HasFailure(); ++i) {
        step(random, model);
        std::vector<Person> wanted = model.rows;
        std::erase_if(wanted, [](auto& person) { return person.number <= 2; });
        std::stable_sort(wanted.begin(), wanted.end(), [](auto& a, auto& b) {
            return a.name != b.name ? a.name > b.name : a.number < b.number;
        });
        ASSERT_EQ(everything(clone), wanted) << "step " << i;
    }
}

TEST_F(RecordSetModel, AnOrderIsKeptWhileRowsAreAddedAndChanged) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    open();
    sort(u"number");
    std::multiset<std::int32_t> model;
    for (int i = 0; i < 500; ++i) {
        const auto number = static_cast<std::int32_t>(random() % 100);
        if (i % 3 == 2) {
            move(static_cast<std::int64_t>(random() % model.size()), adBookmarkFirst);
            model.erase(model.find(get(0).to<std::int32_t>()));
            put(0, number);
            update();
        } else {
            add(number, u"x");
        }
        model.insert(number);
        ASSERT_EQ(get(0), Variant(number));
    }
    std::vector<std::int32_t> seen;
    for (first(); !eof(); next()) seen.push_back(get(0).to<std::int32_t>());
    EXPECT_EQ(seen, std::vector<std::int32_t>(model.begin(), model.end()));
}

}  // namespace
}  // namespace orvo
