#include "component/common/Lib_General.h"

#include "platform/objects/context/app_server.h"
#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* method = "Lib_General.Gen_GetComponent";

class GetComponent : public ComponentTest {};

TEST_FRESH(GetComponent, OutsideAContextCreatesByPlainCreation) {
    EXPECT_TRUE(Gen_GetComponent(u"Quendra.Configuration"));
    EXPECT_THAT(journal_.take(), ElementsAre("new Quendra.Configuration()"));
}

TEST_FRESH(GetComponent, CreatesANewObjectAtEachCall) {
    const Object first = Gen_GetComponent(u"Quendra.Configuration");
    const Object second = Gen_GetComponent(u"Quendra.Configuration");
    EXPECT_FALSE(first == second);
}

TEST_FRESH(GetComponent, InsideAContextCreatesThroughTheContext) {
    const RecordingContext context(journal_);
    EXPECT_TRUE(Gen_GetComponent(u"Quendra.Configuration"));
    EXPECT_THAT(journal_.take(), ElementsAre("CreateInstance(Quendra.Configuration)",
                                             "new Quendra.Configuration()"));
}

TEST_FRESH(GetComponent, FollowsTheContextAsItComesAndGoes) {
    { const RecordingContext context(journal_); }
    EXPECT_TRUE(Gen_GetComponent(u"Quendra.Configuration"));
    EXPECT_THAT(journal_.take(), ElementsAre("new Quendra.Configuration()"));
    const RecordingContext again(journal_);
    EXPECT_TRUE(Gen_GetComponent(u"Quendra.Configuration"));
    EXPECT_THAT(journal_.take(), ElementsAre("CreateInstance(Quendra.Configuration)",
                                             "new Quendra.Configuration()"));
}

TEST_FRESH(GetComponent, OutsideAContextAnUnknownClassRaises429AndSaysCreateObject) {
    expect_failure(raised_by([] { Gen_GetComponent(u"Nobody.Knows"); }), 429, u"OrvoMembership",
                   "\r\n"
                   "ERROR 0x1AD\r\n"
                   " METHOD: Lib_General.Gen_GetComponent\r\n"
                   " DESC: " +
                       cannot_create(u"Nobody.Knows") +
                       ".\r\n"
                       " INFO: CreateObject(Nobody.Knows) failed.\r\n");
}

TEST_FRESH(GetComponent, InsideAContextAnUnknownClassSaysCreateInstanceAndTheNote) {
    const RecordingContext context(journal_);
    expect_failure(
        raised_by([] { Gen_GetComponent(u"Nobody.Knows"); }), 429, u"Test.Context",
        "\r\n"
        "ERROR 0x1AD\r\n"
        " METHOD: Lib_General.Gen_GetComponent\r\n"
        " DESC: " +
            cannot_create(u"Nobody.Knows") +
            ".\r\n"
            " INFO: CreateInstance(Nobody.Knows) failed.\r\n"
            "Note: Objects having 'Instancing=PublicNotCreatable' may only be instantiated "
            "with 'New', not with Gen_GetComponent().\r\n");
}

TEST_FRESH(GetComponent, NothingInPlaceOfAnObjectIsAFailure) {
    RecordingContext context(journal_);
    const std::string info =
        "CreateInstance(Quendra.Configuration) failed.\r\nNote: Objects having "
        "'Instancing=PublicNotCreatable' may only be instantiated with 'New', not with "
        "Gen_GetComponent()";
    context.instances[u"Quendra.Configuration"] = Object();
    expect_failure(raised_by([] { Gen_GetComponent(u"Quendra.Configuration"); }), 429,
                   u"OrvoMembership",
                   block("1AD", method, "ActiveX component can't create object", info));
    context.instances[u"Quendra.Configuration"] = Variant();
    expect_failure(raised_by([] { Gen_GetComponent(u"Quendra.Configuration"); }), 424,
                   u"OrvoMembership", block("1A8", method, "Object required", info));
    EXPECT_EQ(log_.take().size(), 2u);
}

TEST_FRESH(GetComponent, AFailureIsLoggedOnce) {
    raised_by([] { Gen_GetComponent(u"Nobody.Knows"); });
    const std::string info = "CreateObject(Nobody.Knows) failed";
    EXPECT_THAT(
        log_.take(),
        ElementsAre(LogEntry{
            "LogMessage", "OrvoMembership",
            block("1AD", method, block("1AD", method, cannot_create(u"Nobody.Knows"), info), info),
            0}));
}

TEST_FRESH(GetComponent, InsideAContextTheLogTooComesFromTheContext) {
    const RecordingContext context(journal_);
    raised_by([] { Gen_GetComponent(u"Nobody.Knows"); });
    EXPECT_EQ(log_.take().size(), 1u);
    EXPECT_THAT(journal_.take(),
                ElementsAre("CreateInstance(Nobody.Knows)", "CreateInstance(Quendra.Log)"));
}

TEST_FRESH(GetComponent, AMissingLogGivesTheSameFailureAndNoEndlessChain) {
    log_.remove();
    expect_failure(
        raised_by([] { Gen_GetComponent(u"Nobody.Knows"); }), 429, u"OrvoMembership",
        block("1AD", method, cannot_create(u"Nobody.Knows"), "CreateObject(Nobody.Knows) failed"));
    expect_failure(
        raised_by([] { Gen_GetComponent(u"Quendra.Log"); }), 429, u"OrvoMembership",
        block("1AD", method, cannot_create(u"Quendra.Log"), "CreateObject(Quendra.Log) failed"));
}

