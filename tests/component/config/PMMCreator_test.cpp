#include "component/config/PMMCreator.h"

#include "component/config/SharedServerInfo.h"
#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* factory = "OrvoMembership.PMMCreator.GetPMM";

// The four factory methods, by what they make.
struct Factory {
    const char* creates;
    Object (*call)(Behind<PMMCreator>&);
};

template <auto M>
Object made_by(Behind<PMMCreator>& creator) {
    return creator.call<M>().object();
}

const Factory factories[] = {
    {"CreateSchema", made_by<&PMMCreator::GetPMMSchema>},
    {"CreateEntry", made_by<&PMMCreator::GetPMMObject>},
    {"CreateSearch", made_by<&PMMCreator::GetPMMSearch>},
    {"CreateValidator", made_by<&PMMCreator::GetPMMValidator>},
};

class PMMCreatorTest : public ComponentTest {
protected:
    template <class Body>
    void through_every_door(Body body) {
        load_settings();
        through_doors_to<PMMCreator>(body);
    }
};

TEST_FRESH(PMMCreatorTest, AsksTheModuleForTheMatchingObject) {
    through_every_door([this](Behind<PMMCreator>& creator) {
        EXPECT_TRUE(creator.call<&PMMCreator::GetPMMSchema>());
        EXPECT_THAT(journal_.take(), ElementsAre("new Test.Directory()", "CreateSchema()"));
        EXPECT_TRUE(creator.call<&PMMCreator::GetPMMObject>());
        EXPECT_THAT(journal_.take(), ElementsAre("CreateEntry()")) << "not yet bound";
        EXPECT_TRUE(creator.call<&PMMCreator::GetPMMSearch>());
        EXPECT_THAT(journal_.take(), ElementsAre("CreateSearch()")) << "not yet connected";
        EXPECT_TRUE(creator.call<&PMMCreator::GetPMMValidator>());
        EXPECT_THAT(journal_.take(),
                    ElementsAre("CreateValidator()", "Open(dir01:389, ou=Users,o=Shop)"));
    });
}

TEST_FRESH(PMMCreatorTest, MakesTheModuleOnceAndTwoDistinctObjects) {
    through_every_door([this](Behind<PMMCreator>& creator) {
        const auto first = creator.call<&PMMCreator::GetPMMObject>();
        const auto second = creator.call<&PMMCreator::GetPMMObject>();
        EXPECT_FALSE(first == second);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateEntry()", "CreateEntry()"));
        EXPECT_EQ(directory_.modules, 1);
    });
    EXPECT_EQ(directory_.modules, 0) << "the module goes with its creator";
}

TEST_FRESH(PMMCreatorTest, EachCreatorHasAModuleOfItsOwn) {
    load_site_configuration();
    PMMCreator one, other;
    one.GetPMMObject();
    other.GetPMMObject();
    EXPECT_EQ(directory_.modules, 2);
}

TEST_FRESH(PMMCreatorTest, AnObjectOutlivesItsCreator) {
    load_site_configuration();
    Ref<DirectoryEntry> entry = PMMCreator().GetPMMObject();
    EXPECT_EQ(directory_.modules, 0);
    Text name = u"cn";
    EXPECT_EQ(shown(call<&DirectoryEntry::GetValues>(entry, name)), "[Empty]");
}

TEST_FRESH(PMMCreatorTest, TrimsBlanksAroundTheImplementation) {
    membership()[u"PlugableModuleImplementation"] = u"  Test.Directory ";
    through_every_door([this](Behind<PMMCreator>& creator) {
        creator.call<&PMMCreator::GetPMMObject>();
        EXPECT_THAT(journal_.take(), ElementsAre("new Test.Directory()", "CreateEntry()"));
    });
}

TEST_FRESH(PMMCreatorTest, TheImplementationIsReadWhenTheModuleIsFirstNeeded) {
    PMMCreator creator;
    load_site_configuration();
    EXPECT_TRUE(creator.GetPMMObject());
}

TEST_FRESH(PMMCreatorTest, SettingsOfOnesOwnAreNeverUsed) {
    RecordingDirectory other(journal_, u"Other.Directory");
    configuration_.files[u"other.ini"][u"MEMBERSHIP"] = {
        {u"PlugableModuleImplementation", u"Other.Directory"},
        {u"LDAPServer", u"dir99"},
        {u"UserContainer", u"ou=Other"}};
    through_every_door([this](Behind<PMMCreator>& creator) {
        ServerInfo own;
        Text path = u"other.ini";
        own.SetConfiguration(path);
        EXPECT_EQ(own.GetPMMImplementation(), Variant(u"Other.Directory"));
        // As setServerInfo of any class does; loaded values stay.
        shared_server_info()->SetConfiguration(path);
        forget();
        creator.call<&PMMCreator::GetPMMValidator>();
        EXPECT_THAT(journal_.take(), ElementsAre("new Test.Directory()", "CreateValidator()",
                                                 "Open(dir01:389, ou=Users,o=Shop)"));
    });
}

