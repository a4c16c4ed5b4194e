#include "suite/directory/embedded/store/store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "tests/suite/directory/embedded/store/store_fixture.h"

namespace orvo::directory::embedded {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

const EntryData ann{"cn=Ann,ou=Users,o=Shop",
                    {{"objectClass", {"top", "orvoPerson"}}, {"cn", {"Ann"}}, {"sn", {"Lee"}}}};

std::string text_of(const Failure& failure) { return to_utf8(failure.description); }

TEST_F(AStore, FindsAnEntryByItsNameInAnySpelling) {
    add(ann);
    const auto found = find("commonName = ann , OU=users,o=SHOP");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->name, "cn=Ann,ou=Users,o=Shop");
    EXPECT_THAT(found->attributes, ElementsAre(Attribute{"objectClass", {"top", "orvoPerson"}},
                                               Attribute{"cn", {"Ann"}}, Attribute{"sn", {"Lee"}}));
    EXPECT_FALSE(find("cn=Bob,ou=Users,o=Shop"));
}

TEST_F(AStore, CallsAttributesAsTheSchemaPrefers) {
    add({"cn=Ann,ou=Users,o=Shop",
         {{"COMMONNAME", {"Ann"}},
          {"surname;Lang-DE", {"Lee"}},
          {"2.5.4.4", {"Leigh"}},
          {"favouriteDrink", {"tea"}},
          {"ou", {}}}});
    EXPECT_THAT(find(ann.name)->attributes,
                ElementsAre(Attribute{"cn", {"Ann"}}, Attribute{"sn;lang-de", {"Lee"}},
                            Attribute{"sn", {"Leigh"}}, Attribute{"favouriteDrink", {"tea"}}));
}

