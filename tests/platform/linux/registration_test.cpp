#include <fstream>
#include <sstream>
#include <vector>

#include "component_folders.h"
#include "platform/linux/self_registration.h"
#include "platform/system/registration.h"
#include "platform/values/failure.h"
#include "tests/support/child_process.h"

namespace {

using namespace orvo::abi;

class Registration : public orvo::testing::ComponentFolders {
protected:
    static std::string content(const std::filesystem::path& file) {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }
    // What orvo-register prints, on either stream, and its exit status.
    std::string run_tool(std::vector<std::string> arguments, int& status) const {
        arguments.insert(arguments.begin(), REGISTER_TOOL);
        std::filesystem::path log = folder("home") / "log";
        std::filesystem::remove(log);
        status = orvo::ChildProcess(arguments, log).wait();
        return content(log);
    }
    std::filesystem::path manifest_file() const {
        return folder("front") / "SampleModule.manifest";
    }
};

const std::string sample_manifest =
    std::string("# Classes of SampleModule; written when the module was registered.\nmodule = ") +
    REGISTERING_MODULE +
    "\nclass = {33CC820F-121F-4221-B48E-57EBB11C6955} Sample.One\n"
    "class = {33CC8210-121F-4221-B48E-57EBB11C6955} Sample.Two\n";

TEST_F(Registration, WritesTheModulesOwnManifest) {
    orvo::runtime::register_module_file(REGISTERING_MODULE);
    EXPECT_EQ(content(manifest_file()), sample_manifest);
    int files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder("front")))
        ++files;
    EXPECT_EQ(files, 1) << "no temporary file is left";
}

TEST_F(Registration, IsSeenAtOnceAndSoIsItsEnd) {
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromProgID(u"Sample.Two", &clsid), co_e_classstring);
    orvo::runtime::register_module_file(REGISTERING_MODULE);
    EXPECT_EQ(CLSIDFromProgID(u"Sample.Two", &clsid), s_ok);
    EXPECT_EQ(clsid.Data1, 0x33CC8210u);
    orvo::runtime::unregister_module_file(REGISTERING_MODULE);
    EXPECT_EQ(CLSIDFromProgID(u"Sample.Two", &clsid), co_e_classstring);
    orvo::runtime::unregister_module_file(REGISTERING_MODULE);
}

TEST_F(Registration, GoesToTheUsersFolderWithoutOneInFront) {
    unsetenv("ORVO_COMPONENTS");
    orvo::runtime::register_module_file(REGISTERING_MODULE);
    EXPECT_EQ(content(folder("home") / ".local/share/orvo/components/SampleModule.manifest"),
              sample_manifest);
}

TEST_F(Registration, ThatCannotBeWrittenTellsFileAndReason) {
    write(folder("file"), "in the way");
    setenv("ORVO_COMPONENTS", (folder("file") / "below").c_str(), 1);
    try {
        orvo::runtime::register_module(u"Name", {});
        FAIL() << "it was written";
    } catch (const orvo::Failure& failure) {
        EXPECT_EQ(failure.number, e_fail);
        EXPECT_EQ(orvo::testing::narrow(failure.description),
                  "The manifest " + (folder("file") / "below/Name.manifest").string() +
                      " cannot be written: Not a directory");
    }
}

TEST_F(Registration, RefusesNamesThatAManifestCannotHold) {
    const orvo::runtime::ClassEntry blank{{}, u"A B"};
    EXPECT_THROW(orvo::runtime::register_module(u"Name", {&blank, 1}), orvo::Failure);
    EXPECT_THROW(orvo::runtime::register_module(u"../Name", {}), orvo::Failure);
    EXPECT_THROW(orvo::runtime::unregister_module(u""), orvo::Failure);
    EXPECT_TRUE(std::filesystem::is_empty(folder("front")));
}

TEST_F(Registration, WithoutAnyFolderIsRefused) {
    unsetenv("ORVO_COMPONENTS");
    unsetenv("HOME");
    try {
        orvo::runtime::register_module(u"Name", {});
        FAIL() << "it was written";
    } catch (const orvo::Failure& failure) {
        EXPECT_EQ(orvo::testing::narrow(failure.description),
                  "There is no folder for the manifest of Name: neither ORVO_COMPONENTS, "
                  "XDG_DATA_HOME nor HOME names one.");
    }
}

