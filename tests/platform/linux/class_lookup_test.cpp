#include "component_folders.h"

#include <chrono>
#include <cstdlib>
#include <ostream>
#include <thread>

#include "counted.h"
#include "platform/system/registration.h"

namespace {

using namespace orvo::abi;
using orvo::runtime::ProcessRegistration;
using orvo::testing::Counted;
using orvo::testing::sample_class;
using orvo::testing::sample_class_text;
using orvo::testing::unknown_class;
using orvo::testing::unknown_class_text;

class ClassLookup : public orvo::testing::ComponentFolders {
protected:
    static std::string sample_line(const std::string& progid) {
        return std::string("class = ") + sample_class_text + " " + progid + "\n";
    }
    static std::string other_line(const std::string& progid) {
        return std::string("class = ") + unknown_class_text + " " + progid + "\n";
    }
    // The folders of the search path, as a failure tells them.
    std::string searched() const {
        return folder("front").string() + ", " + folder("second").string() + ", " +
               (folder("home") / ".local/share/orvo/components").string() + ", " +
               INSTALLED_MANIFESTS +
               ", /usr/local/share/orvo/components, /usr/share/orvo/components";
    }
    static HRESULT look_up(const char16_t* progid, CLSID& clsid) {
        return CLSIDFromProgID(progid, &clsid);
    }
};

TEST_F(ClassLookup, FindsBothFormsOfANameWithoutRegardToCase) {
    write(folder("front") / "a.manifest", manifest(sample_line("Sample.Cläss")));
    for (const char16_t* name :
         {u"Sample.Cläss", u"Sample.Cläss.1", u"SAMPLE.CLÄSS", u"sample.cläss.1"}) {
        CLSID clsid{};
        EXPECT_EQ(look_up(name, clsid), s_ok);
        EXPECT_EQ(clsid, sample_class);
    }
    CLSID clsid = sample_class;
    EXPECT_EQ(look_up(u"Sample.Cläss.2", clsid), co_e_classstring);
    EXPECT_EQ(clsid, CLSID{}) << "nothing of an earlier answer stays";
}

TEST_F(ClassLookup, TakesTheFirstFolderOfTheSearchPath) {
    write(folder("second") / "a.manifest", manifest(other_line("Sample.Class")));
    write(folder("front") / "z.manifest", manifest(sample_line("Sample.Class")));
    CLSID clsid{};
    EXPECT_EQ(look_up(u"Sample.Class", clsid), s_ok);
    EXPECT_EQ(clsid, sample_class);
}

TEST_F(ClassLookup, TakesTheFirstManifestOfAFolderByTheNamesOfTheirFiles) {
    for (const char* name : {"c.manifest", "b.manifest"})
        write(folder("front") / name, manifest(other_line("Sample.Class")));
    write(folder("front") / "a.manifest", manifest(sample_line("Sample.Class")));
    write(folder("front") / "d.manifest", manifest(other_line("Sample.Class")));
    CLSID clsid{};
    EXPECT_EQ(look_up(u"Sample.Class", clsid), s_ok);
    EXPECT_EQ(clsid, sample_class);
}

TEST_F(ClassLookup, LooksIntoTheUsersFolderAfterTheOnesInFront) {
    write(folder("home") / ".local/share/orvo/components/a.manifest",
          manifest(sample_line("Sample.AtHome")));
    CLSID clsid{};
    EXPECT_EQ(look_up(u"Sample.AtHome", clsid), s_ok);
    setenv("XDG_DATA_HOME", folder("data").c_str(), 1);
    write(folder("data") / "orvo/components/a.manifest", manifest(other_line("Sample.InData")));
    EXPECT_EQ(look_up(u"Sample.InData", clsid), s_ok);
    EXPECT_EQ(clsid, unknown_class);
    EXPECT_EQ(look_up(u"Sample.AtHome", clsid), co_e_classstring)
        << "the other data folder stands in the place of the usual one";
}

TEST_F(ClassLookup, SeesWhatHasChangedSinceWhenItMisses) {
    CLSID clsid{};
    EXPECT_EQ(look_up(u"Sample.Late", clsid), co_e_classstring);
    write(folder("front") / "a.manifest", manifest(sample_line("Sample.Late")));
    EXPECT_EQ(look_up(u"Sample.Late", clsid), s_ok) << "a new manifest";
    write(folder("front") / "a.manifest", manifest(sample_line("Sample.Later")));
    EXPECT_EQ(look_up(u"Sample.Later", clsid), s_ok) << "a manifest written over";
    EXPECT_EQ(look_up(u"Sample.Late", clsid), co_e_classstring);
    std::filesystem::remove(folder("front") / "a.manifest");
    EXPECT_EQ(look_up(u"Sample.Never", clsid), co_e_classstring);
    EXPECT_EQ(look_up(u"Sample.Later", clsid), co_e_classstring) << "a manifest removed";
}

TEST_F(ClassLookup, SeesAChangeThatComesTooSoonForTheFilesTimeStamp) {
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE(round);
        const char* name = round % 2 ? "Sample.Odd" : "Sample.Two";
        write(folder("front") / "a.manifest", manifest(sample_line(name)));
        CLSID clsid{};
        EXPECT_EQ(look_up(round % 2 ? u"Sample.Odd" : u"Sample.Two", clsid), s_ok);
        EXPECT_EQ(look_up(u"Sample.Neither", clsid), co_e_classstring);
    }
}