TEST_F(AStore, KeepsEveryOctetOfAValue) {
    std::string every;
    for (int octet = 0; octet < 256; ++octet) every += static_cast<char>(octet);
    const std::string long_one(100'000, 'x');
    add({ann.name, {{"userPassword", {every, "", long_one}}}});
    EXPECT_THAT(find(ann.name)->attributes,
                ElementsAre(Attribute{"userPassword", {every, "", long_one}}));
}

TEST_F(AStore, ReplacesAWholeEntryAndTheSpellingOfItsName) {
    add(ann);
    Writing writing = store->write();
    writing.replace({"CN=ann,ou=Users,o=Shop", {{"cn", {"ann"}}}});
    EXPECT_EQ(writing.find(dn(ann.name))->name, "CN=ann,ou=Users,o=Shop") << "its own view";
    writing.commit();
    EXPECT_EQ(find(ann.name)->name, "CN=ann,ou=Users,o=Shop");
    EXPECT_THAT(find(ann.name)->attributes, ElementsAre(Attribute{"cn", {"ann"}}));
}

TEST_F(AStore, RemovesAnEntry) {
    add(ann);
    EXPECT_TRUE(store->read().has_children(dn("ou=users,o=shop")));
    Writing writing = store->write();
    writing.remove(dn(ann.name));
    writing.commit();
    EXPECT_FALSE(find(ann.name));
    EXPECT_FALSE(store->read().has_children(dn("ou=users,o=shop")));
}

TEST_F(AStore, TellsWhatIsThereAlreadyAndWhatIsNot) {
    add(ann);
    Writing writing = store->write();
    EXPECT_THAT(text_of(failure_of([&] { writing.add(ann); })), StartsWith("(68)"));
    EXPECT_THAT(text_of(failure_of([&] {
                    writing.replace({"cn=Bob,o=Shop", {}});
                })),
                StartsWith("(32)"));
    EXPECT_THAT(text_of(failure_of([&] { writing.remove(dn("cn=Bob,o=Shop")); })),
                StartsWith("(32)"));
    EXPECT_THAT(text_of(failure_of([&] { writing.add({"nonsense", {}}); })), StartsWith("(34)"));
}

TEST_F(AStore, NamesTheNearestEntryAbove) {
    const Reading reading = store->read();
    EXPECT_EQ(reading.nearest_above(dn("cn=a\\,b,ou=none,ou=USERS,o=shop")), "ou=Users,o=Shop");
    EXPECT_EQ(reading.nearest_above(dn("cn=a,o=other")), "");
    EXPECT_EQ(reading.nearest_above(dn("o=Shop")), "");
}

TEST_F(AStore, GivesEveryEntryParentsFirst) {
    add(ann);
    std::vector<std::string> names;
    store->read().every_entry([&](EntryData&& entry) {
        names.push_back(entry.name);
        return true;
    });
    EXPECT_THAT(names, ElementsAre("o=Shop", "ou=Users,o=Shop", ann.name));
}

TEST_F(AStore, ForgetsWhatIsNotCommitted) {
    {
        Writing writing = store->write();
        writing.add({ann.name, {{"newAttribute", {"x"}}}});
        writing.set_setting("a", "b");
        EXPECT_TRUE(writing.find(dn(ann.name)));
    }
    EXPECT_FALSE(find(ann.name));
    {
        const Reading same_connection = store->read();
        EXPECT_EQ(same_connection.setting("a"), "");
        add({ann.name, {{"otherAttribute", {"x"}}}});
    }
    EXPECT_THAT(find(ann.name)->attributes, ElementsAre(Attribute{"otherAttribute", {"x"}}));
}

TEST_F(AStore, KeepsSettings) {
    Writing writing = store->write();
    writing.set_setting("rules", "one");
    writing.set_setting("rules", "two");
    writing.commit();
    EXPECT_EQ(store->read().setting("rules"), "two");
    EXPECT_EQ(store->read().setting("other"), "");
}

TEST_F(AStore, TakesManyEntriesAtOnce) {
    {
        Writing writing = store->write(Durability::process);
        writing.expect_many();
        writing.add({"cn=undone,ou=Users,o=Shop", {{"sn", {"x"}}}});
    }
    Writing writing = store->write(Durability::process);
    writing.expect_many();
    writing.expect_many();
    for (int i = 0; i < 500; ++i)
        writing.add({"cn=" + std::to_string(i) + ",ou=Users,o=Shop",
                     {{"sn", {"x", std::to_string(i % 7)}}}});
    EXPECT_TRUE(writing.find(dn("cn=499,ou=Users,o=Shop")));
    writing.remove(dn("cn=0,ou=Users,o=Shop"));
    writing.expect_many();
    writing.add(ann);
    writing.commit();
    EXPECT_THAT(store->read().problems(), IsEmpty());
    EXPECT_TRUE(find(ann.name));
    EXPECT_FALSE(find("cn=undone,ou=Users,o=Shop"));
    EXPECT_FALSE(find("cn=0,ou=Users,o=Shop"));
}

TEST_F(AStore, AReadingShowsWhatWasThereWhenItBegan) {
    const Reading before = store->read();
    add({ann.name, {{"newAttribute", {"x"}}}});
    EXPECT_FALSE(before.find(dn(ann.name)));
    EXPECT_TRUE(find(ann.name));
}

TEST_F(AStore, ItsVersionChangesWithEveryCommitAndWithNothingElse) {
    const auto before = store->version();
    find("o=Shop");
    { Writing undone = store->write(); }
    EXPECT_EQ(store->version(), before);
    add(ann);
    const auto after = store->version();
    EXPECT_NE(after, before);
    EXPECT_EQ(store->version(), after);
}

TEST_F(AStore, IsOpenedOnce) {
    const auto before = store->version();
    const auto again = Store::open(path.parent_path() / "." / path.filename());
    EXPECT_EQ(again->version(), before);
    add(ann);
    EXPECT_EQ(again->version(), store->version());
    EXPECT_EQ(again->schema(), store->schema());
}

TEST_F(AStore, HasTheSchemaThatItWasMadeWith) {
    EXPECT_EQ(store->schema()->attribute_types, sample_schema().attribute_types);
    EXPECT_EQ(store->schema()->object_classes, sample_schema().object_classes);
    EXPECT_TRUE(store->schema()->types.find("commonName"));
}

TEST_F(AStore, AWriterWaitsNoLongerThanItIsTold) {
    const Writing first = store->write();
    EXPECT_EQ(
        text_of(failure_of([&] { store->write(Durability::full, std::chrono::milliseconds(20)); })),
        "(51) The server is busy. Other writers did not finish within 20 ms.");
}

TEST(AStoreFile, BelongsToItsOwnerAlone) {
    TempFolder folder;
    const auto path = folder.path() / "a";
    const mode_t before = ::umask(0);
    Store::create(path, sample_schema());
    const auto store = Store::open(path);
    Writing writing = store->write();
    writing.set_setting("a", "b");
    writing.commit();
    ::umask(before);
    for (const auto& file : std::filesystem::directory_iterator(folder.path()))
        EXPECT_EQ(file.status().permissions(), std::filesystem::perms(0600)) << file.path();
}

TEST(AStoreFile, IsNeverOverwritten) {
    TempFolder folder;
    const auto path = folder.write("a", "precious");
    EXPECT_THAT(text_of(failure_of([&] { Store::create(path, sample_schema()); })),
                HasSubstr("'" + path.string() + "': there is such a file already."));
    EXPECT_EQ(content_of(path), "precious");
    const auto log = folder.write("b-wal", "of a former one");
    EXPECT_THAT(text_of(failure_of([&] { Store::create(folder.path() / "b", sample_schema()); })),
                HasSubstr("b-wal': there is such a file already."));
}

TEST(AStoreFile, LeavesNothingBesideItWhenItCannotBeMade) {
    TempFolder folder;
    EXPECT_THAT(text_of(failure_of(
                    [&] { Store::create(folder.path() / "missing" / "a", sample_schema()); })),
                HasSubstr("No such file or directory."));
    Store::create(folder.path() / "a", sample_schema());
    std::vector<std::string> files;
    for (const auto& file : std::filesystem::directory_iterator(folder.path()))
        files.push_back(file.path().filename());
    EXPECT_THAT(files, ElementsAre("a"));
}

struct Refused {
    const char* name;
    std::string content;
    const char* reason;
};

TEST(AStoreFile, ThatIsNoDirectoryIsRefusedAndLeftAsItIs) {
    TempFolder folder;
    const auto other = folder.path() / "other";
    {
        Database database(folder.write("other", ""));
        database.execute("PRAGMA journal_mode = WAL; CREATE TABLE a (b)");
    }
    const Refused refused[] = {
        {"text",
         "This is a text, and it is long enough to be taken for a header. "
         "It goes on and on and on, and does not end.",
         "this is not the file of a directory"},
        {"empty", "", "this is not the file of a directory"},
        {"database", content_of(other), "this is not the file of a directory"},
    };
    for (const Refused& row : refused) {
        const auto path = folder.write(row.name, row.content);
        const std::string text = text_of(failure_of([&] { Store::open(path); }));
        EXPECT_THAT(text, StartsWith("(81) "));
        EXPECT_THAT(text, HasSubstr("'" + path.string() + "': " + row.reason));
        EXPECT_EQ(content_of(path), row.content);
        EXPECT_FALSE(std::filesystem::exists(path.string() + "-wal"));
    }
    EXPECT_THAT(text_of(failure_of([&] { Store::open(folder.path() / "none"); })),
                HasSubstr("none': No such file or directory."));
    EXPECT_THAT(text_of(failure_of([&] { Store::open(folder.path()); })), StartsWith("(81) "));
}

TEST(AStoreFile, OfANewerVersionIsRefused) {
    TempFolder folder;
    const auto path = folder.path() / "a";
    Store::create(path, sample_schema());
    Database(path).execute("PRAGMA user_version = 9999");
    EXPECT_THAT(text_of(failure_of([&] { Store::open(path); })),
                HasSubstr("it has version 9999, and this program knows versions from 1 to 1."));
}

}  // namespace
}  // namespace orvo::directory::embedded