TEST_F(Registration, ToolSaysWhatItDoes) {
    int status = -1;
    EXPECT_EQ(run_tool({REGISTERING_MODULE}, status),
              std::string(REGISTERING_MODULE) + ": registered\n");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(content(manifest_file()), sample_manifest);
    EXPECT_EQ(run_tool({"--unregister", REGISTERING_MODULE}, status),
              std::string(REGISTERING_MODULE) + ": unregistered\n");
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(std::filesystem::exists(manifest_file()));
}

TEST_F(Registration, ToolTakesOutAModuleWhoseFileIsGone) {
    const std::string gone = (folder("home") / "SampleModule.so").string();
    std::filesystem::copy_file(REGISTERING_MODULE, gone);
    int status = -1;
    EXPECT_EQ(run_tool({gone}, status), gone + ": registered\n");
    std::filesystem::remove(gone);
    EXPECT_EQ(run_tool({"--unregister", gone}, status), gone + ": unregistered\n");
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(std::filesystem::exists(manifest_file()));
    // One that is not known either is a wrong name.
    const std::string said = run_tool({"--unregister", gone}, status);
    EXPECT_EQ(status, 1);
    EXPECT_NE(said.find(gone + ": cannot open shared object file"), std::string::npos) << said;
}

TEST_F(Registration, ToolTellsModuleAndReasonAndGoesOn) {
    int status = -1;
    std::string said = run_tool({"/missing.so", SAMPLE_MODULE, REGISTERING_MODULE}, status);
    EXPECT_EQ(status, 1);
    EXPECT_NE(said.find("/missing.so: cannot open shared object file"), std::string::npos) << said;
    EXPECT_NE(said.find(SAMPLE_MODULE ": it does not export DllRegisterServer"), std::string::npos)
        << said;
    EXPECT_NE(said.find(std::string(REGISTERING_MODULE) + ": registered\n"), std::string::npos)
        << said;

    write(folder("file"), "in the way");
    setenv("ORVO_COMPONENTS", (folder("file") / "below").c_str(), 1);
    said = run_tool({REGISTERING_MODULE}, status);
    EXPECT_EQ(status, 1);
    EXPECT_NE(said.find("cannot be written: Not a directory"), std::string::npos) << said;
}

TEST_F(Registration, ToolRegistersTheClassesOfAModuleThatDoesNotDoSoItself) {
    const std::string sample = "Sample.Plain={11111111-2222-3333-0102-030405060708}";
    const std::filesystem::path manifest =
        folder("front") / (std::filesystem::path(SAMPLE_MODULE).stem().string() + ".manifest");
    int status = -1;
    EXPECT_EQ(run_tool({"--class", sample, SAMPLE_MODULE}, status),
              std::string(SAMPLE_MODULE) + ": registered\n");
    EXPECT_EQ(status, 0);
    EXPECT_NE(
        content(manifest).find("class = {11111111-2222-3333-0102-030405060708} Sample.Plain\n"),
        std::string::npos);
    EXPECT_EQ(run_tool({"--unregister", "--class", sample, SAMPLE_MODULE}, status),
              std::string(SAMPLE_MODULE) + ": unregistered\n");
    EXPECT_FALSE(std::filesystem::exists(manifest));
    run_tool({"--class", sample, SAMPLE_MODULE}, status);
    EXPECT_EQ(run_tool({"--unregister", SAMPLE_MODULE}, status),
              std::string(SAMPLE_MODULE) + ": unregistered\n");
    EXPECT_FALSE(std::filesystem::exists(manifest));
    EXPECT_NE(run_tool({"--unregister", SAMPLE_MODULE}, status)
                  .find(": it does not export DllUnregisterServer"),
              std::string::npos);
    EXPECT_EQ(status, 1);

    std::string unknown = sample;
    unknown.replace(unknown.find("1111"), 4, "9999");
    EXPECT_NE(run_tool({"--class", unknown, SAMPLE_MODULE}, status)
                  .find(": it has no class {99991111-2222-3333-0102-030405060708}"),
              std::string::npos);
    EXPECT_EQ(status, 1);
    EXPECT_FALSE(std::filesystem::exists(manifest));
    EXPECT_EQ(run_tool({"--class", "Sample.Plain", SAMPLE_MODULE}, status),
              "orvo-register: \"Sample.Plain\" is no Maker.Class={CLSID}\n");
    EXPECT_EQ(status, 2);
    run_tool({"--class", sample, SAMPLE_MODULE, REGISTERING_MODULE}, status);
    EXPECT_EQ(status, 2);
}

TEST_F(Registration, ToolSaysWhatIsMissing) {
    int status = -1;
    EXPECT_EQ(run_tool({}, status),
              "orvo-register: MODULE is required; see orvo-register --help\n");
    EXPECT_EQ(status, 2);
}

}  // namespace