// Also after it was looked up by its other name.
TEST_F(ClassLookup, TakesTheModuleThatListsAClassFirst) {
    write(folder("front") / "a.manifest", manifest(sample_line("Sample.First")));
    write(folder("second") / "a.manifest",
          manifest(sample_line("Sample.Second"), "/nowhere/at_all.so"));
    // Until then a failure would have them read anew.
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    for (const char16_t* name : {u"Sample.First", u"Sample.Second", u"Sample.First"}) {
        CLSID clsid{};
        EXPECT_EQ(look_up(name, clsid), s_ok);
        EXPECT_EQ(clsid, sample_class);
        void* object = nullptr;
        EXPECT_EQ(CoGetClassObject(clsid, CLSCTX_INPROC_SERVER, nullptr, iid_unknown, &object),
                  s_ok);
        if (object) release(static_cast<IUnknown*>(object));
    }
}

TEST_F(ClassLookup, FindsANameOfAnyLengthAgainAndAgain) {
    const std::string name = "Sample." + std::string(200, 'x');
    write(folder("front") / "a.manifest", manifest(sample_line(name)));
    const std::u16string asked(name.begin(), name.end());
    for (int round = 0; round < 3; ++round) {
        CLSID clsid{};
        EXPECT_EQ(look_up(asked.c_str(), clsid), s_ok);
        EXPECT_EQ(clsid, sample_class);
        EXPECT_EQ(look_up(asked.substr(0, 48).c_str(), clsid), co_e_classstring);
    }
}

TEST_F(ClassLookup, ReadsTheSearchPathAfreshWhenItMisses) {
    write(folder("third") / "a.manifest", manifest(sample_line("Sample.Third")));
    CLSID clsid{};
    EXPECT_EQ(look_up(u"Sample.Third", clsid), co_e_classstring);
    setenv("ORVO_COMPONENTS", ("::" + folder("third").string() + ":").c_str(), 1);
    EXPECT_EQ(look_up(u"Sample.Third", clsid), s_ok);
}