TEST_FRESH(PMMCreatorTest, WithoutAnImplementationEveryCallFailsOnTheEmptyReference) {
    for (const char16_t* nothing : {u"", u"   "}) {
        membership()[u"PlugableModuleImplementation"] = nothing;
        in_fresh_thread([this] {
            through_every_door([this](Behind<PMMCreator>& creator) {
                for (const Factory& row : factories) {
                    SCOPED_TRACE(row.creates);
                    expect_failure(raised_by([&] { row.call(creator); }), 91, u"OrvoMembership",
                                   "\r\n"
                                   "ERROR 0x5B\r\n"
                                   " METHOD: OrvoMembership.PMMCreator.GetPMM\r\n"
                                   " DESC: Object variable or With block variable not set.\r\n");
                    EXPECT_EQ(log_.take().size(), 1u) << "the missing setting itself is no entry";
                }
                EXPECT_THAT(journal_.take(), IsEmpty());
            });
        });
    }
}

TEST_FRESH(PMMCreatorTest, WithoutSettingsItFailsTheSameWay) {
    PMMCreator creator;
    expect_failure(raised_by([&] { creator.GetPMMObject(); }), 91, u"OrvoMembership",
                   block("5B", factory, not_set));
}

TEST_FRESH(PMMCreatorTest, AnImplementationThatIsNotThereRaises429InTwoBlocks) {
    membership()[u"PlugableModuleImplementation"] = u" Missing.Directory ";
    through_every_door([](Behind<PMMCreator>& creator) {
        for (const Factory& row : factories) {
            SCOPED_TRACE(row.creates);
            expect_failure(raised_by([&] { row.call(creator); }), 429, u"OrvoMembership",
                           "\r\n"
                           "ERROR 0x1AD\r\n"
                           " METHOD: OrvoMembership.PMMCreator.GetPMM\r\n"
                           " DESC: \r\n"
                           "ERROR 0x1AD\r\n"
                           " METHOD: Lib_General.Gen_GetComponent\r\n"
                           " DESC: " +
                               cannot_create(u"Missing.Directory") +
                               ".\r\n"
                               " INFO: CreateObject(Missing.Directory) failed.\r\n"
                               ".\r\n");
        }
    });
}

TEST_FRESH(PMMCreatorTest, AnImplementationThatIsNoProviderIsATypeMismatch) {
    membership()[u"PlugableModuleImplementation"] = u"Quendra.Log";
    load_site_configuration();
    PMMCreator creator;
    expect_failure(raised_by([&] { creator.GetPMMObject(); }), 13, u"OrvoMembership",
                   block("D", factory, "Type mismatch"));
}

TEST_FRESH(PMMCreatorTest, AFailedModuleIsTriedAgainAtTheNextCall) {
    load_site_configuration();
    PMMCreator creator;
    journal_.refuse_nth("new Test.Directory", 1, {5, {}, u"not yet"});
    raised_by([&] { creator.GetPMMObject(); });
    EXPECT_TRUE(creator.GetPMMObject());
}

TEST_FRESH(PMMCreatorTest, WhatTheModuleRaisesArrivesUnderTheNameOfTheFactory) {
    through_every_door([this](Behind<PMMCreator>& creator) {
        for (const Factory& row : factories) {
            SCOPED_TRACE(row.creates);
            journal_.refuse(row.creates, {error_number(0x8007203A), u"Its.Own", u"(81) down"});
            expect_failure(raised_by([&] { row.call(creator); }), error_number(0x8007203A),
                           u"Its.Own", block("8007203A", factory, "(81) down"));
            journal_.allow(row.creates);
        }
    });
}

TEST_FRESH(PMMCreatorTest, AValidatorThatCannotBeOpenedIsNotHandedOut) {
    through_every_door([this](Behind<PMMCreator>& creator) {
        journal_.refuse("Open", {error_number(0x8007203A), u"Its.Own", u"(81) down"});
        expect_failure(raised_by([&] { creator.call<&PMMCreator::GetPMMValidator>(); }),
                       error_number(0x8007203A), u"Its.Own",
                       block("8007203A", factory, "(81) down"));
    });
}

}  // namespace
}  // namespace orvo