TEST_FRESH(GetComponent, WhatAClassRaisesWhileItIsMadeKeepsItsNumberAndSource) {
    journal_.refuse("new Quendra.Configuration",
                    {error_number(0x80040999), u"Its.Own", u"not today"});
    expect_failure(
        raised_by([] { Gen_GetComponent(u"Quendra.Configuration"); }), error_number(0x80040999),
        u"Its.Own",
        block("80040999", method, "not today", "CreateObject(Quendra.Configuration) failed"));
}

TEST_FRESH(GetComponent, AComponentThatLacksTheInterfaceIsATypeMismatch) {
    const Failure failure =
        raised_by([] { Gen_GetComponent<DirectoryModule>(u"Quendra.Configuration"); });
    EXPECT_EQ(failure.number, 13);
    EXPECT_EQ(to_utf8(failure.description), "Type mismatch");
}

class IntrinsicState : public ComponentTest {};

TEST_FRESH(IntrinsicState, IsMinusOneWithoutAnApplicationServer) {
    EXPECT_EQ(Gen_GetIntrinsicState(u"Session"), -1);
}

TEST_FRESH(IntrinsicState, IsMinusOneOutsideAContext) {
    const LocalClass app_server = local_class<AppServerObject>();
    EXPECT_EQ(Gen_GetIntrinsicState(u"Session"), -1);
}

TEST_FRESH(IntrinsicState, IsZeroForAnItemThatTheContextHas) {
    RecordingContext context(journal_);
    context.items[u"Session"] = configuration_.make_one().object();
    EXPECT_EQ(Gen_GetIntrinsicState(u"Session"), 0);
    EXPECT_THAT(journal_.take(), ElementsAre("Item(Session)"));
}

TEST_FRESH(IntrinsicState, IsMinusTwoForAnItemThatTheContextLacks) {
    RecordingContext context(journal_);
    context.items[u"Session"] = Object();
    EXPECT_EQ(Gen_GetIntrinsicState(u"Session"), -2) << "nothing";
    EXPECT_EQ(Gen_GetIntrinsicState(u"Application"), -2) << "empty";
}

TEST_FRESH(IntrinsicState, IsMinusTwoWhenAskingFailsAndNeitherRaisesNorLogs) {
    const RecordingContext context(journal_);
    journal_.refuse("Item", {error_number(0x80070057), {}, u"no such item"});
    EXPECT_EQ(Gen_GetIntrinsicState(u"Session"), -2);
    EXPECT_THAT(log_.take(), IsEmpty());
}

// An application server that counts its objects and, when told to, answers a question with a
// failure.
class StubbornServer final : public AppServer {
public:
    StubbornServer() { ++objects; }
    Ref<ObjectContext> GetObjectContext() override {
        if (++questions == refused_question)
            throw Failure(error_number(0x8004E004), {}, u"There is no object context");
        return nullptr;
    }
    Variant SafeRef(const Variant& object) override { return object; }

    static inline int objects = 0;
    static inline int questions = 0;
    static inline int refused_question = 0;
};

}  // namespace

template <>
inline constexpr auto class_of<StubbornServer> =
    describe_class<AppServer>("MTxAS.AppServer.1", "7e57ab1e-0000-4000-8000-0000000000f2");

namespace {

TEST_FRESH(IntrinsicState, IsMinusOneWhenAskingForTheContextFails) {
    const LocalClass app_server = local_class<StubbornServer>();
    StubbornServer::questions = 0;
    StubbornServer::refused_question = 1;
    EXPECT_EQ(Gen_GetIntrinsicState(u"Session"), -1);
    EXPECT_THAT(log_.take(), IsEmpty());
}

TEST_FRESH(GetComponent, AFailureIsToldAlsoWhereAskingForTheContextAgainFails) {
    const LocalClass app_server = local_class<StubbornServer>();
    StubbornServer::questions = 0;
    StubbornServer::refused_question = 2;
    expect_failure(
        raised_by([] { Gen_GetComponent(u"Nobody.Knows"); }), 429, u"OrvoMembership",
        block("1AD", method, cannot_create(u"Nobody.Knows"), "CreateObject(Nobody.Knows) failed"));
    EXPECT_EQ(log_.take().size(), 1u);
}

TEST_FRESH(IntrinsicState, OneApplicationServerServesTheThreadAsLongAsItLives) {
    const LocalClass app_server = local_class<StubbornServer>();
    StubbornServer::objects = StubbornServer::questions = 0;
    Gen_GetIntrinsicState(u"Session");
    Gen_GetIntrinsicState(u"Application");
    Gen_GetComponent(u"Quendra.Configuration");
    EXPECT_EQ(StubbornServer::objects, 1);
    EXPECT_EQ(StubbornServer::questions, 3);
    in_fresh_thread([] { Gen_GetIntrinsicState(u"Session"); });
    EXPECT_EQ(StubbornServer::objects, 2) << "another thread has one of its own";
}

TEST(EscapeQuotes, DoublesEveryApostrophe) {
    EXPECT_EQ(Gen_EscapeQuotes(u"O'Brien"), u"O''Brien");
    EXPECT_EQ(Gen_EscapeQuotes(u"''"), u"''''");
    EXPECT_EQ(Gen_EscapeQuotes(u"'a'b'"), u"''a''b''");
}

TEST(EscapeQuotes, LeavesATextWithoutApostrophesAsItIs) {
    EXPECT_EQ(Gen_EscapeQuotes(u"jsmith \"x\" \u2019"), u"jsmith \"x\" \u2019");
    EXPECT_EQ(Gen_EscapeQuotes(u""), u"");
}

}  // namespace
}  // namespace orvo