TEST_F(ClassLookup, TellsTheNameThatNobodyKnowsAndWhereItWasLookedFor) {
    Counted earlier;
    SetErrorInfo(0, &earlier);
    CLSID clsid{};
    EXPECT_EQ(look_up(u"Sample.Unknown", clsid), co_e_classstring);
    EXPECT_EQ(error_text(), "The component \"Sample.Unknown\" is not known in " + searched());
    EXPECT_EQ(earlier.references, 1) << "an older error is not this failure's";
    void* object = nullptr;
    EXPECT_EQ(CoGetClassObject(sample_class, CLSCTX_INPROC_SERVER, nullptr, iid_unknown, &object),
              regdb_e_classnotreg);
    EXPECT_EQ(error_text(),
              std::string("The class ") + sample_class_text + " is not known in " + searched());
}

struct BrokenManifest {
    const char* name;
    const char* content;  // MODULE stands for a module's name
    const char* reason;   // behind the file's name
};

void PrintTo(const BrokenManifest& manifest, std::ostream* out) { *out << manifest.name; }

const BrokenManifest broken_manifests[] = {
    {"NoModule", "class = {11111111-2222-3333-0102-030405060708} Sample.Broken\n",
     ": it names no module"},
    {"Empty", "", ": it names no module"},
    {"EmptyModule", "module =\n", ", line 1: the module has no name"},
    {"TwoModules", "module = a.so\nmodule = b.so\n", ", line 2: a second module"},
    {"UnknownKey", "# one\n\nmodul = a.so\n", ", line 3: the key \"modul\" is unknown"},
    {"NoStatement", "module = a.so\r\nclass\r\n", ", line 2: \"class\" is no statement"},
    {"BadClass", "module = a.so\nclass = 1234 Sample.Broken\n",
     ", line 2: \"1234\" is no class identifier"},
    {"BadDigit", "module = a.so\nclass = {G1111111-2222-3333-0102-030405060708} Sample.Broken\n",
     ", line 2: \"{G1111111-2222-3333-0102-030405060708}\" is no class identifier"},
    {"NoProgid", "module = a.so\nclass = {11111111-2222-3333-0102-030405060708}\n",
     ", line 2: \"\" is no ProgID"},
    {"BlankInProgid", "module = a.so\nclass = {11111111-2222-3333-0102-030405060708} A B\n",
     ", line 2: \"A B\" is no ProgID"},
    {"SameName",
     "module = a.so\nclass = {11111111-2222-3333-0102-030405060708} A.B\n"
     "class = {11111111-2222-3333-0102-030405060709} a.b.1\n",
     ", line 3: a second class named \"a.b.1\""},
    {"SameClass",
     "module = a.so\nclass = {11111111-2222-3333-0102-030405060708} A.B\n"
     "class = {11111111-2222-3333-0102-030405060708} A.C\n",
     ", line 3: a second class {11111111-2222-3333-0102-030405060708}"},
};

class BrokenManifestLookup : public ClassLookup,
                             public ::testing::WithParamInterface<BrokenManifest> {};

TEST_P(BrokenManifestLookup, TellsFileLineAndReason) {
    std::filesystem::path file = folder("front") / "b.manifest";
    write(file, GetParam().content);
    write(folder("front") / "good.manifest", manifest(sample_line("Sample.Good")));
    CLSID clsid{};
    EXPECT_EQ(look_up(u"Sample.Good", clsid), s_ok) << "the others can be used";
    EXPECT_EQ(look_up(u"Sample.Unknown", clsid), co_e_classstring);
    EXPECT_EQ(error_text(), "The component \"Sample.Unknown\" is not known in " + searched() +
                                ", and a manifest cannot be used: " + file.string() +
                                GetParam().reason);
}

INSTANTIATE_TEST_SUITE_P(Every, BrokenManifestLookup, ::testing::ValuesIn(broken_manifests),
                         [](const auto& info) { return info.param.name; });

