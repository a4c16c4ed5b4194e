// Backup, check and migration.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "suite/directory/embedded/store/migration.h"
#include "tests/suite/directory/embedded/store/store_fixture.h"

namespace orvo::directory::embedded {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const EntryData ann{"cn=Ann,ou=Users,o=Shop", {{"cn", {"Ann"}}, {"sn", {"Lee", "Leigh"}}}};

std::string text_of(const Failure& failure) { return to_utf8(failure.description); }

using ABackup = AStore;

TEST_F(ABackup, IsAStoreOfItsOwn) {
    add(ann);
    const auto copy_path = folder.path() / "copy";
    store->backup(copy_path, [](int, int) {});
    add({"cn=Bob,ou=Users,o=Shop", {}});
    EXPECT_EQ(std::filesystem::status(copy_path).permissions(), std::filesystem::perms(0600));
    const auto copy = Store::open(copy_path);
    EXPECT_EQ(copy->read().find(dn(ann.name))->attributes, ann.attributes);
    EXPECT_FALSE(copy->read().find(dn("cn=Bob,ou=Users,o=Shop")));
    EXPECT_THAT(copy->read().problems(), IsEmpty());
}

TEST_F(ABackup, OfABusyStoreIsTheStoreAsItWas) {
    const std::string padding(2000, 'x');
    for (int i = 0; i < 20; ++i) {
        Writing writing = store->write(Durability::process);
        for (int k = 0; k < 100; ++k)
            writing.add({"cn=" + std::to_string(i * 100 + k) + ",ou=Users,o=Shop",
                         {{"userPassword", {padding}}}});
        writing.commit();
    }
    const auto copy_path = folder.path() / "copy";
    int last = 0;
    int all_pages = 0;
    int steps = 0;
    store->backup(copy_path, [&](int done, int all) {
        EXPECT_GE(done, last) << "it does not begin anew";
        last = done;
        all_pages = all;
        add({"ou=" + std::to_string(++steps) + ",o=Shop", {}});
    });
    EXPECT_EQ(last, all_pages);
    EXPECT_GT(steps, 1);
    const auto copy = Store::open(copy_path);
    EXPECT_FALSE(copy->read().find(dn("ou=1,o=Shop")));
    EXPECT_TRUE(copy->read().find(dn("cn=1999,ou=Users,o=Shop")));
    EXPECT_THAT(copy->read().problems(), IsEmpty());
}

TEST_F(ABackup, OverwritesNothing) {
    const auto there = folder.write("there", "precious");
    EXPECT_THAT(text_of(failure_of([&] { store->backup(there, [](int, int) {}); })),
                HasSubstr("there': there is such a file already."));
    EXPECT_EQ(content_of(there), "precious");
}

class ACheck : public AStore {
protected:
    ACheck() { add(ann); }
    // Behind the store's back.
    void damage(const std::string& sql) { Database(path).execute(sql); }
    std::vector<std::string> problems() { return store->read().problems(); }
};

TEST_F(ACheck, FindsNothingWrongWithAStoreThatIsWell) { EXPECT_THAT(problems(), IsEmpty()); }

TEST_F(ACheck, FindsAMissingIndexRow) {
    damage("DELETE FROM value WHERE key = CAST(' leigh ' AS BLOB)");
    EXPECT_THAT(problems(), ElementsAre("'cn=Ann,ou=Users,o=Shop' lacks an index row of sn."));
}

TEST_F(ACheck, FindsIndexRowsOfNobody) {
    damage("INSERT INTO value VALUES (1, x'00', 77); INSERT INTO below VALUES (1, 2, x'00', 77)");
    EXPECT_THAT(problems(), ElementsAre("The index 'value' has 1 rows that belong to no entry.",
                                        "The index 'below' has 1 rows that belong to no entry."));
}

TEST_F(ACheck, FindsAnEntryThatIsNotListed) {
    damage("DELETE FROM below WHERE entry = 3 AND ancestor = 1");
    EXPECT_THAT(problems(),
                ElementsAre("'cn=Ann,ou=Users,o=Shop' is not listed below each entry above it."));
}

TEST_F(ACheck, FindsAnEntryWithoutItsParent) {
    damage("UPDATE entry SET parent = 1 WHERE id = 3");
    EXPECT_THAT(problems(), testing::Contains(
                                "'cn=Ann,ou=Users,o=Shop' does not belong to the entry above it."));
}

TEST_F(ACheck, FindsNamesAndAttributesThatAreDamaged) {
    damage("UPDATE entry SET name = 'cn=Bob,ou=Users,o=Shop', data = x'0105' WHERE id = 3");
    EXPECT_THAT(problems(), testing::IsSupersetOf(
                                {"'cn=Bob,ou=Users,o=Shop' is kept under another name's key.",
                                 "The attributes of 'cn=Bob,ou=Users,o=Shop' cannot be read."}));
}

TEST_F(ACheck, TellsOfManyProblemsTheFirstHundred) {
    Writing writing = store->write(Durability::process);
    for (int i = 0; i < 150; ++i) writing.add({"cn=" + std::to_string(i) + ",o=Shop", {}});
    writing.commit();
    damage("DELETE FROM below");
    EXPECT_THAT(problems(), SizeIs(101));
    EXPECT_EQ(problems().back(), "54 more problems.");
}

class AMigration : public AStore {
protected:
    AMigration() {
        add(ann);
        store.reset();
    }
    std::int64_t version() { return Database(path).number("PRAGMA user_version", 0); }

    std::vector<MigrationStep> steps = {[](Database& database) {
        database.run("INSERT INTO setting (name, value) VALUES ('migrated', 'once')");
    }};
};

TEST_F(AMigration, ChangesTheFileAndKeepsACopyOfWhatItWas) {
    migrate(path, steps);
    EXPECT_EQ(version(), 2);
    EXPECT_EQ(Database(path).number("SELECT count(*) FROM setting", 0), 1);
    const auto copy = Store::open(path.string() + ".before-v2");
    EXPECT_TRUE(copy->read().find(dn(ann.name)));
    EXPECT_EQ(copy->read().setting("migrated"), "");

    migrate(path, steps);
    EXPECT_FALSE(std::filesystem::exists(path.string() + ".before-v2-2")) << "it is done";
}

TEST_F(AMigration, GoesThroughAllSteps) {
    steps.push_back([](Database& database) {
        database.run("UPDATE setting SET value = 'twice' WHERE name = 'migrated'");
    });
    migrate(path, steps);
    EXPECT_EQ(version(), 3);
    EXPECT_EQ(Database(path).query("SELECT value FROM setting").step(), true);
    EXPECT_EQ(Database(path).number("SELECT value = 'twice' FROM setting", 0), 1);
}

TEST_F(AMigration, ThatFailsLeavesTheFileAsItWas) {
    steps.push_back([](Database& database) { database.run("INSERT INTO none VALUES (1)"); });
    EXPECT_THAT(text_of(failure_of([&] { migrate(path, steps); })),
                HasSubstr("no such table: none"));
    EXPECT_EQ(version(), 1);
    store = Store::open(path);
    EXPECT_TRUE(find(ann.name));
    EXPECT_EQ(store->read().setting("migrated"), "");
    EXPECT_TRUE(std::filesystem::exists(path.string() + ".before-v3"));

    steps.pop_back();
    steps.push_back([](Database&) {});
    migrate(path, steps);
    EXPECT_TRUE(std::filesystem::exists(path.string() + ".before-v3-2"))
        << "no copy takes the place of another";
}

}  // namespace
}  // namespace orvo::directory::embedded