TEST_F(ClassLookup, RefusesAClassThatABrokenManifestLists) {
    std::filesystem::path file = folder("front") / "b.manifest";
    write(file, sample_line("Sample.Broken"));
    write(folder("second") / "a.manifest", manifest(sample_line("Sample.Broken")));
    CLSID clsid{};
    EXPECT_EQ(look_up(u"Sample.Broken", clsid), co_e_errorindll);
    EXPECT_EQ(error_text(),
              "The component \"Sample.Broken\" is listed in a manifest that cannot be used: " +
                  file.string() + ": it names no module");
    void* object = nullptr;
    EXPECT_EQ(CoGetClassObject(sample_class, CLSCTX_INPROC_SERVER, nullptr, iid_unknown, &object),
              co_e_errorindll);
    EXPECT_EQ(
        error_text(),
        "The class {11111111-2222-3333-0102-030405060708} is listed in a manifest that cannot "
        "be used: " +
            file.string() + ": it names no module");
    write(file, manifest(sample_line("Sample.Broken")));
    EXPECT_EQ(look_up(u"Sample.Broken", clsid), s_ok) << "once it has been mended";
}

TEST_F(ClassLookup, TellsAManifestThatCannotBeRead) {
    std::filesystem::path file = folder("front") / "b.manifest";
    std::filesystem::create_directory(file);
    CLSID clsid{};
    EXPECT_EQ(look_up(u"Sample.Unknown", clsid), co_e_classstring);
    EXPECT_EQ(error_text(), "The component \"Sample.Unknown\" is not known in " + searched() +
                                ", and a manifest cannot be used: " + file.string() +
                                ": it cannot be read: Is a directory");
}

TEST_F(ClassLookup, FindsTheProgramsOwnClassesFirstAndOnlyWhileTheyLast) {
    write(folder("front") / "a.manifest", manifest(sample_line("Sample.Class")));
    Counted first, second;
    CLSID clsid{};
    {
        ProcessRegistration own(u"sample.class.1", unknown_class, &first);
        EXPECT_EQ(first.references, 2);
        EXPECT_EQ(look_up(u"Sample.Class", clsid), s_ok);
        EXPECT_EQ(clsid, unknown_class);
        void* object = nullptr;
        EXPECT_EQ(
            CoGetClassObject(unknown_class, CLSCTX_INPROC_SERVER, nullptr, iid_unknown, &object),
            s_ok);
        EXPECT_EQ(object, &first);
        release(&first);
        {
            ProcessRegistration newer(u"Sample.Class", unknown_class, &second);
            CoGetClassObject(unknown_class, CLSCTX_INPROC_SERVER, nullptr, iid_unknown, &object);
            EXPECT_EQ(object, &second) << "the latest counts";
            release(&second);
        }
        CoGetClassObject(unknown_class, CLSCTX_INPROC_SERVER, nullptr, iid_unknown, &object);
        EXPECT_EQ(object, &first) << "until it goes";
        release(&first);
    }
    EXPECT_EQ(first.references, 1);
    EXPECT_EQ(second.references, 1);
    EXPECT_EQ(look_up(u"Sample.Class", clsid), s_ok);
    EXPECT_EQ(clsid, sample_class);
}

TEST_F(ClassLookup, RefusesWhatIsNoQuestion) {
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromProgID(nullptr, &clsid), e_invalidarg);
    EXPECT_EQ(CLSIDFromProgID(u"Sample.Class", nullptr), e_invalidarg);
    EXPECT_EQ(CLSIDFromProgID(u"", &clsid), co_e_classstring);
    EXPECT_EQ(CLSIDFromProgID(u".1", &clsid), co_e_classstring);
}

TEST(NewIdentifier, IsRandomAndSaysSo) {
    GUID a{}, b{};
    EXPECT_EQ(CoCreateGuid(&a), s_ok);
    EXPECT_EQ(CoCreateGuid(&b), s_ok);
    EXPECT_FALSE(a == b);
    EXPECT_EQ(a.Data3 >> 12, 4);
    EXPECT_EQ(a.Data4[0] >> 6, 2);
    EXPECT_EQ(CoCreateGuid(nullptr), e_invalidarg);
}

}  // namespace
